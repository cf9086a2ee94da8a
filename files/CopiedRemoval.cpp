#include "files/CopiedRemoval.h"

#include <cerrno>
#include <utility>

#include <fcntl.h>
#include <unistd.h>

namespace {

constexpr int realFolder = O_RDONLY | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC;

bool isGone(int unlinked)
{
    return unlinked == 0 || errno == ENOENT;
}

} // namespace

bool CopiedRemoval::run(const Budget &until)
{
    if (!until.mayBlock())
        return false;
    CopiedEntries::Record record;
    while (copied->next(record)) {
        take(record);
        if (until.isUsedUp())
            return until.isCancelled();
    }
    return true;
}

void CopiedRemoval::take(const CopiedEntries::Record &record)
{
    switch (record.kind) {
    case CopiedEntries::Kind::Entry:
        whole = removeEntry(record);
        return;
    case CopiedEntries::Kind::Folder:
        levels.push_back(
            { record.name,
              FileDescriptor(::openat(current(), record.name.constData(), realFolder)) });
        return;
    case CopiedEntries::Kind::End:
        whole = removeFolder();
        return;
    }
}

bool CopiedRemoval::removeEntry(const CopiedEntries::Record &record) const
{
    const char *name = record.name.constData();
    const std::optional<EntryStamp> now = EntryStamp::of(current(), name);
    if (!now)
        return errno == ENOENT;
    return *now == record.stamp && isGone(::unlinkat(current(), name, 0));
}

/// The current one. The system removes it only when it is empty.
bool CopiedRemoval::removeFolder()
{
    const QByteArray name = std::move(levels.back().name);
    levels.pop_back();
    return isGone(::unlinkat(current(), name.constData(), AT_REMOVEDIR));
}
