#include "files/CopiedEntries.h"

#include <QCryptographicHash>

#include <algorithm>
#include <cstring>

#include <fcntl.h>
#include <sys/stat.h>

namespace {

constexpr qint64 nanosecondsInSecond = 1000000000;
constexpr std::size_t maxEntries = std::size_t(8) << 20;

/// No two of a tree are alike but by a chance of one to billions.
quint64 fingerprint(const QByteArray &path, const EntryStamp &stamp)
{
    QCryptographicHash hash(QCryptographicHash::Sha1);
    for (const qint64 value : { qint64(stamp.kind), stamp.size, stamp.modified })
        hash.addData(QByteArray::number(value) + '/');
    hash.addData(path);
    quint64 first = 0;
    std::memcpy(&first, hash.result().constData(), sizeof first);
    return first;
}

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

void CopiedEntries::add(const QByteArray &path, const EntryStamp &before)
{
    if (fingerprints.size() < maxEntries)
        fingerprints.push_back(fingerprint(path, before));
}

void CopiedEntries::close()
{
    std::sort(fingerprints.begin(), fingerprints.end());
}

bool CopiedEntries::holds(const QByteArray &path, int folder, const char *name) const
{
    const std::optional<EntryStamp> now = EntryStamp::of(folder, name);
    return now
        && std::binary_search(fingerprints.begin(), fingerprints.end(), fingerprint(path, *now));
}
