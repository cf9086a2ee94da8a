#include "files/Attributes.h"

#include <QByteArray>
#include <QList>

#include <array>
#include <cerrno>

#include <sys/stat.h>
#include <sys/xattr.h>
#include <unistd.h>

namespace {

/// What a call gives that tells the size when asked with none.
template <typename Call> QByteArray readWhole(Call call)
{
    const ssize_t size = call(nullptr, 0);
    if (size <= 0)
        return {};
    QByteArray data(int(size), Qt::Uninitialized);
    const ssize_t read = call(data.data(), std::size_t(size));
    data.truncate(read < 0 ? 0 : int(read));
    return data;
}

/// Rights beyond those of the mode: a program that ran with privileges must not run with another
/// content.
bool isPrivilege(const QByteArray &name)
{
    return name.startsWith("security.");
}

void copyExtended(int from, int to)
{
    const QByteArray list =
        readWhole([from](char *data, std::size_t size) { return ::flistxattr(from, data, size); });
    const QList<QByteArray> names = list.split('\0');
    for (const QByteArray &name : names) {
        if (name.isEmpty() || isPrivilege(name))
            continue;
        const QByteArray value = readWhole([from, &name](char *data, std::size_t size) {
            return ::fgetxattr(from, name.constData(), data, size);
        });
        ::fsetxattr(to, name.constData(), value.constData(), std::size_t(value.size()), 0);
    }
}

} // namespace

int changeMode(int file, mode_t mode)
{
    if (::fchmod(file, mode & permissionBits) == 0)
        return 0;
    // FAT knows no modes but those of the mount: it refuses the others, or all (EPERM, ENOSYS).
    const bool isUnknown = errno == EPERM || errno == ENOSYS || errno == EOPNOTSUPP;
    return isUnknown ? 0 : errno;
}

int setTimes(int file, const std::optional<timespec> &accessed,
             const std::optional<timespec> &modified)
{
    struct stat status = {};
    if (::fstat(file, &status) != 0)
        return errno;
    // Always both: many FUSE file systems take no notice when one is left out, and don't say so.
    const std::array<timespec, 2> times{ accessed.value_or(status.st_atim),
                                         modified.value_or(status.st_mtim) };
    return ::futimens(file, times.data()) == 0 ? 0 : errno;
}

int copyAttributes(int from, int to)
{
    struct stat status = {};
    if (::fstat(from, &status) != 0)
        return errno;
    // Not everybody may give files away; the group is often allowed.
    if (::fchown(to, status.st_uid, status.st_gid) != 0
        && ::fchown(to, uid_t(-1), status.st_gid) != 0)
        errno = 0;
    if (const int error = changeMode(to, status.st_mode))
        return error;
    copyExtended(from, to);
    return 0;
}

void copyProperties(int from, int to)
{
    copyExtended(from, to);
    struct stat status = {};
    if (::fstat(from, &status) == 0)
        setTimes(to, {}, status.st_mtim);
}
