#pragma once

#include "files/DiskJob.h"
#include "files/FolderReader.h"
#include "standard/dav/PropertyReport.h"
#include "standard/http/Depth.h"

#include <QByteArray>

#include <deque>
#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include <sys/types.h>

class Share;

namespace standard {

/// Writes the answer to a PROPFIND, one piece at a time: the job is finished each time when there
/// is a piece to be taken, and is to be run again until it is at its end.
class PropFindJob final : public DiskJob
{
public:
    static constexpr qint64 maxEntries = 100000;

    struct Subject
    {
        std::shared_ptr<const Share> share;
        DavResource top; ///< its `subject` is found anew
        Depth depth;
        bool withFolders; ///< or files alone
        UrlSpace urls;
        QString part = {}; ///< only entries whose names have it are told, in any case
        qint64 mostBelow = maxEntries; ///< of entries, with Depth infinity
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
    QByteArray takePiece() { return std::exchange(text, {}); }

private:
    enum class State {
        Begin,
        Folders,
        CutOff, ///< there were too many entries: only tells which folders are missing
        Ended
    };

    /// A folder that was entered, and those it was reached by.
    struct Ancestor
    {
        dev_t device;
        ino_t inode;
        std::shared_ptr<const Ancestor> above;
    };

    /// A folder that is to be listed.
    struct Pending
    {
        QByteArray path; ///< with a "/" behind
        std::shared_ptr<const Ancestor> above;
    };

    /// An entry that was looked at.
    struct Seen
    {
        std::size_t name; ///< where it begins in `names`
        EntryFacts facts;
    };

    bool makePiece(const Budget &until);
    void step(const Budget &until);
    void begin();
    void openNext();
    bool enter(const Pending &next);
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
    std::deque<Pending> folders;
    std::shared_ptr<const Ancestor> entered; ///< the last one; links may lead back to it
    std::optional<FolderReader> folder; ///< being read
    // What the paths of its entries begin with.
    QByteArray path;
    std::string url;
    QByteArray systemPath;
    // Looks at the disk follow each other, and so do lines: by turns they would push each other's
    // code out of the processor's cache.
    std::vector<Seen> seen; ///< are told next
    std::size_t told = 0; ///< of them
    std::string names; ///< one after another, each with a NUL
    Budget::Clock::time_point lookedAt;
    DavResource entry; ///< is told; kept for its memory
    FileDescriptor linked; ///< what it leads to, if it is a link
    qint64 count = 0;
    int failure = 0;
};

} // namespace standard
