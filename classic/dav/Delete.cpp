#include "classic/dav/Delete.h"

#include "classic/dav/DeleteDir.h"
#include "config/Configuration.h"

#include <QFile>

namespace {

const char *remove(const QFileInfo &target)
{
    if (!target.exists())
        return "200 Not exists"; // what the client asked for is so
    if (target.isDir())
        return DeleteDir(target.absoluteFilePath()).deleteDir() ? "200 Dir deleted"
                                                                : DavStatus::locked;
    return QFile::remove(target.absoluteFilePath()) ? "200 File deleted" : DavStatus::locked;
}

} // namespace

Delete::Delete(HTTP_Request *httpRequest)
    : Dav(httpRequest, name)
{
}

void Delete::reply(const QFileInfo &shared, Configuration *profile)
{
    if (!profile->isDelete())
        return sendHeader("423 Read-only", 0);
    sendHeader(remove(QFileInfo(pathIn(shared, request->path))), 0);
}
