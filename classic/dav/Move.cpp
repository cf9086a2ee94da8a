#include "classic/dav/Move.h"

#include <QDir>
#include <QFile>

#include <cerrno>
#include <cstdio>

#include <fcntl.h>

namespace {

/// Renames unless something has the new name. Gives 0 or the system's error number.
int renameToNew(const QString &from, const QString &to)
{
    const QByteArray oldName = QFile::encodeName(from);
    const QByteArray newName = QFile::encodeName(to);
    if (::renameat2(AT_FDCWD, oldName.constData(), AT_FDCWD, newName.constData(), RENAME_NOREPLACE)
        == 0)
        return 0;
    // Not every file system knows the flag; the caller has looked that the name is free.
    if (errno != EINVAL && errno != ENOSYS)
        return errno;
    return ::rename(oldName.constData(), newName.constData()) == 0 ? 0 : errno;
}

bool isTaken(const QFileInfo &entry)
{
    return entry.exists() || entry.isSymLink();
}

} // namespace

Move::Move(Request *httpRequest)
    : Dav(httpRequest, name)
{
}

void Move::reply(const QFileInfo &shared)
{
    const RequestTarget target = request->destinationTarget();
    if (target.form != RequestTarget::Form::Path)
        return sendHeader(DavStatus::preconditionFailed, 0);
    // Without the last "/", or a link would be looked through.
    const QString source = QDir::cleanPath(pathIn(shared, request->path));
    const QString destination = QDir::cleanPath(pathIn(shared, target.path));
    if (isTaken(QFileInfo(destination)))
        return sendHeader("412 Name exists", 0);
    if (source.isEmpty() || destination.isEmpty())
        return finish(false);

    const int error = renameToNew(source, destination);
    if (error == EXDEV && QFileInfo(source).isFile())
        return moveAcross(source, destination);
    finish(error == 0);
}

void Move::moveAcross(const QString &source, const QString &destination)
{
    copier.start(source, destination, FileCopy::Existing::Kept,
                 [this, source, destination](bool copied) {
                     const bool moved = copied && QFile::remove(source);
                     if (copied && !moved)
                         QFile::remove(destination);
                     finish(moved);
                 });
}

void Move::finish(bool moved)
{
    sendHeader(moved ? DavStatus::created : "500 Rename Failed", 0);
}
