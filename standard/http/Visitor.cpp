#include "standard/http/Visitor.h"

#include "net/Socket.h"
#include "server/PeerAddress.h"
#include "standard/http/Exchange.h"

namespace standard {

namespace {

QByteArray visitorName(const Exchange &exchange, const QHostAddress &address)
{
    const QByteArray &account = exchange.access().account;
    return account.isEmpty() ? address.toString().toLatin1() : "user " + account;
}

} // namespace

QByteArray visitorOf(const Exchange &exchange)
{
    return visitorName(exchange, exchange.request().outside.visitor);
}

QByteArray peerNameOf(const Exchange &exchange)
{
    const QHostAddress reached = exchange.channel().connection().localAddress();
    return visitorName(exchange, peerOf(exchange.request().outside.visitor, reached));
}

} // namespace standard
