#include "classic/dav/SimpleMethods.h"

#include <QFile>

namespace {

constexpr auto davLine = "DAV: 1,2";
constexpr auto allowLine = "Allow: GET, POST, PUT, DELETE, OPTIONS, PROPFIND, COPY, MOVE, MKCOL, "
                           "HEAD, LOCK, UNLOCK";

} // namespace

Options::Options(Request *httpRequest)
    : Dav(httpRequest, name)
{
}

void Options::reply()
{
    QByteArray extra;
    extra.reserve(128);
    addLine(extra, davLine);
    addLine(extra, allowLine);
    sendHeader(DavStatus::ok, 0, extra);
}

Head::Head(Request *httpRequest)
    : Dav(httpRequest, name)
{
}

void Head::reply(const QFileInfo &shared)
{
    const bool exists = QFile::exists(pathIn(shared, request->path));
    sendHeader(exists ? DavStatus::ok : DavStatus::notFound, 0);
}

Lock::Lock(Request *httpRequest)
    : Dav(httpRequest, name)
{
}

void Lock::reply(const QFileInfo &shared)
{
    const bool exists = QFile::exists(pathIn(shared, request->path));
    sendHeader(exists ? "200 Locked" : DavStatus::notFound, 0);
}

UnLock::UnLock(Request *httpRequest)
    : Dav(httpRequest, name)
{
}

void UnLock::reply()
{
    sendHeader(DavStatus::ok, 0);
}
