#include "classic/dav/UploadFile.h"

#include "classic/dav/AsideFile.h"

#include <QFileInfo>

#include <cerrno>

#include <sys/file.h>
#include <sys/stat.h>

namespace {

/// Marks a file as being received, until it is closed. A file system without locks allows it.
bool lock(const QFile &file)
{
    return ::flock(file.handle(), LOCK_EX | LOCK_NB) == 0 || errno != EWOULDBLOCK;
}

bool isSameFile(int descriptor, const QString &path)
{
    struct stat open = {};
    struct stat named = {};
    return ::fstat(descriptor, &open) == 0
        && ::lstat(QFile::encodeName(path).constData(), &named) == 0 && open.st_dev == named.st_dev
        && open.st_ino == named.st_ino;
}

} // namespace

UploadFile::UploadFile() = default;

UploadFile::~UploadFile()
{
    if (created && !kept)
        removeCreated();
}

bool UploadFile::create(const QString &path)
{
    file.setFileName(path);
    created = file.open(QIODevice::WriteOnly | QIODevice::NewOnly | QIODevice::Unbuffered);
    return created && lock(file);
}

bool UploadFile::replace(const QString &path)
{
    if (!QFileInfo(path).isFile())
        return false;
    file.setFileName(path);
    // Append: whoever may not write to the file may not replace it either, but it stays as it is.
    if (!file.open(QIODevice::Append | QIODevice::ExistingOnly) || !lock(file))
        return false;
    aside = std::make_unique<AsideFile>(path);
    return aside->openAside();
}

QFile *UploadFile::device()
{
    return aside ? aside.get() : &file;
}

bool UploadFile::keep()
{
    kept = !aside || aside->replace();
    return kept;
}

/// Meanwhile a client may have moved the file away, or deleted it and put another in its place.
void UploadFile::removeCreated()
{
    const QString open = QStringLiteral("/proc/self/fd/%1").arg(file.handle());
    const QString movedTo = QFile::symLinkTarget(open);
    if (isSameFile(file.handle(), file.fileName()))
        file.remove();
    else if (isSameFile(file.handle(), movedTo))
        QFile::remove(movedTo);
}
