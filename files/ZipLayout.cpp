#include "files/ZipLayout.h"

#include <QCryptographicHash>

#include <algorithm>
#include <array>
#include <utility>

namespace {

constexpr int tagBytes = 16;

/// By these a file is known to hold what it held.
std::array<qint64, 5> versionOf(const EntryFacts &facts)
{
    return { qint64(facts.inode), facts.size, facts.nanoseconds, facts.changeSeconds,
             facts.changeNanoseconds };
}

} // namespace

ZipLayout::ZipLayout(std::vector<ZipEntry> found, qint64 since)
    : all(std::move(found))
    , m_newest(since)
{
    std::sort(all.begin(), all.end(),
              [](const ZipEntry &a, const ZipEntry &b) { return a.path < b.path; });
    QCryptographicHash hash(QCryptographicHash::Sha256);
    for (ZipEntry &entry : all) {
        entry.offset = m_directory;
        const QByteArray local = zipLocalRecord(entry);
        const QByteArray central = zipCentralRecord(entry, 0);
        m_directory += local.size() + entry.size() + zipDescriptor(entry, 0).size();
        directoryBytes += central.size();
        m_newest = std::max(m_newest, entry.facts.seconds);
        m_memory += qint64(sizeof entry + entry.path.capacity());
        hash.addData(central);
        // What becomes of a folder shows by its entries.
        const auto version =
            entry.facts.folder ? decltype(versionOf({}))() : versionOf(entry.facts);
        hash.addData(QByteArray::fromRawData(reinterpret_cast<const char *>(version.data()),
                                             int(sizeof version)));
    }
    m_tag = hash.result().left(tagBytes).toHex();
}

std::size_t ZipLayout::entryAt(qint64 offset) const
{
    const auto behind =
        std::upper_bound(all.begin(), all.end(), offset,
                         [](qint64 at, const ZipEntry &entry) { return at < entry.offset; });
    return std::size_t(behind - all.begin()) - 1;
}

QByteArray ZipLayout::end() const
{
    return zipEnd(qint64(all.size()), m_directory, directoryBytes);
}

qint64 ZipLayout::size() const
{
    return m_directory + directoryBytes + end().size();
}
