#include "files/FolderListing.h"

#include "files/HiddenUploads.h"
#include "files/Path.h"

#include <QFile>
#include <QString>

#include <algorithm>
#include <cstring>
#include <new>
#include <utility>

#include <sys/stat.h>

namespace {

/// Below that much, all of a folder is put in order at once.
constexpr qint64 smallFolder = 4096;

constexpr qint64 perSecond = 1000000000;

qint64 toNanoseconds(const timespec &time)
{
    return qint64(time.tv_sec) * perSecond + time.tv_nsec;
}

/// The place of a first byte of UTF-8 in the order of UTF-16, in which pages have always been:
/// pairs of surrogates stand before U+E000 and what follows.
int utf16Rank(char byte)
{
    const int value = static_cast<unsigned char>(byte);
    const bool behindSurrogates = value == 0xEE || value == 0xEF;
    return behindSurrogates ? value + 0x10 : value;
}

bool precedes(std::string_view a, std::string_view b)
{
    const auto [differsInA, differsInB] = std::mismatch(a.begin(), a.end(), b.begin(), b.end());
    if (differsInA == a.end() || differsInB == b.end())
        return a.size() < b.size();
    return utf16Rank(*differsInA) < utf16Rank(*differsInB);
}

bool isLowerAscii(std::string_view name)
{
    return std::all_of(name.begin(), name.end(),
                       [](char c) { return c >= 0 && (c < 'A' || c > 'Z'); });
}

/// The name in lower case; nothing when that is the same.
QByteArray folded(std::string_view name)
{
    if (isLowerAscii(name))
        return {};
    const QByteArray bytes(name.data(), int(name.size()));
    const QByteArray lower = QFile::decodeName(bytes).toLower().toUtf8();
    return lower == bytes ? QByteArray() : lower;
}

} // namespace

FolderStamp FolderStamp::of(int descriptor)
{
    struct stat status = {};
    if (::fstat(descriptor, &status) != 0)
        return {};
    return { status.st_dev, status.st_ino, toNanoseconds(status.st_mtim),
             toNanoseconds(status.st_ctim) };
}

qint64 FolderListing::Entry::modifiedSeconds() const
{
    return modified >= 0 ? modified / 1000 : (modified - 999) / 1000;
}

FolderListing::FolderListing(FolderReader reader, ListingShape shape, Window window)
    : unread(std::move(reader))
    , folderStamp(FolderStamp::of(unread->descriptor()))
    , wanted(std::move(shape))
    , arranged(window)
    , names(std::make_shared<std::string>())
{
}

FolderListing::FolderListing(FolderReader reader, ListingShape shape)
    : FolderListing(std::move(reader), std::move(shape), Window())
{
}

FolderListing::FolderListing(std::shared_ptr<const FolderListing> finished)
    : known(std::move(finished))
    , folderStamp(known->folderStamp)
    , wanted(known->wanted)
    , names(known->names)
{
}

FolderListing::FolderListing(const FolderListing &finished, qint64 most)
    : folderStamp(finished.folderStamp)
    , wanted(finished.wanted)
    , names(std::make_shared<std::string>())
    , rows(finished.rows.begin(), finished.rows.begin() + std::min(most, finished.count()))
{
    for (Row &row : rows) {
        const std::string_view name = finished.nameOf(row);
        row.name = names->size();
        row.foldedSize = 0;
        names->append(name);
    }
}

bool FolderListing::run(const Budget &until)
{
    try {
        return goOn(until);
    } catch (const std::bad_alloc &) {
        unread.reset();
        rows = {};
        names.reset();
        complete = false;
    }
    return true;
}

bool FolderListing::goOn(const Budget &until)
{
    if (known) {
        if (!until.mayBlock() && known->count() > smallFolder)
            return false;
        rows = std::exchange(known, {})->rows;
    } else if (unread && !read(until)) {
        return until.isCancelled();
    }
    arrange();
    return true;
}

bool FolderListing::read(const Budget &until)
{
    FolderReader::Item item;
    while (unread->next(item)) {
        if (isListed(item.name))
            add(item);
        if (until.isUsedUp())
            return false;
    }
    unread.reset();
    return true;
}

