#pragma once

#include "files/Entry.h"
#include "files/FileDescriptor.h"
#include "files/HiddenFolders.h"

#include <memory>
#include <utility>
#include <vector>

/// Reads the entries of one open folder, in the order in which the file system gives them. It can
/// pause after any entry. Movable; the caller owns it.
class FolderReader
{
public:
    struct Item
    {
        const char *name = nullptr; ///< valid until the next one is read
        unsigned char type = 0; ///< a `DT_` value; `DT_UNKNOWN` where the file system doesn't tell
        qint64 next = 0; ///< where reading goes on behind it, see `seek`
    };

    /// `folder` is open for reading. What `hiddenFolders` (may be null) covers has no facts.
    explicit FolderReader(FileDescriptor folder,
                          std::shared_ptr<const HiddenFolders> hiddenFolders = {});

    /// The next entry but "." and "..". False at the end, or when it can't be read, see `error`,
    /// and from then on.
    bool next(Item &item);

    /// 0, or the number of the error that reading ended with.
    int error() const { return errorNumber; }

    /// One look at the entry. Nothing exists when it is hidden or gone.
    EntryFacts facts(const Item &item) const;

    /// Opens a folder of this one for reading, through a link as well. Not open, with `errno`, when
    /// it can't be or is hidden.
    FileDescriptor openFolder(const char *name) const;

    /// The same with a file. Never waits for the other end of a pipe.
    FileDescriptor openFile(const char *name) const;

    /// Goes on behind an item whose `next` was kept; 0 is the start.
    void seek(qint64 position);

    int descriptor() const { return folder.get(); }

    /// See `HiddenFolders::borderId`.
    std::pair<dev_t, ino_t> borderId() const;

    /// Gives the descriptor back; the reader is of no use after that.
    FileDescriptor takeDescriptor() { return std::move(folder); }

private:
    bool fill();

    FileDescriptor folder;
    std::shared_ptr<const HiddenFolders> hidden;
    std::vector<char> buffer; ///< records of the system
    std::size_t offset = 0; ///< of the next record
    std::size_t end = 0; ///< of the records
    bool ended = false; ///< there are no more to be read
    int errorNumber = 0;
};
