#include "classic/http/Responder.h"

#include "config/Profile.h"

#include <cstdlib>

namespace {

constexpr auto firstLines = "\r\nServer: Quillon_4\r\nCache-Control: no-cache\r\nSet-Cookie: ";
constexpr auto rangesLine = "Accept-Ranges: bytes\r\n";
constexpr auto closeLine = "Connection: close\r\n";
constexpr auto eol = "\r\n";
constexpr int usualHeadSize = 512;

QByteArray sessionNumber(Exchange &exchange)
{
    const Cookies::Cookie *sent = exchange.request.sessionCookie();
    // What a client made up is repeated, but not where it could be somebody's later.
    const bool repeats = sent && !exchange.service.profile->isStrict();
    return repeats ? sent->value : QByteArray::number(exchange.session()->id);
}

} // namespace

Responder::Responder(Exchange &current)
    : exchange(current)
    , request(current.request)
    , channel(current.channel)
{
}

void Responder::sendHeader(const QByteArray &status, qint64 length, const QByteArray &extra)
{
    // A peer that was not asked for its body may send the next request instead of it.
    if (channel.isBodyHeldBack())
        channel.setKeepAlive(false);
    exchange.status = std::atoi(status.constData());
    QByteArray head;
    head.reserve(usualHeadSize);
    head.append("HTTP/1.1 ").append(status).append(firstLines);
    head.append(Request::sessionCookieName).append('=').append(sessionNumber(exchange)).append(eol);
    if (!channel.isKeepAlive())
        head.append(closeLine);
    head.append(rangesLine).append(extra);
    if (length > 0 && !contentType.isEmpty())
        head.append("Content-Type: ").append(contentType).append(eol);
    head.append("Content-Length: ").append(QByteArray::number(length)).append(eol).append(eol);
    channel.write(head, length == 0);
}

void Responder::sendBody(const QByteArray &status, const QByteArray &body, const QByteArray &extra)
{
    if (request.methodCode == Request::Head)
        return sendHeader(status, 0, extra);
    sendHeader(status, body.size(), extra);
    if (!body.isEmpty())
        channel.write(body, true);
}
