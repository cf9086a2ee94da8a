#include "standard/http/SessionCookie.h"

#include "net/Socket.h"
#include "standard/http/Exchange.h"
#include "standard/http/OwnNames.h"

namespace standard {

namespace {

/// Browsers keep cookies apart by host alone: the port tells those of several servers from each
/// other. What begins with the prefixes was not set without encryption; the first also means that
/// no neighbour's page set it, but is for servers that have the whole host.
QByteArray cookieName(const Exchange &exchange)
{
    const bool hasHost = exchange.urls().prefix.isEmpty();
    const QByteArray secured = hasHost ? "__Host-" : "__Secure-";
    return (isEncrypted(exchange) ? secured : QByteArray()) + "quillon-"
        + QByteArray::number(exchange.channel().connection().localPort());
}

} // namespace

QByteArray sessionNumber(const Exchange &exchange)
{
    const QByteArray cookies = exchange.request().value("Cookie");
    if (cookies.isEmpty())
        return {};
    const QByteArray begin = cookieName(exchange) + '=';
    for (const QByteArray &cookie : cookies.split(';')) {
        const QByteArray pair = cookie.trimmed();
        if (pair.startsWith(begin))
            return pair.mid(begin.size());
    }
    return {};
}

Field sessionCookie(const Exchange &exchange, const QByteArray &number)
{
    const QByteArray prefix = exchange.urls().prefix;
    return { "Set-Cookie",
             cookieName(exchange) + '=' + number + "; Path=" + (prefix.isEmpty() ? "/" : prefix)
                 + "; HttpOnly; SameSite=Strict" + (isEncrypted(exchange) ? "; Secure" : "")
                 + (number.isEmpty() ? "; Max-Age=0" : "") };
}

} // namespace standard
