#pragma once

#include "files/DiskJob.h"
#include "files/FileDescriptor.h"
#include "files/FolderReader.h"
#include "files/Place.h"

#include <QByteArray>
#include <QtGlobal>

#include <vector>

/// Removes what stands at a place: a file, a link, or a folder with all it holds. Links are never
/// followed, also when one is put in the place of a folder meanwhile: nothing outside the tree is
/// touched. Works on open folders, so no tree is too deep, and remembers a few names a level. What
/// can't be removed stays, the rest goes; broken off, what is gone is gone. What takes the place
/// after the job was made stays.
class TreeRemoval final : public DiskJob
{
public:
    explicit TreeRemoval(Place top);

    bool run(const Budget &until) override;

    /// Whether something else stood at the place by then, and still does.
    bool isChanged() const { return changed; }

    /// Whether nothing stands at the place any more; also when nothing ever did.
    bool isWhole() const { return whole; }

    /// The first entries that stay though what they hold is gone: paths below the top folder.
    const std::vector<QByteArray> &failures() const { return failed; }

    /// How many entries below the top folder were removed.
    qint64 removed() const { return removedCount; }

private:
    struct Level
    {
        QByteArray name; ///< in the level above
        FileDescriptor folder; ///< not open while too many others are
        dev_t device = 0;
        ino_t inode = 0;
        qint64 position = 0; ///< where reading goes on
        bool atEnd = false; ///< all entries were read
        bool failed = false; ///< an entry stays
        bool progressed = false; ///< entries were removed since reading began
        int readings = 1;
        std::vector<QByteArray> folders; ///< to be entered next
    };

    void begin();
    bool standsThere();
    void step();
    void enter(const QByteArray &name);
    void readBatch(Level &level);
    bool sort(Level &level, const FolderReader &reader, const FolderReader::Item &item);
    void leave();
    int parentOf(const Level &level);
    bool readAgain(Level &level);
    void count(bool done);
    void noteFailure(const QByteArray &name);
    void limitOpen();

    Place place;
    FileDescriptor meant; ///< what stood at the place when the job was made (`O_PATH`)
    std::vector<Level> levels; ///< from the top folder to the current one
    bool begun = false;
    bool whole = false;
    bool changed = false;
    qint64 removedCount = 0;
    std::vector<QByteArray> failed;
};
