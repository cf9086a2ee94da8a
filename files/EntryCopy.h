#pragma once

#include "files/CopiedEntries.h"
#include "files/DiskError.h"
#include "files/DiskJob.h"
#include "files/FileCopy.h"
#include "files/FolderReader.h"
#include "files/LeftoverSweep.h"
#include "files/Place.h"
#include "files/Share.h"

#include <QByteArray>

#include <memory>
#include <optional>
#include <vector>

/// Copies what a path names, a file or a folder with all it holds, to a place where nothing may
/// stand, with permissions, times and extended attributes. Links are followed. What can't be copied
/// is left out, as are files that are being received; a full disk ends it. Broken off or ended so,
/// it leaves what it has made, locked so that no sweep takes it for abandoned.
class EntryCopy final : public DiskJob
{
public:
    enum class Depth {
        Alone, ///< a folder without what it holds
        Whole
    };

    struct Failure
    {
        QByteArray path; ///< below what is copied; "" for that itself
        DiskError error;
    };

    EntryCopy(std::shared_ptr<const Share> shared, QByteArray from, Place to, Depth howDeep);

    /// Notes what is copied, for who removes it then: whatever is left out is a failure and ends
    /// the copy. A file that is being received is `Locked`; one that was given up is removed.
    void listCopied() { list = std::make_shared<CopiedEntries>(); }

    /// From the first of them, once the copy is made; null when nobody asked for it.
    const std::shared_ptr<CopiedEntries> &copied() const { return list; }

    bool run(const Budget &until) override;
    void abandon() override;

    /// Waits until the disk has what was made. 0, or the number of the error.
    int sync() const;

    /// What was made has found its place, where others may lock it.
    void unlock() { held.reset(); }

    /// What is not there in the copy: the first hundred. None when it is whole.
    const std::vector<Failure> &failures() const { return failed; }

    /// Whether the disk is full.
    bool isDiskFull() const { return full; }

private:
    struct Level
    {
        QByteArray path; ///< below the top
        FolderReader source;
        FileDescriptor copy;
        EntryFacts facts; ///< of the source
        bool listed; ///< what it holds; not so beyond a link, of which the link alone is moved
    };

    void begin();
    void step(const Budget &until);
    void take(const FolderReader::Item &item);
    void leaveOut(const FolderReader::Item &item, const QByteArray &path);
    void finishSweep();
    bool isHopeless() const { return full || (list && !failed.empty()); }
    bool note(int folder, const QByteArray &name);
    void startFile(OpenFile file, Place to, const QByteArray &path);
    void finishFile();
    void enter(FolderReader source, const Place &to, const QByteArray &path, bool listed);
    bool isInside(const EntryFacts &folder) const;
    void leave();
    void fail(const QByteArray &path, DiskError error);

    const std::shared_ptr<const Share> share;
    const QByteArray top;
    Place target;
    const Depth depth;
    std::vector<Level> levels; ///< from the top to the current one
    EntryFacts made; ///< the copy of the top folder
    FileDescriptor held; ///< the copy of the top, locked
    std::unique_ptr<FileCopy> copy; ///< under way
    std::unique_ptr<LeftoverSweep> sweep; ///< of the current folder, under way
    QByteArray current; ///< the path of what is copied, or swept if it can be
    std::shared_ptr<CopiedEntries> list; ///< null: nobody asks for it
    std::vector<Failure> failed;
    bool begun = false;
    bool full = false;
};
