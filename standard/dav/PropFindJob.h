#pragma once

#include "files/DiskJob.h"
#include "files/FolderReader.h"
#include "standard/dav/PropertyReport.h"
#include "standard/http/Depth.h"

#include <QByteArray>

#include <deque>
#include <memory>
#include <optional>
#include <set>
#include <utility>

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
        qint64 mostBelow = maxEntries; ///< of entries, with Depth infinity
    };

    PropFindJob(Subject asked, PropertyReport answer);

    bool run(const Budget &until) override;

    bool isAtEnd() const { return state == State::Ended; }

    /// What was written since the last call.
    QByteArray takePiece() { return std::exchange(text, {}); }

private:
    enum class State { Begin, Folders, Ended };

    void step();
    void begin();
    void openNext();
    void append(const FolderReader::Item &item);
    void cutOff();

    const Subject subject;
    const PropertyReport report;
    State state = State::Begin;
    QByteArray text;
    std::deque<QByteArray> folders; ///< paths of those that are to be listed, with a "/" behind
    std::set<std::pair<dev_t, ino_t>> entered; ///< links may lead in circles
    std::optional<FolderReader> folder; ///< being read
    // What the paths of its entries begin with.
    QByteArray path;
    QByteArray url;
    QByteArray systemPath;
    qint64 count = 0;
};

} // namespace standard
