#pragma once

#include "classic/dav/Dav.h"
#include "classic/http/Slices.h"

#include <functional>

/// A document that is rendered while it is sent.
struct Document
{
    QByteArray start; ///< with the root element's tag
    qint64 count = 0; ///< of the elements
    std::function<void(QByteArray &text, qint64 index)> append; ///< one element, always the same
    QByteArray end;
};

/// The base of the responders that answer with a document of any size. Its length is counted
/// first; then it is written in pieces, as fast as the client takes them.
class DocumentReply : public Dav
{
    Q_OBJECT
public:
    /// What a document begins with; its root element is to follow.
    static constexpr auto declaration = R"(<?xml version="1.0" encoding="utf-8"?>)";

    explicit DocumentReply(Exchange &current);

    void drained() override { slices.drained(); }
    void replyEnded() override;

protected:
    /// Calls `making` when the reply has its turn, perhaps before this call returns.
    /// `sendDocument` is to follow, at once or later.
    void whenInTurn(std::function<void()> making);

    /// Answers with `whole`, in turns of the event loop unless that is but an element.
    void sendDocument(Document whole);

private:
    enum class State { Idle, Making, Counting, Sending };

    bool work(const Turn &turn);
    void make();
    void sendAtOnce();
    void count();
    void begin();
    void send();

    State state = State::Idle;
    std::function<void()> makeDocument; ///< until it has its turn
    Document document;
    qint64 next = 0; ///< element
    qint64 length = 0; ///< bytes, as far as they were counted
    QByteArray rendered; ///< and not written yet
    Slices slices;
};
