#pragma once

#include "standard/http/Exchange.h"

#include <QObject>

#include <optional>
#include <vector>

namespace standard {

/// Answers one request. Made for it by its route and owned by the face. Once it is told its `end`
/// it does nothing more and, since it may go later than the connection, touches the exchange no
/// more.
class Handler : public QObject
{
public:
    /// `current` is borrowed until `end`.
    explicit Handler(Exchange &current)
        : exchange(current)
    {
    }

    /// Begins. The reply may end in a later turn of the event loop.
    virtual void start() = 0;

    /// The body that `Exchange::readBody` was asked for.
    virtual void bodyReady(const QByteArray &body) { Q_UNUSED(body) }

    /// What `Exchange::saveBody` was asked for is done, or failed. When the end is `Lost` nobody
    /// waits for an answer, and none needs to be given.
    virtual void bodySaved(BodyEnd end) { Q_UNUSED(end) }

    /// More can be written after `Exchange::isCongested`. May come unasked.
    virtual void drained() { }

    /// What `Exchange::sendFile` was given is on its way.
    virtual void fileSent() { exchange.end(); }

    /// Of a file that is made while it is sent: how many bytes are still to be written, or given to
    /// `Exchange::sendFile`. None when the reply is no such file.
    virtual std::optional<qint64> bytesLeft() const { return {}; }

    /// The files that were added, paths of the share, when neither the method nor the path of the
    /// request says so.
    virtual std::vector<QByteArray> addedFiles() const { return {}; }

    /// The file that the body of the request is being kept for, a path of the share, when the path
    /// of the request doesn't say so.
    virtual QByteArray receivedFile() const { return {}; }

    /// The peer sends nothing more. Some still wait for their reply; most have left.
    virtual void peerStopped() { }

    /// For the face: the reply is over, or nobody waits for it any more.
    void end()
    {
        over = true;
        ended();
    }

protected:
    /// What is under way for the reply stops.
    virtual void ended() { }

    /// Whether nobody waits any more. To be asked by whatever comes in a later turn of the loop.
    bool isOver() const { return over; }

    Exchange &exchange;

private:
    bool over = false;
};

} // namespace standard
