#include "classic/dav/Delete.h"

#include "classic/dav/DeleteDir.h"
#include "config/Profile.h"

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

Delete::Delete(Request *httpRequest)
    : Dav(httpRequest, name)
{
}

void Delete::reply(const QFileInfo &shared, Profile *profile)
{
    if (!profile->allowsDelete())
        return sendHeader("423 Read-only", 0);
    sendHeader(remove(QFileInfo(pathIn(shared, request->path))), 0);
}
