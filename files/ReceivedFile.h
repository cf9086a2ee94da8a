#pragma once

#include "files/DiskError.h"
#include "files/FileDescriptor.h"
#include "files/Place.h"

#include <QByteArray>
#include <QtGlobal>

#include <sys/types.h>

class Pipe;

/// The content that is received for a place, and that nobody sees before it takes the name there.
/// Until then it has no name at all where the file system can do that, else a hidden one beside
/// the place; without its name it goes with its object, unless it was resumed.
class ReceivedFile
{
public:
    ReceivedFile() = default;
    ~ReceivedFile() { drop(); }

    /// Where it is to stand. First of all.
    void meanFor(Place place) { target = std::move(place); }

    const Place &place() const { return target; }

    /// Makes it, empty and open for writing and reading. 0, or the number of the error.
    int make(mode_t mode);

    /// Instead: it stands under the hidden name `hidden` already, open where to go on. It stays
    /// there unless it takes its name.
    void resume(FileDescriptor received, const QByteArray &hidden);

    bool isResumed() const { return resumed; }
    bool isOpen() const { return file.isOpen(); }
    int descriptor() const { return file.get(); } ///< -1 when it is not open

    /// Appends.
    DiskError write(const char *data, qint64 size);

    /// Appends what stands in `pipe`; after an error some of it stays there.
    DiskError write(Pipe &pipe);

    /// Gives it the permissions that `make` would. 0, or the number of the error.
    int takeModeOf(mode_t mode) const;

    /// Has the disk begin with what it lacks, now and then, so that little is left for `sync`.
    void startWriteBack();

    /// Waits until its content is on the disk. 0, or the number of the error.
    int sync() const;

    /// Takes the name if it is free (else `EEXIST`). 0, or the number of the error.
    int takeFreeName();

    /// Takes the name from whatever has it. 0, or the number of the error.
    int takeOverName();

    /// Closes it, and removes it if it has no name; one that was resumed stays.
    void drop();

private:
    Q_DISABLE_COPY(ReceivedFile)

    DiskError copy(Pipe &pipe);
    int makeHidden(mode_t mode);
    int linkTo(const QByteArray &name) const;

    Place target;
    FileDescriptor file;
    QByteArray hiddenName; ///< while it has one
    bool resumed = false;
    qint64 unsynced = 0; ///< bytes at the end that the disk has not begun with
    qint64 synced = 0; ///< bytes before them
};