bool FolderListing::isListed(const char *name) const
{
    return (wanted.hidden || name[0] != '.') && !isHiddenUpload(name)
        && isSpellable(QByteArray::fromRawData(name, int(std::strlen(name))));
}

bool FolderListing::isListed(const EntryFacts &facts) const
{
    const bool kind = facts.file || (facts.folder && wanted.folders)
        || (facts.link && facts.exists && wanted.links);
    return kind && (facts.readable || wanted.unreadable);
}

void FolderListing::add(const FolderReader::Item &item)
{
    const EntryFacts facts = unread->facts(item);
    if (!isListed(facts))
        return;
    const std::string_view name(item.name);
    const QByteArray lower =
        wanted.order == ListingShape::Order::ByNameInAnyCase ? folded(name) : QByteArray();
    rows.push_back({ names->size(), facts.size, facts.modified(), quint16(name.size()),
                     quint16(lower.size()), facts.folder, facts.link, facts.readable });
    names->append(name).append(lower.constData(), std::size_t(lower.size()));
}

void FolderListing::arrange()
{
    if (count() <= smallFolder)
        arranged = {};
    const auto less = [this](const Row &a, const Row &b) { return precedes(a, b); };
    const qint64 firstIndex = std::min(std::max<qint64>(arranged.first, 0), count());
    const auto first = rows.begin() + firstIndex;
    const auto last = first + std::min(std::max<qint64>(arranged.count, 0), count() - firstIndex);
    if (first != rows.begin() && first != rows.end())
        std::nth_element(rows.begin(), first, rows.end(), less);
    if (last != rows.end())
        std::nth_element(first, last, rows.end(), less);
    std::sort(first, last, less);
}

bool FolderListing::precedes(const Row &a, const Row &b) const
{
    if (wanted.foldersFirst && a.folder != b.folder)
        return a.folder;
    const qint64 keyOfA = key(a);
    const qint64 keyOfB = key(b);
    if (keyOfA != keyOfB)
        return keyOfA > keyOfB;
    return precedesByName(a, b);
}

bool FolderListing::precedesByName(const Row &a, const Row &b) const
{
    const std::string_view foldedA = foldedNameOf(a);
    const std::string_view foldedB = foldedNameOf(b);
    return foldedA == foldedB ? ::precedes(nameOf(a), nameOf(b)) : ::precedes(foldedA, foldedB);
}

std::string_view FolderListing::nameOf(const Row &row) const
{
    return std::string_view(*names).substr(row.name, row.nameSize);
}

std::string_view FolderListing::foldedNameOf(const Row &row) const
{
    if (row.foldedSize == 0)
        return nameOf(row);
    return std::string_view(*names).substr(row.name + row.nameSize, row.foldedSize);
}

/// By what the order compares; the larger comes first.
qint64 FolderListing::key(const Row &row) const
{
    switch (wanted.order) {
    case ListingShape::Order::NewestFirst:
        return row.modified;
    case ListingShape::Order::LargestFirst:
        return row.size;
    default:
        return 0;
    }
}

bool FolderListing::covers(Window window) const
{
    const qint64 end = std::min(window.count, count() - window.first) + window.first;
    const bool whole = arranged.first == 0 && arranged.count >= count();
    return whole || (window.first >= arranged.first && end - arranged.first <= arranged.count);
}

FolderListing::Entry FolderListing::at(qint64 index) const
{
    const Row &row = rows[std::size_t(index)];
    return { QByteArray(names->data() + row.name, row.nameSize),
             row.size,
             row.modified,
             row.folder,
             row.link,
             row.readable };
}

std::shared_ptr<const MemoryBudget::Part> FolderListing::placeIn(MemoryBudget &budget) const
{
    std::shared_ptr<const MemoryBudget::Part> found = place.lock();
    if (!found)
        place = found = std::make_shared<MemoryBudget::Part>(budget, bytes());
    return found->isGranted() ? found : nullptr;
}

qint64 FolderListing::bytes() const
{
    const std::size_t size = sizeof *this + rows.capacity() * sizeof(Row) + names->capacity();
    return qint64(size);
}
