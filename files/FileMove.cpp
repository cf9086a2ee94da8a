#include "files/FileMove.h"

#include <cerrno>
#include <utility>

#include <sys/file.h>
#include <unistd.h>

FileMove::FileMove(OpenFile source, Place from, Place to)
    : origin(std::move(from))
    , copy(std::move(source), std::move(to), FileCopy::Existing::Kept)
{
    copy.setSync(UploadFile::Sync::FileAndFolder);
}

bool FileMove::run(const Budget &until)
{
    if (!until.mayBlock())
        return false;
    if (!hold()) {
        result = DiskError::Locked;
        return true;
    }
    if (!copy.run(until))
        return false;
    result = copy.error();
    if (result == DiskError::None)
        result = removeSource();
    reservation.reset();
    return true;
}

/// Nobody may receive the file while it is moved, here or in another program that locks it.
bool FileMove::hold()
{
    if (reservation)
        return true;
    if (origin.holdsHidden || ::flock(copy.copied().descriptor.get(), LOCK_SH | LOCK_NB) != 0)
        return false;
    reservation = Reservation::take(origin);
    return reservation.has_value();
}

DiskError FileMove::removeSource()
{
    const char *name = origin.name.constData();
    const EntryFacts now = entryFacts(origin.folder.get(), name);
    if (!isUnchanged(copy.copied().facts, now)) {
        copy.undo();
        return DiskError::Changed;
    }
    if (::unlinkat(origin.folder.get(), name, 0) == 0)
        return DiskError::None;
    const DiskError error = diskError(errno);
    copy.undo();
    return error;
}
