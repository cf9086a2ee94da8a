#include "classic/dav/Dav.h"

#include <QDir>
#include <QUrl>

namespace {

// The header writer puts the name in front once more. Clients have always seen it doubled.
constexpr auto typeLine = "Content-Type: text/xml; charset=\"utf-8\"";

// What a URL's path may hold as it is (RFC 3986, section 3.3), with the brackets that Qt leaves in
// it and without "&", which would begin an entity in XML.
constexpr auto literalInPath = "!$'()*+,;=:@/[]";

} // namespace

Dav::Dav(Request *httpRequest, const char *name)
    : Responder(httpRequest)
{
    contentType = typeLine;
    setObjectName(QLatin1String(name));
}

QString Dav::pathIn(const QFileInfo &shared, const QString &requested)
{
    if (requested.contains(QChar::Null))
        return {};
    const QString path = shared.absoluteFilePath() + requested;
    // Behind a link ".." leads elsewhere than by name, and by name it was found to stay inside.
    return path.contains(QLatin1String("/..")) ? QDir::cleanPath(path) : path;
}

QByteArray Dav::hrefPath(const QString &path)
{
    return QUrl::toPercentEncoding(path, literalInPath);
}

void Dav::init(QByteArray &body)
{
    body = R"(<?xml version="1.0" encoding="utf-8"?><)";
}

void Dav::sendDocument(const QByteArray &body)
{
    sendHeader(DavStatus::multiStatus, body.size());
    request->channel.write(body, true);
}
