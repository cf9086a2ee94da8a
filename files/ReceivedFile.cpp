#include "files/ReceivedFile.h"

#include "files/Attributes.h"
#include "files/Entry.h"
#include "files/HiddenUploads.h"
#include "files/Pipe.h"
#include "files/Rename.h"

#include <array>
#include <cerrno>
#include <cstdio>
#include <utility>

#include <fcntl.h>
#include <unistd.h>

namespace {

constexpr qint64 writeBackBytes = qint64(8) << 20;
constexpr int nameAttempts = 16;
constexpr qint64 copiedAtOnce = qint64(64) * 1024; ///< bytes

int errnoAfter(int returned)
{
    return returned == 0 ? 0 : errno;
}

} // namespace

int ReceivedFile::make(mode_t mode)
{
    file.reset(::openat(target.folder.get(), ".", O_TMPFILE | O_RDWR | O_CLOEXEC, mode));
    return file.isOpen() ? 0 : makeHidden(mode);
}

/// What the system makes of the mode differs from folder to folder.
int ReceivedFile::takeModeOf(mode_t mode) const
{
    ReceivedFile sample;
    sample.meanFor(beside(target, target.name));
    const int error = sample.make(mode);
    const EntryFacts made = openFacts(sample.descriptor());
    return error == 0 ? changeMode(file.get(), made.mode & permissionBits) : error;
}

int ReceivedFile::makeHidden(mode_t mode)
{
    for (int attempt = 0; attempt < nameAttempts; ++attempt) {
        const QByteArray name = hiddenUploadName();
        file.reset(::openat(target.folder.get(), name.constData(),
                            O_CREAT | O_EXCL | O_RDWR | O_CLOEXEC, mode));
        if (file.isOpen()) {
            hiddenName = name;
            return 0;
        }
        if (errno != EEXIST)
            break;
    }
    return errno;
}

void ReceivedFile::resume(FileDescriptor received, const QByteArray &hidden)
{
    file = std::move(received);
    hiddenName = hidden;
    resumed = true;
    synced = ::lseek(file.get(), 0, SEEK_CUR);
}

DiskError ReceivedFile::write(const char *data, qint64 size)
{
    for (qint64 done = 0; done < size;) {
        const ssize_t written = ::write(file.get(), data + done, std::size_t(size - done));
        if (written < 0 && errno == EINTR)
            continue;
        if (written <= 0)
            return written == 0 ? DiskError::NoSpace : diskError(errno);
        done += written;
    }
    unsynced += size;
    return DiskError::None;
}

DiskError ReceivedFile::write(Pipe &pipe)
{
    while (pipe.size() > 0) {
        const qint64 moved = pipe.pour(file.get());
        if (moved < 0 && errno == EINVAL)
            return copy(pipe);
        if (moved < 0 && errno == EINTR)
            continue;
        if (moved <= 0)
            return moved == 0 ? DiskError::NoSpace : diskError(errno);
        unsynced += moved;
    }
    return DiskError::None;
}

/// Some file systems take no bytes out of a pipe.
DiskError ReceivedFile::copy(Pipe &pipe)
{
    std::array<char, copiedAtOnce> piece;
    while (pipe.size() > 0) {
        const qint64 size = pipe.read(piece.data(), copiedAtOnce);
        if (size <= 0)
            return DiskError::Failed;
        if (const DiskError error = write(piece.data(), size); error != DiskError::None)
            return error;
    }
    return DiskError::None;
}

void ReceivedFile::startWriteBack()
{
    if (unsynced < writeBackBytes)
        return;
    ::sync_file_range(file.get(), synced, unsynced, SYNC_FILE_RANGE_WRITE);
    synced += std::exchange(unsynced, 0);
}

/// Some file systems know no such call; they write when they like.
int ReceivedFile::sync() const
{
    const int error = errnoAfter(::fdatasync(file.get()));
    return error == EINVAL || error == ENOSYS ? 0 : error;
}

int ReceivedFile::takeFreeName()
{
    const int folder = target.folder.get();
    const int error = hiddenName.isEmpty() ? linkTo(target.name)
                                           : renameNew(folder, hiddenName, folder, target.name);
    if (error == 0)
        hiddenName.clear();
    return error;
}

int ReceivedFile::takeOverName()
{
    if (hiddenName.isEmpty()) {
        const QByteArray name = hiddenUploadName();
        if (const int error = linkTo(name))
            return error;
        hiddenName = name;
    }
    const int folder = target.folder.get();
    const int error =
        errnoAfter(::renameat(folder, hiddenName.constData(), folder, target.name.constData()));
    if (error == 0)
        hiddenName.clear();
    return error;
}

/// Never over another name.
int ReceivedFile::linkTo(const QByteArray &name) const
{
    const QByteArray unnamed = "/proc/self/fd/" + QByteArray::number(file.get());
    return errnoAfter(::linkat(AT_FDCWD, unnamed.constData(), target.folder.get(), name.constData(),
                               AT_SYMLINK_FOLLOW));
}

void ReceivedFile::drop()
{
    if (!hiddenName.isEmpty() && !resumed) {
        const EntryFacts named = entryFacts(target.folder.get(), hiddenName.constData());
        if (!named.link && isSameEntry(named, openFacts(file.get())))
            ::unlinkat(target.folder.get(), hiddenName.constData(), 0);
    }
    hiddenName.clear();
    file.reset();
}
