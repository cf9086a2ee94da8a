#pragma once

#include "files/Attributes.h"
#include "files/DiskError.h"
#include "files/DiskJob.h"
#include "files/Entry.h"
#include "files/FileDescriptor.h"
#include "files/Place.h"
#include "files/ReceivedFile.h"
#include "files/Reservation.h"

#include <QByteArray>
#include <QtGlobal>

#include <memory>
#include <optional>

/// A file that takes its name only when it is whole. Until then it has none at all where the file
/// system can do that, else a hidden one beside its place; gone with its object unless it was
/// kept. While it lives no other upload gets the name.
///
/// Keeping is the job: it waits for the disk, so it is run by a `DiskWorker`, which then also owns
/// it. A job that is cancelled before it began keeps nothing.
class UploadFile final : public DiskJob
{
public:
    /// What has reached the disk before the file counts as kept.
    enum class Sync {
        None,
        File, ///< its content
        FileAndFolder ///< and its name
    };

    UploadFile() = default;

    /// Begins a new file. A link that leads nowhere gives way to it when it is kept.
    DiskError create(Place place);

    /// Begins a file that takes the place, the mode and, where the system allows it, the owner,
    /// group and extended attributes of a regular one. That one is served until then, and its
    /// further names (hard links) keep the old content. `place` is that of the file itself, see
    /// `Share::target`; a link is refused. What has taken its name by the end stays (`Exists`).
    DiskError replace(Place place);

    /// Before one of the two: `received` stands under the hidden name `hidden` beside the place
    /// already, open where to go on. It stays there unless it is kept.
    void resume(FileDescriptor file, const QByteArray &hidden)
    {
        received.resume(std::move(file), hidden);
    }

    /// Appends to the content. An error leaves nothing to be kept.
    DiskError write(const char *data, qint64 size) { return wrote(received.write(data, size)); }

    /// Appends what stands in `pipe`; the same.
    DiskError write(Pipe &pipe) { return wrote(received.write(pipe)); }

    /// Permissions of a new file instead of the usual ones.
    void setMode(mode_t mode) { wantedMode = mode & permissionBits; }

    void setSync(Sync policy) { sync = policy; }

    /// For who looks once more before it takes its name: the job then ends when all but that is
    /// done, and is to be run once more; an old file that has changed meanwhile stays (`Changed`).
    void setCareful() { careful = true; }

    /// The time of its content, in seconds since 1970-01-01 UTC, once it has its name: until then a
    /// file is swept away by when it was written.
    void setModified(qint64 seconds) { modified = seconds; }

    /// Gives the file its name, see `error`.
    bool run(const Budget &until) override;
    bool isSync() const override;

    /// The sweep of its folder, where uploads that were killed leave files.
    std::shared_ptr<DiskJob> rest() override;

    /// How keeping ended.
    DiskError error() const { return result; }

    /// What it was found to be when it had taken its name, whoever has that now.
    const EntryFacts &kept() const { return facts; }

    /// Makes the job one that only drops the file: freeing a large one takes the disk a while. The
    /// name is free at once, and so is a file that was resumed.
    void discard();

    /// For copying into, without `write`; -1 before it was begun.
    int descriptor() const { return received.descriptor(); }

    /// Where the file is to stand; empty before it was begun.
    const Place &place() const { return received.place(); }

private:
    enum class Stage {
        Receiving,
        Ready, ///< but for its name
        Named
    };

    DiskError begin(mode_t mode);
    DiskError wrote(DiskError how);
    bool waits() const;
    void makeReady();
    void takeName();
    void tellApart();
    void endWith(int error);
    int inherit() const;
    int placeFile();
    EntryFacts standing() const;
    bool isOldThere() const;
    int syncFolder() const;
    void drop();

    ReceivedFile received;
    std::optional<Reservation> reservation;
    FileDescriptor replaced; ///< the old file, locked; only when there is one
    EntryFacts old; ///< of the same
    std::optional<mode_t> wantedMode;
    std::optional<qint64> modified;
    EntryFacts facts; ///< with its name
    Sync sync = Sync::File;
    bool discarded = false;
    bool careful = false;
    Stage stage = Stage::Receiving;
    DiskError result = DiskError::None;
};
