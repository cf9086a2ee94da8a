#include "files/ZipLayout.h"

#include <algorithm>
#include <array>
#include <numeric>
#include <tuple>
#include <utility>

namespace {

constexpr int tagBytes = 16;

/// By these a file is known to hold what it held.
std::array<qint64, 5> versionOf(const EntryFacts &facts)
{
    return { qint64(facts.inode), facts.size, facts.nanoseconds, facts.changeSeconds,
             facts.changeNanoseconds };
}

/// By their paths, without making any: what is in a folder follows it, by its names.
std::vector<quint32> inOrder(const ZipEntries &all)
{
    std::vector<quint32> byFolder(all.size());
    std::iota(byFolder.begin(), byFolder.end(), 0);
    std::sort(byFolder.begin(), byFolder.end(), [&all](quint32 a, quint32 b) {
        return std::tie(all[a].folder, all[a].name) < std::tie(all[b].folder, all[b].name);
    });
    const auto contentOf = [&](std::size_t folder) {
        return std::lower_bound(
            byFolder.begin(), byFolder.end(), folder,
            [&all](quint32 each, std::size_t wanted) { return all[each].folder < wanted; });
    };
    std::vector<quint32> order;
    order.reserve(all.size());
    struct Level
    {
        std::vector<quint32>::iterator next;
        std::vector<quint32>::iterator end;
    };
    std::vector<Level> levels{ { byFolder.begin(), contentOf(1) } };
    while (!levels.empty()) {
        if (levels.back().next == levels.back().end) {
            levels.pop_back();
            continue;
        }
        const quint32 index = *levels.back().next++;
        order.push_back(index);
        if (all[index].facts.folder)
            levels.push_back({ contentOf(index + 1), contentOf(index + 2) });
    }
    return order;
}

} // namespace

QByteArray zipPath(const ZipEntries &all, const ZipEntry &entry)
{
    const auto above = [&all](const ZipEntry &each) {
        return each.folder == 0 ? nullptr : &all[each.folder - 1];
    };
    std::size_t size = 0;
    for (const ZipEntry *each = &entry; each; each = above(*each))
        size += each->name.size();
    QByteArray path(int(size), Qt::Uninitialized);
    char *begin = path.data() + size;
    for (const ZipEntry *each = &entry; each; each = above(*each)) {
        begin -= each->name.size();
        std::copy(each->name.begin(), each->name.end(), begin);
    }
    return path;
}

ZipLayout::ZipLayout(ZipEntries found, qint64 since, std::unique_ptr<MemoryBudget::Part> memory)
    : all(std::move(found))
    , order(inOrder(all))
    , part(std::move(memory))
    , m_newest(since)
{
}

void ZipLayout::place(std::size_t number, QCryptographicHash &hash)
{
    ZipEntry &entry = all[order[number]];
    entry.offset = m_directory;
    const QByteArray central = centralRecord(number, 0);
    m_directory += localRecord(number).size() + entry.size() + descriptor(number, 0).size();
    directoryBytes += central.size();
    m_newest = std::max(m_newest, entry.facts.seconds);
    m_memory += memoryOf(entry);
    hash.addData(central);
    // What becomes of a folder shows by its entries.
    const auto version = entry.facts.folder ? decltype(versionOf({}))() : versionOf(entry.facts);
    hash.addData(QByteArray::fromRawData(reinterpret_cast<const char *>(version.data()),
                                         int(sizeof version)));
}

qint64 ZipLayout::memoryOf(const ZipEntry &entry)
{
    constexpr qint64 aside = 32; // in the order, with the sums, and of the allocator
    return qint64(sizeof entry + entry.name.capacity()) + aside;
}

QByteArray ZipLayout::localRecord(std::size_t number) const
{
    return zipLocalRecord(entry(number), path(number));
}

QByteArray ZipLayout::descriptor(std::size_t number, quint32 sum) const
{
    return zipDescriptor(entry(number), sum);
}

QByteArray ZipLayout::centralRecord(std::size_t number, quint32 sum) const
{
    return zipCentralRecord(entry(number), path(number), sum);
}

std::size_t ZipLayout::entryAt(qint64 offset) const
{
    const auto behind =
        std::upper_bound(order.begin(), order.end(), offset,
                         [this](qint64 at, quint32 each) { return at < all[each].offset; });
    return std::size_t(behind - order.begin()) - 1;
}

QByteArray ZipLayout::end() const
{
    return zipEnd(qint64(all.size()), m_directory, directoryBytes);
}

qint64 ZipLayout::size() const
{
    return m_directory + directoryBytes + end().size();
}

ZipLayoutMaker::ZipLayoutMaker(ZipEntries found, qint64 since,
                               std::unique_ptr<MemoryBudget::Part> memory)
    : layout(new ZipLayout(std::move(found), since, std::move(memory)))
{
}

bool ZipLayoutMaker::placeNext()
{
    if (placed < layout->count())
        layout->place(placed++, hash);
    if (placed < layout->count())
        return false;
    layout->m_tag = hash.result().left(tagBytes).toHex();
    return true;
}
