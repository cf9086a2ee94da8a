#include "files/UploadFile.h"

#include "files/HiddenUploads.h"
#include "files/LeftoverSweep.h"
#include "files/Log.h"
#include "files/Path.h"

#include <cerrno>
#include <climits>
#include <utility>

#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

namespace {

constexpr mode_t newMode = 0666;
constexpr mode_t privateMode = 0600;
constexpr qint64 quicklyFreed = qint64(8) << 20; ///< bytes of a file that was replaced

/// Marks a file as being received, until it is closed. A file system without locks allows it.
bool lock(int file)
{
    return ::flock(file, LOCK_EX | LOCK_NB) == 0 || errno != EWOULDBLOCK;
}

bool isChangedLater(const EntryFacts &now, const EntryFacts &before)
{
    return std::pair(now.changeSeconds, now.changeNanoseconds)
        > std::pair(before.changeSeconds, before.changeNanoseconds);
}

} // namespace

DiskError UploadFile::create(Place place)
{
    received.meanFor(std::move(place));
    const Place &target = received.place();
    if (!target.isValid())
        return DiskError::Missing;
    // Found out only at the end otherwise: until then the name is not needed.
    if (target.name.size() > NAME_MAX)
        return DiskError::Failed;
    if (entryFacts(target.folder.get(), target.name.constData()).exists)
        return DiskError::Exists;
    return begin(newMode);
}

DiskError UploadFile::replace(Place place)
{
    received.meanFor(std::move(place));
    const Place &target = received.place();
    if (!target.isValid())
        return DiskError::Missing;
    // For writing: whoever may not write to the file may not replace it either.
    replaced.reset(::openat(target.folder.get(), target.name.constData(),
                            O_WRONLY | O_NOFOLLOW | O_NONBLOCK | O_NOCTTY | O_CLOEXEC));
    if (!replaced.isOpen())
        return errno == ENOENT ? DiskError::Missing : DiskError::Failed;
    old = openFacts(replaced.get());
    if (!old.file)
        return DiskError::Failed;
    return lock(replaced.get()) ? begin(privateMode) : DiskError::Locked;
}

DiskError UploadFile::begin(mode_t mode)
{
    const Place &target = place();
    reservation = Reservation::take(target);
    if (!reservation)
        return DiskError::Locked;
    const int error = received.isResumed() ? 0 : received.make(mode);
    if (error != 0)
        return diskError(error);
    // Whatever its time will be: a hidden name, for a moment or to the end, is in use by this.
    lock(received.descriptor());
    return DiskError::None;
}

DiskError UploadFile::wrote(DiskError how)
{
    result = how;
    if (result != DiskError::None)
        discarded = true;
    else if (sync != Sync::None)
        received.startWriteBack();
    return result;
}

bool UploadFile::run(const Budget &until)
{
    const bool keeps = !discarded && !until.isCancelled();
    // At once: its owner has just found that it may.
    if (keeps && stage == Stage::Ready)
        takeName();
    if (waits() && !until.mayBlock())
        return false;
    if (keeps && stage == Stage::Receiving) {
        makeReady();
        if (stage == Stage::Ready && careful)
            return true;
        if (stage == Stage::Ready)
            takeName();
    }
    if (stage == Stage::Named && sync == Sync::FileAndFolder)
        endWith(syncFolder());
    drop();
    return true;
}

std::shared_ptr<DiskJob> UploadFile::rest()
{
    // Below a hidden name it is up to who gave that.
    const bool isOver = place().isValid() && !received.isOpen();
    if (!isOver || isHiddenUpload(place().name.constData()))
        return {};
    return LeftoverSweep::ifDue(place());
}

bool UploadFile::isSync() const
{
    if (stage == Stage::Named)
        return sync == Sync::FileAndFolder;
    return !discarded && sync != Sync::None;
}

/// Whether what is next takes the disk a while.
bool UploadFile::waits() const
{
    if (discarded)
        return true;
    if (stage == Stage::Named)
        return sync == Sync::FileAndFolder || old.size > quicklyFreed;
    return sync != Sync::None;
}

void UploadFile::discard()
{
    discarded = true;
    replaced.reset();
    reservation.reset();
    if (received.isResumed())
        received.drop();
}

void UploadFile::makeReady()
{
    int error = received.isOpen() ? inherit() : EBADF;
    if (error == 0 && sync != Sync::None)
        error = received.sync();
    endWith(error);
    if (error == 0)
        stage = Stage::Ready;
}

void UploadFile::takeName()
{
    if (careful && replaced.isOpen() && !isOldThere()) {
        result = DiskError::Changed;
        discarded = true;
        return;
    }
    const int error = placeFile();
    endWith(error);
    if (error != 0) {
        discarded = true;
        return;
    }
    stage = Stage::Named;
    if (modified)
        setTimes(received.descriptor(), {}, timespec{ time_t(*modified), 0 });
    facts = openFacts(received.descriptor());
    if (old.exists && !isChangedLater(facts, old))
        tellApart();
}

/// What has replaced a file within one tick of the system's clock. The inode number of one before
/// that may have come back: all that caches compare would be the same.
void UploadFile::tellApart()
{
    timespec now = {};
    ::clock_gettime(CLOCK_REALTIME, &now);
    setTimes(received.descriptor(), {}, timespec{ time_t(facts.seconds), now.tv_nsec });
    facts = openFacts(received.descriptor());
}

void UploadFile::endWith(int error)
{
    result = diskError(error);
    if (error != 0)
        qCDebug(filesLog) << "not kept:" << place().name << qt_error_string(error);
}

int UploadFile::inherit() const
{
    if (replaced.isOpen())
        return copyAttributes(replaced.get(), received.descriptor());
    if (wantedMode)
        return changeMode(received.descriptor(), *wantedMode);
    // It may have been begun to replace a file, and be as private.
    return received.isResumed() ? received.takeModeOf(newMode) : 0;
}

int UploadFile::placeFile()
{
    // Removed with what stands in it, though it may come back.
    if (careful && namesHiddenUpload(pathOf(place().folder.get())))
        return ENOENT;
    if (replaced.isOpen() && isOldThere())
        return received.takeOverName();
    const int error = received.takeFreeName();
    const bool givesWay = error == EEXIST && !replaced.isOpen() && standing().isBrokenLink();
    return givesWay ? received.takeOverName() : error;
}

/// What has the name now.
EntryFacts UploadFile::standing() const
{
    return entryFacts(place().folder.get(), place().name.constData());
}

/// Others may have moved or replaced it since.
bool UploadFile::isOldThere() const
{
    const EntryFacts there = standing();
    const bool isSame = careful ? isUntouched(old, there) : isSameEntry(old, there);
    return !there.link && isSame;
}

/// A folder that can't be listed can't be synced either; its content is safe all the same.
int UploadFile::syncFolder() const
{
    const FileDescriptor folder(
        ::openat(place().folder.get(), ".", O_RDONLY | O_DIRECTORY | O_CLOEXEC));
    return folder.isOpen() && ::fsync(folder.get()) != 0 ? errno : 0;
}

void UploadFile::drop()
{
    received.drop();
    replaced.reset();
    reservation.reset();
}
