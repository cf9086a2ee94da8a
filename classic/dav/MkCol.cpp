#include "classic/dav/MkCol.h"

#include <QDir>

MkCol::MkCol(Request *httpRequest)
    : Dav(httpRequest, name)
{
}

void MkCol::reply(const QFileInfo &shared)
{
    const QString path = pathIn(shared, request->path);
    const bool made = !path.isEmpty() && QDir().mkpath(path);
    sendHeader(made ? DavStatus::created : "500 MKPATH Failed", 0);
}
