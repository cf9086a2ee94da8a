#pragma once

#include "files/DiskJob.h"
#include "files/FolderReader.h"
#include "files/MemoryBudget.h"

#include <QByteArray>
#include <QtGlobal>

#include <limits>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

/// What tells that a folder's entries are still those that were read.
struct FolderStamp
{
    dev_t device = 0;
    ino_t inode = 0;
    qint64 modified = 0; ///< nanoseconds since 1970-01-01 UTC, like the next
    qint64 changed = 0;

    /// Of an open folder.
    static FolderStamp of(int descriptor);

    bool operator==(const FolderStamp &other) const
    {
        return device == other.device && inode == other.inode && modified == other.modified
            && changed == other.changed;
    }
};

/// Which entries a listing has, and in what order; names decide between equals.
struct ListingShape
{
    enum class Order { ByName, ByNameInAnyCase, NewestFirst, LargestFirst };

    Order order = Order::ByName;
    bool foldersFirst = true;
    bool folders = true; ///< or files alone
    bool hidden = false; ///< names with a leading "." too
    bool unreadable = false; ///< what can't be read too
    bool links = false; ///< whatever they lead to
    std::pair<dev_t, ino_t> border = {}; ///< beyond which they lead nowhere

    bool operator==(const ListingShape &other) const
    {
        return order == other.order && foldersFirst == other.foldersFirst
            && folders == other.folders && hidden == other.hidden && unreadable == other.unreadable
            && links == other.links && border == other.border;
    }
};

/// The entries of a folder that a request can name: regular files and folders, through links as
/// well, with what one look told of them. A job; its results are there when it is finished and
/// never change. Of a large folder only the wanted window is put in order.
class FolderListing final : public DiskJob
{
public:
    struct Window
    {
        qint64 first = 0;
        qint64 count = std::numeric_limits<qint64>::max();
    };

    struct Entry
    {
        QByteArray name; ///< as on disk
        qint64 size = 0; ///< bytes
        qint64 modified = 0; ///< milliseconds since 1970-01-01 UTC
        bool folder = false;
        bool link = false;
        bool readable = false;

        qint64 modifiedSeconds() const;
    };

    /// Of the folder that `reader` is at the start of.
    FolderListing(FolderReader reader, ListingShape shape, Window window);
    FolderListing(FolderReader reader, ListingShape shape);

    /// All of a finished one in order, without reading the folder anew.
    explicit FolderListing(std::shared_ptr<const FolderListing> finished);

    /// A copy of the first `most` entries of a finished one, for who keeps them for long.
    FolderListing(const FolderListing &finished, qint64 most);

    bool run(const Budget &until) override;

    /// False when there was too little memory for it; then it has no entries.
    bool isWhole() const { return complete; }

    qint64 count() const { return qint64(rows.size()); }

    /// Whether the entries of a window are in order, so that `at` may be asked for them.
    bool covers(Window window) const;

    Entry at(qint64 index) const;

    /// What it takes in memory, in bytes.
    qint64 bytes() const;

    /// Its place in a budget, the same for all who keep it while they wait for a peer; null when
    /// there is no room. For the event loop.
    std::shared_ptr<const MemoryBudget::Part> placeIn(MemoryBudget &budget) const;

    const FolderStamp &stamp() const { return folderStamp; }
    const ListingShape &shape() const { return wanted; }

private:
    struct Row
    {
        quint64 name; ///< where it begins in `names`
        qint64 size;
        qint64 modified;
        quint16 nameSize;
        quint16 foldedSize; ///< of the name in lower case, which follows it; 0: it is the same
        bool folder;
        bool link;
        bool readable;
    };

    bool isListed(const char *name) const;
    bool isListed(const EntryFacts &facts) const;
    bool goOn(const Budget &until);
    bool read(const Budget &until);
    void add(const FolderReader::Item &item);
    std::string_view nameOf(const Row &row) const;
    std::string_view foldedNameOf(const Row &row) const;
    bool precedesByName(const Row &a, const Row &b) const;
    void arrange();
    bool precedes(const Row &a, const Row &b) const;
    qint64 key(const Row &row) const;

    std::optional<FolderReader> unread; ///< while there is something to read
    std::shared_ptr<const FolderListing> known; ///< to be put in order
    FolderStamp folderStamp;
    ListingShape wanted;
    Window arranged;
    std::shared_ptr<std::string> names; ///< one after another
    std::vector<Row> rows;
    bool complete = true;
    mutable std::weak_ptr<const MemoryBudget::Part> place;
};
