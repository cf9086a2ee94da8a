#include "files/Rename.h"

#include "files/Entry.h"
#include "files/HiddenUploads.h"
#include "files/Log.h"
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

/// Not every file system knows every flag.
bool isUnknownFlag(int error)
{
    return error == EINVAL || error == ENOSYS || error == EOPNOTSUPP;
}

int exchangeNames(const Place &a, const Place &b)
{
    const int failed = ::renameat2(a.folder.get(), a.name.constData(), b.folder.get(),
                                   b.name.constData(), RENAME_EXCHANGE);
    return failed == 0 ? 0 : errno;
}

int renameHere(const Place &place, const QByteArray &from, const QByteArray &to)
{
    return renameNew(place.folder.get(), from, place.folder.get(), to);
}

void giveBack(const Place &place, const QByteArray &aside)
{
    if (const int error = renameHere(place, aside, place.name))
        qCWarning(filesLog) << place.name << "is called" << aside
                            << "now:" << qt_error_string(error);
}

/// Both have changed their names: what was replaced stands at `at` by now.
int hideReplaced(const Place &at, const Place &to, Place &old)
{
    if (isHiddenUpload(at.name.constData())) {
        old = beside(at, at.name);
        return 0;
    }
    const QByteArray hidden = hiddenUploadName();
    if (const int error = renameHere(at, at.name, hidden)) {
        exchangeNames(at, to);
        return error;
    }
    old = beside(at, hidden);
    return 0;
}

int replaceInSteps(const Place &from, const Place &to, Place &old)
{
    const QByteArray aside = asideName(to.name);
    if (const int error = renameHere(to, to.name, aside))
        return error;
    if (const int error = renameNew(from.folder.get(), from.name, to.folder.get(), to.name)) {
        giveBack(to, aside);
        return error;
    }
    // From now on it may be swept away.
    const QByteArray hidden = hiddenUploadName();
    old = beside(to, renameHere(to, aside, hidden) == 0 ? hidden : aside);
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
    if (Reservation::isTaken(from) || isInUse(to))
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

int renameReplacing(const Place &from, const Place &to, Place &old)
{
    const int error = renameOver(from, to);
    if (error != EISDIR && error != ENOTDIR)
        return error;
    if (from.holdsHidden || to.holdsHidden)
        return EBUSY;
    const int failed = exchangeNames(from, to);
    if (failed == 0)
        return hideReplaced(from, to, old);
    return isUnknownFlag(failed) ? replaceInSteps(from, to, old) : failed;
}

int respell(const Place &from, const Place &to)
{
    if (from.holdsHidden || Reservation::isTaken(from))
        return EBUSY;
    const QByteArray aside = asideName(from.name);
    if (const int error = renameHere(from, from.name, aside))
        return error;
    const int error = renameHere(from, aside, to.name);
    if (error != 0)
        giveBack(from, aside);
    return error;
}

int renameNew(int fromFolder, const QByteArray &from, int toFolder, const QByteArray &to)
{
    const char *oldName = from.constData();
    const char *newName = to.constData();
    if (::renameat2(fromFolder, oldName, toFolder, newName, RENAME_NOREPLACE) == 0)
        return 0;
    if (!isUnknownFlag(errno))
        return errno;
    // Not every one knows links either.
    const int error = renameByLink(fromFolder, oldName, toFolder, newName);
    const bool noLinks = error == EPERM || error == EOPNOTSUPP;
    return noLinks ? checkedRename(fromFolder, oldName, toFolder, newName) : error;
}
