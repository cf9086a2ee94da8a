#pragma once

#include "classic/http/Slices.h"
#include "classic/pages/ListingPage.h"
#include "files/FileDescriptor.h"

#include <QByteArray>
#include <QObject>

#include <functional>
#include <memory>

class Share;
struct Exchange;

/// Answers with the page of the request's folder: has the entries read, asks for the previews they
/// lack and sends the page, in slices between which others are served. A part of its responder,
/// which hands on what the channel tells it.
class ListingReply : public QObject
{
public:
    using SendHead = std::function<void(const QByteArray &status, qint64 length)>;

    /// `current` is borrowed and outlives it.
    ListingReply(Exchange &current, SendHead headSender);

    /// A folder that can't be read has a page without entries.
    void start();

    void drained() { slices.drained(); }
    void stop();

private:
    enum class State {
        Idle,
        Waiting, ///< for the first turn
        Reading, ///< the folder; somebody else does it
        Looking, ///< for previews
        Counting, ///< the bytes of the page
        Sending
    };

    ListingShape shape() const;
    FolderReader openFolder() const;
    FolderListing::Window window() const;
    void list();
    void show(const std::shared_ptr<const FolderListing> &listing);
    ListingPage::Options takeOptions() const;
    bool work(const Turn &turn);
    bool isWorking() const;
    void step();
    void look();
    void count();
    void sendHeadOrAll();
    void send();

    Exchange &exchange;
    const SendHead sendHead;
    State state = State::Idle;
    std::unique_ptr<QObject> reading; ///< while it is there, the entries are waited for
    std::unique_ptr<ListingPage> page;
    std::shared_ptr<const Share> share; ///< of this request, also when another is shared meanwhile
    FileDescriptor folder; ///< whose pictures are looked at
    qint64 toLookAt = 0; ///< entries of the page, the last ones
    qint64 length = 0; ///< bytes of the page so far
    QByteArray buffer; ///< bits that are not sent yet
    Slices slices;
};
