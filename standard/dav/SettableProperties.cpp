#include "standard/dav/SettableProperties.h"

#include "files/Attributes.h"
#include "server/HttpDate.h"
#include "standard/dav/LiveProperties.h"

#include <algorithm>
#include <array>
#include <cerrno>

#include <sys/stat.h>

namespace standard {

namespace {

constexpr auto windowsSpace = "urn:schemas-microsoft-com:";

bool takeDate(const QString &text, std::optional<qint64> &into)
{
    into = parseHttpDate(text.toLatin1());
    return into.has_value();
}

bool takeModified(const QString &text, FileChanges &changes)
{
    return takeDate(text, changes.modified);
}

bool takeAccessed(const QString &text, FileChanges &changes)
{
    return takeDate(text, changes.accessed);
}

bool takeSeconds(const QString &text, FileChanges &changes)
{
    bool isNumber = false;
    changes.modified = text.toLongLong(&isNumber);
    return isNumber;
}

bool takeExecutable(const QString &text, FileChanges &changes)
{
    changes.executable = text == QLatin1String("T");
    return *changes.executable || text == QLatin1String("F");
}

struct Settable
{
    const char *space;
    const char *name;
    bool (*take)(const QString &text, FileChanges &changes);
};

// What the copying programs of two desktops, one sync tool and one mount set after an upload.
// Nothing can set when a file was made here: "Win32CreationTime" is kept as it was given.
constexpr std::array<Settable, 4> settables{ {
    { windowsSpace, "Win32LastModifiedTime", takeModified },
    { windowsSpace, "Win32LastAccessTime", takeAccessed },
    { davSpace, "lastmodified", takeSeconds },
    { apacheSpace, executableName, takeExecutable },
} };

std::optional<timespec> timeOf(const std::optional<qint64> &seconds)
{
    if (!seconds)
        return {};
    return timespec{ time_t(*seconds), 0 };
}

/// Who may read it may run it, too.
mode_t withExecutable(mode_t mode, bool executable)
{
    constexpr mode_t runs = S_IXUSR | S_IXGRP | S_IXOTH;
    const mode_t readers = mode & (S_IRUSR | S_IRGRP | S_IROTH);
    return executable ? mode | (readers >> 2) : mode & ~runs;
}

} // namespace

Setting takeSetting(const PropertyChange &change, bool isFile, FileChanges &changes)
{
    const auto found =
        std::find_if(settables.begin(), settables.end(), [&change](const Settable &each) {
            return change.name.local == QLatin1String(each.name)
                && change.name.space == QLatin1String(each.space);
        });
    if (found == settables.end())
        return Setting::Kept;
    // Without its rights to run nobody could enter a folder.
    const bool isTold = findLiveProperty(change.name) != nullptr;
    if (isTold && (change.isRemoval || !isFile))
        return Setting::Protected;
    // What is never told isn't there: its removal is no failure (RFC 4918, section 14.23).
    if (change.isRemoval)
        return Setting::Taken;
    return found->take(change.value.text.trimmed(), changes) ? Setting::Taken : Setting::Bad;
}

int changeFile(const FileChanges &changes, int descriptor)
{
    struct stat before = {};
    if (changes.isEmpty())
        return 0;
    if (::fstat(descriptor, &before) != 0)
        return errno;
    const mode_t permissions = before.st_mode & 07777;
    if (changes.executable
        && ::fchmod(descriptor, withExecutable(permissions, *changes.executable)) != 0)
        return errno;
    const bool setsTimes = changes.accessed || changes.modified;
    const int error =
        setsTimes ? setTimes(descriptor, timeOf(changes.accessed), timeOf(changes.modified)) : 0;
    if (error != 0 && changes.executable)
        ::fchmod(descriptor, permissions);
    return error;
}

} // namespace standard
