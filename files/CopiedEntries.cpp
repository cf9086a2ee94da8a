#include "files/CopiedEntries.h"

#include <utility>

#include <fcntl.h>
#include <sys/stat.h>

namespace {

constexpr qint64 nanosecondsInSecond = 1000000000;
constexpr mode_t ownerOnly = 0600;

qint64 sinceEpoch(const timespec &time)
{
    return time.tv_sec * nanosecondsInSecond + time.tv_nsec;
}

} // namespace

std::optional<EntryStamp> EntryStamp::of(int folder, const char *name)
{
    struct stat status = {};
    if (::fstatat(folder, name, &status, AT_SYMLINK_NOFOLLOW) != 0)
        return {};
    return EntryStamp{ status.st_mode & S_IFMT, status.st_size, sinceEpoch(status.st_mtim),
                       sinceEpoch(status.st_ctim) };
}

bool CopiedEntries::open(Place beside)
{
    file.meanFor(std::move(beside));
    if (file.make(ownerOnly) != 0 || !buffered.open(file.descriptor(), QIODevice::ReadWrite))
        return false;
    stream.setDevice(&buffered);
    return true;
}

void CopiedEntries::add(const Record &record)
{
    const EntryStamp &stamp = record.stamp;
    stream << quint8(record.kind) << record.name << stamp.kind << stamp.size << stamp.modified
           << stamp.changed;
}

bool CopiedEntries::rewind()
{
    return stream.status() == QDataStream::Ok && buffered.flush() && buffered.seek(0);
}

bool CopiedEntries::next(Record &record)
{
    EntryStamp &stamp = record.stamp;
    quint8 kind = 0;
    stream >> kind >> record.name >> stamp.kind >> stamp.size >> stamp.modified >> stamp.changed;
    record.kind = Kind(kind);
    return stream.status() == QDataStream::Ok;
}
