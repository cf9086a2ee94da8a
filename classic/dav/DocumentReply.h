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
    /// Answers with `whole`, in turns of the event loop.
    void sendDocument(Document whole);

private:
    enum class State { Idle, Counting, Sending };

    bool work(const Slices::Turn &turn);
    void count();
    void begin();
    void send();

    State state = State::Idle;
    Document document;
    qint64 next = 0; ///< element
    qint64 length = 0; ///< bytes, as far as they were counted
    QByteArray rendered; ///< and not written yet
    Slices slices;
};
