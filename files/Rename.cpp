#include "files/Rename.h"

#include "files/Entry.h"
#include "files/Reservation.h"

#include <cerrno>
#include <cstdio>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace {

bool isTaken(int folder, const char *name)
{
    const EntryFacts facts = entryFacts(folder, name);
    return facts.exists || facts.link;
}

int checkedRename(int fromFolder, const char *from, int toFolder, const char *to)
{
    if (isTaken(toFolder, to))
        return EEXIST;
    return ::renameat(fromFolder, from, toFolder, to) == 0 ? 0 : errno;
}

int renameByLink(int fromFolder, const char *from, int toFolder, const char *to)
{
    if (::linkat(fromFolder, from, toFolder, to, 0) != 0)
        return errno;
    if (::unlinkat(fromFolder, from, 0) != 0)
        return errno;
    // FUSE takes the two names for two files: what the system knows of the second one is from
    // before the first one went, and would soon change.
    struct statx asked = {};
    ::statx(toFolder, to, AT_SYMLINK_NOFOLLOW | AT_STATX_FORCE_SYNC, STATX_BASIC_STATS, &asked);
    return 0;
}

} // namespace

int renameNew(const Place &from, const Place &to)
{
    if (!from.isValid() || !to.isValid())
        return ENOENT;
    if (from.holdsHidden || Reservation::isTaken(from))
        return EBUSY;
    if (Reservation::isTaken(to))
        return EEXIST;
    return renameNew(from.folder.get(), from.name, to.folder.get(), to.name);
}

int renameOver(const Place &from, const Place &to)
{
    if (!from.isValid() || !to.isValid())
        return ENOENT;
    if (Reservation::isTaken(from) || Reservation::isTaken(to))
        return EBUSY;
    const EntryFacts old = entryFacts(from.folder.get(), from.name.constData());
    const EntryFacts there = entryFacts(to.folder.get(), to.name.constData());
    // A link may lead to a folder, but is none.
    if (old.folder && !old.link)
        return ENOTDIR;
    if (there.folder && !there.link)
        return EISDIR;
    const int failed =
        ::renameat(from.folder.get(), from.name.constData(), to.folder.get(), to.name.constData());
    return failed == 0 ? 0 : errno;
}

int renameNew(int fromFolder, const QByteArray &from, int toFolder, const QByteArray &to)
{
    const char *oldName = from.constData();
    const char *newName = to.constData();
    if (::renameat2(fromFolder, oldName, toFolder, newName, RENAME_NOREPLACE) == 0)
        return 0;
    // Not every file system knows the flag, and not every one knows links.
    if (errno != EINVAL && errno != ENOSYS)
        return errno;
    const int error = renameByLink(fromFolder, oldName, toFolder, newName);
    const bool noLinks = error == EPERM || error == EOPNOTSUPP;
    return noLinks ? checkedRename(fromFolder, oldName, toFolder, newName) : error;
}
