#include "server/Responder.h"

#include "config/Profile.h"

namespace {

constexpr auto serverLine = "Server: Quillon_4\r\n";
constexpr auto cacheLine = "Cache-Control: no-cache\r\n";
constexpr auto rangesLine = "Accept-Ranges: bytes\r\n";
constexpr auto closeLine = "Connection: close\r\n";
constexpr int usualHeadSize = 512;

QByteArray sessionCookie(Request &request)
{
    const QByteArray name("ID");
    if (const QNetworkCookie *sent = request.getCookie(name))
        return sent->toRawForm();
    return QNetworkCookie(name, QByteArray::number(request.session()->id)).toRawForm();
}

} // namespace

Responder::Responder(Request *httpRequest)
    : request(httpRequest)
{
    setParent(&request->channel);
}

void Responder::reply(const QFileInfo &shared, Profile *profile)
{
    Q_UNUSED(shared)
    Q_UNUSED(profile)
}

void Responder::reply(const QFileInfo &shared)
{
    Q_UNUSED(shared)
}

void Responder::sendFile(const QString &path)
{
    Q_UNUSED(path)
}

void Responder::reply(int result)
{
    Q_UNUSED(result)
}

void Responder::sendHeader(const QByteArray &status, qint64 length, const QByteArray &extra)
{
    QByteArray head;
    head.reserve(usualHeadSize);
    addLine(head, "HTTP/1.1 " + status);
    head += serverLine;
    head += cacheLine;
    addLine(head, "Set-Cookie: " + sessionCookie(*request));
    if (!request->channel.isKeepAlive())
        head += closeLine;
    head += rangesLine;
    head += extra;
    if (length > 0 && !contentType.isEmpty())
        addLine(head, "Content-Type: " + contentType);
    addLine(head, "Content-Length: " + QByteArray::number(length));
    addLine(head);
    request->channel.write(head, length == 0);
}

void Responder::awaitUpload()
{
    connect(&request->channel, &Channel::uploadEnded, this, qOverload<int>(&Responder::reply),
            Qt::UniqueConnection);
}
