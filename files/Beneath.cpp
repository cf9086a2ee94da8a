#include "files/Beneath.h"

#include <cerrno>

#include <fcntl.h>
#include <linux/openat2.h>
#include <sys/syscall.h>
#include <unistd.h>

namespace {

constexpr int lookUpAttempts = 8;

const char *orDot(const QByteArray &path)
{
    return path.isEmpty() ? "." : path.constData();
}

/// A kernel may lack the call, and a sandbox may forbid it.
bool isUnknownCall(int error)
{
    return error == ENOSYS || error == EPERM;
}

FileDescriptor openResolved(int root, const QByteArray &path, int flags, quint64 resolve)
{
    struct open_how how = {};
    how.flags = quint64(flags | O_CLOEXEC);
    how.resolve = resolve;
    // The kernel gives up with EAGAIN when something is renamed on the way.
    for (int attempt = 0;; ++attempt) {
        const long fd = ::syscall(SYS_openat2, root, orDot(path), &how, sizeof how);
        if (fd >= 0 || errno != EAGAIN || attempt == lookUpAttempts)
            return FileDescriptor(int(fd));
    }
}

FileDescriptor openStep(int folder, const QByteArray &name, int flags)
{
    return FileDescriptor(::openat(folder, orDot(name), flags | O_NOFOLLOW | O_CLOEXEC));
}

/// Segment by segment, for systems without `openat2`.
FileDescriptor walkBeneath(int root, const QByteArray &path, int flags)
{
    FileDescriptor folder;
    int from = root;
    decltype(path.indexOf('/')) start = 0;
    for (auto slash = path.indexOf('/'); slash >= 0; slash = path.indexOf('/', start)) {
        folder = openStep(from, path.mid(start, slash - start), O_PATH | O_DIRECTORY);
        if (!folder.isOpen())
            return folder;
        from = folder.get();
        start = slash + 1;
    }
    return openStep(from, path.mid(start), flags);
}

} // namespace

FileDescriptor openPlain(int root, const QByteArray &path, int flags)
{
    FileDescriptor found =
        openResolved(root, path, flags, RESOLVE_BENEATH | RESOLVE_NO_SYMLINKS | RESOLVE_NO_XDEV);
    if (!found.isOpen() && isUnknownCall(errno))
        errno = ELOOP;
    return found;
}

FileDescriptor openBeneath(int root, const QByteArray &path, int flags)
{
    FileDescriptor found = openResolved(root, path, flags, RESOLVE_BENEATH | RESOLVE_NO_MAGICLINKS);
    if (found.isOpen() || !isUnknownCall(errno))
        return found;
    return walkBeneath(root, path, flags);
}
