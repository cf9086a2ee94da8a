#include "files/CopiedEntries.h"

#include <fcntl.h>
#include <sys/stat.h>

namespace {

constexpr qint64 nanosecondsInSecond = 1000000000;

} // namespace

std::optional<EntryStamp> EntryStamp::of(int folder, const char *name)
{
    struct stat status = {};
    if (::fstatat(folder, name, &status, AT_SYMLINK_NOFOLLOW) != 0)
        return {};
    if (S_ISDIR(status.st_mode))
        return EntryStamp{ S_IFDIR };
    return EntryStamp{ status.st_mode & S_IFMT, status.st_size,
                       status.st_mtim.tv_sec * nanosecondsInSecond + status.st_mtim.tv_nsec };
}

bool CopiedEntries::holds(const QByteArray &path, int folder, const char *name) const
{
    const auto found = stamps.constFind(path);
    return found != stamps.constEnd() && EntryStamp::of(folder, name) == *found;
}
