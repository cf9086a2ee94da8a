#include "files/Entry.h"

#include <QByteArray>

#include <fcntl.h>
#include <unistd.h>

namespace {

EntryFacts toFacts(const struct stat &status)
{
    EntryFacts facts;
    facts.exists = true;
    facts.folder = S_ISDIR(status.st_mode);
    facts.file = S_ISREG(status.st_mode);
    facts.mode = status.st_mode;
    facts.device = status.st_dev;
    facts.inode = status.st_ino;
    facts.size = status.st_size;
    facts.seconds = status.st_mtim.tv_sec;
    facts.nanoseconds = qint32(status.st_mtim.tv_nsec);
    facts.changeSeconds = status.st_ctim.tv_sec;
    facts.changeNanoseconds = qint32(status.st_ctim.tv_nsec);
    return facts;
}

/// Its owner's right to read decides alone (POSIX.1, file access permissions), which spares most
/// entries a second call. The rest is a matter of groups, lists and privileges.
bool isReadable(int folder, const char *name, const struct stat &status)
{
    static const uid_t self = ::getuid();
    if (status.st_uid == self && (status.st_mode & S_IRUSR) != 0)
        return true;
    return ::faccessat(folder, name, R_OK, 0) == 0;
}

} // namespace

EntryFacts entryFacts(int folder, const char *name)
{
    struct stat status = {};
    if (::fstatat(folder, name, &status, AT_SYMLINK_NOFOLLOW) != 0)
        return {};
    if (S_ISLNK(status.st_mode))
        return linkFacts(folder, name);
    EntryFacts facts = toFacts(status);
    facts.readable = isReadable(folder, name, status);
    return facts;
}

EntryFacts linkFacts(int folder, const char *name)
{
    struct stat status = {};
    EntryFacts facts;
    if (::fstatat(folder, name, &status, 0) == 0) {
        facts = toFacts(status);
        facts.readable = isReadable(folder, name, status);
    }
    facts.link = true;
    return facts;
}

EntryFacts entryFacts(int descriptor)
{
    struct stat status = {};
    if (::fstat(descriptor, &status) != 0)
        return {};
    EntryFacts facts = toFacts(status);
    const QByteArray place = "/proc/self/fd/" + QByteArray::number(descriptor);
    facts.readable = isReadable(AT_FDCWD, place.constData(), status);
    return facts;
}

EntryFacts openFacts(int descriptor)
{
    struct stat status = {};
    if (::fstat(descriptor, &status) != 0)
        return {};
    EntryFacts facts = toFacts(status);
    facts.readable = true;
    return facts;
}

bool isSameEntry(const EntryFacts &a, const EntryFacts &b)
{
    return a.exists && b.exists && a.device == b.device && a.inode == b.inode;
}

bool isUnchanged(const EntryFacts &before, const EntryFacts &now)
{
    return isSameEntry(before, now) && before.size == now.size && before.seconds == now.seconds
        && before.nanoseconds == now.nanoseconds;
}

bool isUntouched(const EntryFacts &before, const EntryFacts &now)
{
    return isUnchanged(before, now) && before.changeSeconds == now.changeSeconds
        && before.changeNanoseconds == now.changeNanoseconds;
}
