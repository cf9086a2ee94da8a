#include "files/PreviewFolder.h"

#include <QFile>

#include <cerrno>
#include <cstdlib>
#include <string_view>
#include <utility>
#include <vector>

#include <dirent.h>
#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

namespace {

constexpr std::string_view namePrefix = "quillon-";
constexpr std::string_view unique = "XXXXXX"; ///< what mkdtemp replaces
constexpr auto lockName = "lock";

FileDescriptor openFolder(int parent, const char *name, int flags = O_NOFOLLOW)
{
    return FileDescriptor(::openat(parent, name, O_RDONLY | O_DIRECTORY | O_CLOEXEC | flags));
}

std::vector<QByteArray> namesIn(int folder)
{
    FileDescriptor own = openFolder(folder, "."); // its position is not shared
    DIR *entries = own.isOpen() ? ::fdopendir(own.get()) : nullptr;
    if (!entries)
        return {};
    own.release();
    std::vector<QByteArray> names;
    while (const dirent *entry = ::readdir(entries))
        names.emplace_back(entry->d_name);
    ::closedir(entries);
    return names;
}

bool isOurs(const QByteArray &name)
{
    const std::string_view text(name.constData(), std::size_t(name.size()));
    return text.size() == namePrefix.size() + unique.size()
        && text.substr(0, namePrefix.size()) == namePrefix;
}

/// The lock goes last: a folder that is half removed can be swept again.
void removeFiles(int folder)
{
    for (const QByteArray &name : namesIn(folder)) {
        if (name != lockName)
            ::unlinkat(folder, name.constData(), 0);
    }
    ::unlinkat(folder, lockName, 0);
}

/// Empties the folder when its process is gone. One without a lock is about to get it, or was
/// never used: it is left as it is, and can only be removed when it is empty.
void emptyDead(int folder)
{
    struct stat status = {};
    if (::fstat(folder, &status) != 0 || status.st_uid != ::geteuid())
        return;
    const FileDescriptor lock(
        ::openat(folder, lockName, O_RDWR | O_NOFOLLOW | O_NONBLOCK | O_CLOEXEC));
    if (lock.isOpen() && ::flock(lock.get(), LOCK_EX | LOCK_NB) == 0)
        removeFiles(folder);
}

} // namespace

std::unique_ptr<PreviewFolder> PreviewFolder::make(const QString &parent)
{
    constexpr int tries = 3; // another process may sweep between making and locking
    const QByteArray parentPath = QFile::encodeName(parent);
    ::mkdir(parentPath.constData(), S_IRWXU); // mostly there already
    for (int i = 0; i < tries; ++i) {
        QByteArray path =
            parentPath + '/' + QByteArray(namePrefix.data()) + QByteArray(unique.data());
        if (!::mkdtemp(path.data()))
            return nullptr;
        std::unique_ptr<PreviewFolder> made(new PreviewFolder(path));
        if (made->takeLock())
            return made;
    }
    return nullptr;
}

PreviewFolder::PreviewFolder(QByteArray madeFolder)
    : path(std::move(madeFolder))
    , folder(openFolder(AT_FDCWD, path.constData()))
{
}

bool PreviewFolder::takeLock()
{
    lock.reset(
        ::openat(folder.get(), lockName, O_RDWR | O_CREAT | O_EXCL | O_CLOEXEC, S_IRUSR | S_IWUSR));
    if (!lock.isOpen() || ::flock(lock.get(), LOCK_EX | LOCK_NB) != 0 || !exists())
        return false;
    const QByteArray process = QByteArray::number(::getpid()) + '\n';
    return ::write(lock.get(), process.constData(), std::size_t(process.size())) == process.size();
}

PreviewFolder::~PreviewFolder()
{
    removeFiles(folder.get());
    ::rmdir(path.constData());
}

void PreviewFolder::sweep(const QString &parent)
{
    // The shared folder itself may be a link: only what is ours is touched.
    const FileDescriptor shared = openFolder(AT_FDCWD, QFile::encodeName(parent).constData(), 0);
    if (!shared.isOpen())
        return;
    for (const QByteArray &name : namesIn(shared.get())) {
        const FileDescriptor left =
            isOurs(name) ? openFolder(shared.get(), name.constData()) : FileDescriptor();
        if (!left.isOpen())
            continue;
        emptyDead(left.get());
        ::unlinkat(shared.get(), name.constData(), AT_REMOVEDIR);
    }
}

bool PreviewFolder::exists() const
{
    struct stat status = {};
    return ::fstat(lock.get(), &status) == 0 && status.st_nlink > 0;
}

QString PreviewFolder::pathOf(const QByteArray &name) const
{
    return QFile::decodeName(path + '/' + name);
}

qint64 PreviewFolder::rename(const QByteArray &from, const QByteArray &to) const
{
    struct stat status = {};
    const bool done = ::renameat(folder.get(), from.constData(), folder.get(), to.constData()) == 0
        && ::fstatat(folder.get(), to.constData(), &status, AT_SYMLINK_NOFOLLOW) == 0;
    return done ? qint64(status.st_size) : -1;
}

void PreviewFolder::remove(const QByteArray &name) const
{
    ::unlinkat(folder.get(), name.constData(), 0);
}
