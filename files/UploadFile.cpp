#include "files/UploadFile.h"

#include "files/HiddenUploads.h"
#include "files/LeftoverSweep.h"
#include "files/Log.h"
#include "files/Rename.h"

#include <cerrno>
#include <climits>
#include <cstdio>
#include <utility>

#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

namespace {

constexpr mode_t newMode = 0666;
constexpr mode_t privateMode = 0600;
constexpr qint64 writeBackBytes = qint64(8) << 20;
constexpr qint64 quicklyFreed = qint64(8) << 20; ///< bytes of a file that was replaced
constexpr int nameAttempts = 16;

int errorOf(int returned)
{
    return returned == 0 ? 0 : errno;
}

/// Some file systems know no such call; they write when they like.
int syncContent(int file)
{
    const int error = errorOf(::fdatasync(file));
    return error == EINVAL || error == ENOSYS ? 0 : error;
}

/// Marks a file as being received, until it is closed. A file system without locks allows it.
bool lock(int file)
{
    return ::flock(file, LOCK_EX | LOCK_NB) == 0 || errno != EWOULDBLOCK;
}

} // namespace

UploadFile::UploadFile() = default;

UploadFile::~UploadFile()
{
    drop();
}

DiskError UploadFile::create(Place place)
{
    target = std::move(place);
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
    target = std::move(place);
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
    // It gets a hidden name for a moment, which who was killed right then has left behind.
    sweeps = true;
    return lock(replaced.get()) ? begin(privateMode) : DiskError::Locked;
}

void UploadFile::resume(FileDescriptor received, const QByteArray &hidden)
{
    file = std::move(received);
    hiddenName = hidden;
    resumed = true;
    synced = ::lseek(file.get(), 0, SEEK_CUR);
}

DiskError UploadFile::begin(mode_t mode)
{
    reservation = Reservation::take(target);
    if (!reservation)
        return DiskError::Locked;
    if (!resumed) {
        file.reset(::openat(target.folder.get(), ".", O_TMPFILE | O_WRONLY | O_CLOEXEC, mode));
        if (!file.isOpen() && !openHidden(mode))
            return diskError(errno);
    }
    // Whatever its time will be: a hidden name, for a moment or to the end, is in use by this.
    lock(file.get());
    return DiskError::None;
}

bool UploadFile::openHidden(mode_t mode)
{
    sweeps = !isHiddenUpload(target.name.constData()); // that one is up to its maker
    for (int attempt = 0; attempt < nameAttempts; ++attempt) {
        hiddenName = hiddenUploadName();
        file.reset(::openat(target.folder.get(), hiddenName.constData(),
                            O_CREAT | O_EXCL | O_WRONLY | O_CLOEXEC, mode));
        if (file.isOpen())
            return true;
        if (errno != EEXIST)
            break;
    }
    hiddenName.clear();
    return false;
}

DiskError UploadFile::write(const char *data, qint64 size)
{
    for (qint64 done = 0; done < size;) {
        const ssize_t written = ::write(file.get(), data + done, std::size_t(size - done));
        if (written < 0 && errno == EINTR)
            continue;
        if (written <= 0) {
            discarded = true;
            return result = written == 0 ? DiskError::NoSpace : diskError(errno);
        }
        done += written;
    }
    startWriteBack(size);
    return DiskError::None;
}

/// So that little is left for the end, when somebody waits for it.
void UploadFile::startWriteBack(qint64 size)
{
    unsynced += size;
    if (sync == Sync::None || unsynced < writeBackBytes)
        return;
    ::sync_file_range(file.get(), synced, unsynced, SYNC_FILE_RANGE_WRITE);
    synced += std::exchange(unsynced, 0);
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
    if (!sweeps || file.isOpen())
        return {};
    return std::make_shared<LeftoverSweep>(beside(target, target.name));
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
    if (resumed)
        file.reset();
}

void UploadFile::makeReady()
{
    int error = file.isOpen() ? inherit() : EBADF;
    if (error == 0 && sync != Sync::None)
        error = syncContent(file.get());
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
    if (error == 0)
        stage = Stage::Named;
    else
        discarded = true;
}

void UploadFile::endWith(int error)
{
    result = diskError(error);
    if (error != 0)
        qCDebug(filesLog) << "not kept:" << target.name << qt_error_string(error);
}

int UploadFile::inherit() const
{
    if (replaced.isOpen())
        return copyAttributes(replaced.get(), file.get());
    return wantedMode ? changeMode(file.get(), *wantedMode) : 0;
}

int UploadFile::placeFile()
{
    if (replaced.isOpen() && isOldThere())
        return replaceName();
    const int error = takeFreeName();
    const bool givesWay = error == EEXIST && !replaced.isOpen()
        && entryFacts(target.folder.get(), target.name.constData()).isBrokenLink();
    return givesWay ? replaceName() : error;
}

/// Others may have moved or replaced it since.
bool UploadFile::isOldThere() const
{
    const EntryFacts there = entryFacts(target.folder.get(), target.name.constData());
    const bool isSame = careful ? isUntouched(old, there) : isSameEntry(old, there);
    return !there.link && isSame;
}

int UploadFile::takeFreeName()
{
    const int folder = target.folder.get();
    const int error = hiddenName.isEmpty() ? linkTo(target.name)
                                           : renameNew(folder, hiddenName, folder, target.name);
    if (error == 0)
        hiddenName.clear();
    return error;
}

int UploadFile::replaceName()
{
    if (hiddenName.isEmpty()) {
        const QByteArray name = hiddenUploadName();
        if (const int error = linkTo(name))
            return error;
        hiddenName = name;
    }
    const int folder = target.folder.get();
    const int error =
        errorOf(::renameat(folder, hiddenName.constData(), folder, target.name.constData()));
    if (error == 0)
        hiddenName.clear();
    return error;
}

/// Never over another name.
int UploadFile::linkTo(const QByteArray &name) const
{
    const QByteArray unnamed = "/proc/self/fd/" + QByteArray::number(file.get());
    return errorOf(::linkat(AT_FDCWD, unnamed.constData(), target.folder.get(), name.constData(),
                            AT_SYMLINK_FOLLOW));
}

/// A folder that can't be listed can't be synced either; its content is safe all the same.
int UploadFile::syncFolder() const
{
    const FileDescriptor folder(
        ::openat(target.folder.get(), ".", O_RDONLY | O_DIRECTORY | O_CLOEXEC));
    return folder.isOpen() ? errorOf(::fsync(folder.get())) : 0;
}

void UploadFile::drop()
{
    if (!hiddenName.isEmpty() && !resumed) {
        const EntryFacts named = entryFacts(target.folder.get(), hiddenName.constData());
        if (!named.link && isSameEntry(named, openFacts(file.get())))
            ::unlinkat(target.folder.get(), hiddenName.constData(), 0);
        hiddenName.clear();
    }
    file.reset();
    replaced.reset();
    reservation.reset();
}
