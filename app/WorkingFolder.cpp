#include "app/WorkingFolder.h"

#include <QDir>
#include <QFile>

#include <cstdlib>

#include <fcntl.h>
#include <sys/file.h>
#include <unistd.h>

namespace {

constexpr auto folderPrefix = "work-";

FileDescriptor openFolder(const QByteArray &path)
{
    return FileDescriptor(
        ::open(path.constData(), O_RDONLY | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC));
}

bool lock(const FileDescriptor &folder)
{
    return ::flock(folder.get(), LOCK_EX | LOCK_NB) == 0;
}

/// Removes what dead processes left.
void sweep(const QString &place)
{
    const QFileInfoList folders =
        QDir(place).entryInfoList(QDir::Dirs | QDir::Hidden | QDir::NoSymLinks);
    for (const QFileInfo &folder : folders) {
        if (!folder.fileName().startsWith(QLatin1String(folderPrefix)))
            continue;
        const FileDescriptor left = openFolder(QFile::encodeName(folder.filePath()));
        if (left.isOpen() && lock(left))
            QDir(folder.filePath()).removeRecursively();
    }
}

} // namespace

WorkingFolder::WorkingFolder(const QString &place)
    : path(QFile::encodeName(place + QLatin1String(folderPrefix) + QLatin1String("XXXXXX")))
{
    if (!QDir().mkpath(place))
        return;
    // One at a time, or another process might sweep the new folder before it is locked.
    const FileDescriptor turn = openFolder(QFile::encodeName(place));
    if (!turn.isOpen() || ::flock(turn.get(), LOCK_EX) != 0)
        return;
    sweep(place);
    if (!::mkdtemp(path.data()))
        return;
    FileDescriptor made = openFolder(path);
    if (made.isOpen() && lock(made) && ::fchdir(made.get()) == 0)
        folder = std::move(made);
}

WorkingFolder::~WorkingFolder()
{
    if (isEntered() && ::chdir("/") == 0)
        ::rmdir(path.constData());
}
