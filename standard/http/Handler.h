#pragma once

#include "standard/http/Exchange.h"

#include <QObject>

namespace standard {

/// Answers one request. Made for it by its route and owned by the face. Once it was told `ended` it
/// does nothing more and, since it may go later than the connection, touches the exchange no more.
class Handler : public QObject
{
public:
    /// `current` is borrowed until `ended`.
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

    /// The reply is over, or nobody waits for it any more: what is under way for it stops.
    virtual void ended() { }

protected:
    Exchange &exchange;
};

} // namespace standard
