#pragma once

#include "classic/http/Exchange.h"
#include "classic/http/Status.h"

#include <QByteArray>
#include <QObject>

constexpr auto htmlType = "text/html; charset=UTF-8";

/// The base of every responder: answers the requests of its route and writes the header block.
/// Owned by its face and kept for the next request of the same route, so each `reply` must start
/// with fresh state.
class Responder : public QObject
{
    Q_OBJECT
public:
    /// `current` is borrowed and outlives the responder.
    explicit Responder(Exchange &current);

    /// Answers the request. It may end in a later turn of the event loop.
    virtual void reply() = 0;

    /// What `Channel` tells of the reply under way.
    virtual void partHeadReady(const QByteArray &lines) { Q_UNUSED(lines) }
    virtual void uploadEnded(SaveResult result) { Q_UNUSED(result) }
    virtual void drained() { }

    /// The reply is over, or nobody waits for it any more: what is under way for it stops.
    virtual void replyEnded() { }

protected:
    /// The Content-Type of bodies from now on; none when empty.
    void setContentType(const QByteArray &type) { contentType = type; }

    /// Writes the status line ("200 OK") and the header block. `length` is the size of the body
    /// that follows; with 0 the reply ends here. `extra` holds whole header lines, each ended by
    /// CR LF.
    void sendHeader(const QByteArray &status, qint64 length, const QByteArray &extra = {});

    /// The whole reply at once.
    void sendBody(const QByteArray &status, const QByteArray &body, const QByteArray &extra = {});

    Exchange &exchange;
    const Request &request; ///< of the exchange
    Channel &channel; ///< of the exchange

private:
    QByteArray contentType;
};
