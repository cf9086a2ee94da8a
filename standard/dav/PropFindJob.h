#pragma once

#include "files/DiskJob.h"
#include "files/FolderReader.h"
#include "standard/dav/FolderQueue.h"
#include "standard/dav/PropertyReport.h"
#include "standard/http/Depth.h"

#include <QByteArray>

#include <chrono>
#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <vector>

class Share;

namespace standard {

/// Writes the answer to a PROPFIND, one piece at a time: the job is finished each time when there
/// is a piece to be taken, and is to be run again until it is at its end.
class PropFindJob final : public DiskJob
{
public:
    static constexpr qint64 maxEntries = 100000;
    static constexpr qint64 maxLooks = 1000000;
    static constexpr int pieceBytes = 256 * 1024;

    struct Subject
    {
        std::shared_ptr<const Share> share;
        DavResource top; ///< its `subject` is found anew
        Depth depth;
        bool withFolders; ///< or files alone
        UrlSpace urls;
        MemoryBudget &memory; ///< for what it keeps between two pieces; borrowed, outlives it
        QString part = {}; ///< only entries whose names have it are told, in any case
        qint64 mostBelow = maxEntries; ///< of entries, with Depth infinity
        qint64 mostLooks = maxLooks; ///< at entries, the same
        std::chrono::milliseconds longestSilence{ 1000 }; ///< of a search that finds nothing
    };

    PropFindJob(Subject asked, PropertyReport answer);

    bool run(const Budget &until) override;

    bool isAtEnd() const { return state == State::Ended; }

    /// 0, or the number of the error for which the answer is of no use: the top can't be opened, or
    /// a folder not be read to its end. A folder below that can't be opened is told with a status.
    int error() const { return failure; }

    /// Whether there is one to be taken.
    bool hasPiece() const { return !text.isEmpty() || isAtEnd(); }

    /// What was written since the last call.
    QByteArray takePiece()
    {
        takenAt = Budget::Clock::now();
        return std::exchange(text, {});
    }

private:
    enum class State {
        Begin,
        Folders,
        CutOff, ///< there were too many entries: only tells which folders are missing
        Ended
    };

    /// An entry that was looked at.
    struct Seen
    {
        std::size_t name; ///< where it begins in `names`
        EntryFacts facts;
    };

    /// Looks at the disk follow each other, and so do lines: by turns they would push each other's
    /// code out of the processor's cache.
    struct Batch
    {
        std::vector<Seen> seen; ///< are told next
        std::size_t told = 0; ///< of them
        std::string names; ///< one after another, each with a NUL
        Budget::Clock::time_point at;

        bool isTold() const { return told >= seen.size(); }
    };

    /// Of a folder, with a "/" behind.
    struct Paths
    {
        QByteArray inShare;
        std::string url;
        QByteArray onDisk;
    };

    bool makePiece(const Budget &until);
    bool isOverdue();
    void step(const Budget &until);
    void begin();
    void openNext();
    bool enter(const FolderQueue::Next &next);
    bool isReservedHere(const char *name) const;
    bool look(const Budget &until);
    void lookAgain();
    void tellSeen();
    void append(const Seen &found);
    bool hasPart(const char *name) const;
    void append(const char *name, const EntryFacts &facts);
    void locate(const char *name, bool isLink);
    void append(const DavResource &resource);
    void tell(const QByteArray &unread, Status status);
    void cutOff();
    void fail(int number);

    const Subject subject;
    const PropertyReport report;
    State state = State::Begin;
    QByteArray text;
    std::string line; ///< of one resource, put together first: a string of chars grows faster
    Budget::Clock::time_point takenAt = Budget::Clock::now(); ///< the last piece was
    FolderQueue folders;
    std::optional<FolderReader> folder; ///< being read
    Paths here; ///< what those of its entries begin with
    Batch batch;
    DavResource entry; ///< is told; kept for its memory
    FileDescriptor linked; ///< what it leads to, if it is a link
    qint64 count = 0;
    qint64 looks = 0;
    int failure = 0;
};

} // namespace standard
