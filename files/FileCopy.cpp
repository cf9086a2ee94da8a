#include "files/FileCopy.h"

#include "files/Attributes.h"

#include <QByteArray>

#include <algorithm>
#include <cerrno>
#include <utility>

#include <unistd.h>

namespace {

constexpr qint64 sliceBytes = 1 << 20;

} // namespace

FileCopy::FileCopy(OpenFile from, Place to, Existing existing)
    : source(std::move(from))
    , target(std::move(to))
    , whenThere(existing)
{
    upload.setSync(UploadFile::Sync::None);
}

bool FileCopy::run(const Budget &until)
{
    if (!until.mayBlock())
        return false;
    bool ended = state == State::Ended || begin();
    while (!ended && state == State::Copying) {
        ended = copyOn();
        if (until.isUsedUp())
            return ended;
    }
    return ended || end();
}

bool FileCopy::fail(DiskError error)
{
    result = error;
    state = State::Ended;
    upload.discard();
    upload.run(Budget::ofWorker(upload.cancelFlag()));
    return true;
}

/// True when there is nothing to go on with.
bool FileCopy::begin()
{
    if (state != State::Idle)
        return false;
    source.facts = openFacts(source.descriptor.get());
    const DiskError error = whenThere == Existing::Kept ? upload.create(std::move(target))
                                                        : upload.replace(std::move(target));
    if (error != DiskError::None)
        return fail(error);
    upload.setMode(source.facts.mode);
    state = State::Copying;
    return false;
}

bool FileCopy::copyOn()
{
    if (offset == source.facts.size) {
        state = State::Keeping;
        return false;
    }
    const qint64 copied = byRange ? copyRange() : copyBytes();
    if (copied < 0)
        return fail(result);
    offset += copied;
    return false;
}

/// 0 when it has to be done the other way.
qint64 FileCopy::copyRange()
{
    const qint64 size = std::min(sliceBytes, source.facts.size - offset);
    off64_t from = offset;
    const ssize_t copied = ::copy_file_range(source.descriptor.get(), &from, upload.descriptor(),
                                             nullptr, std::size_t(size), 0);
    if (copied < 0 && diskError(errno) == DiskError::NoSpace) {
        result = DiskError::NoSpace;
        return -1;
    }
    byRange = copied > 0;
    return std::max<qint64>(copied, 0);
}

qint64 FileCopy::copyBytes()
{
    QByteArray slice(int(std::min(sliceBytes, source.facts.size - offset)), Qt::Uninitialized);
    const ssize_t read =
        ::pread(source.descriptor.get(), slice.data(), std::size_t(slice.size()), off_t(offset));
    if (read > 0)
        result = upload.write(slice.constData(), read);
    else
        result = read < 0 ? diskError(errno) : DiskError::Changed;
    return result == DiskError::None ? read : -1;
}

bool FileCopy::end()
{
    if (state == State::Ended)
        return true;
    if (withProperties)
        copyProperties(source.descriptor.get(), upload.descriptor());
    made = duplicate(upload.descriptor());
    upload.run(Budget::ofWorker(upload.cancelFlag()));
    result = upload.error();
    state = State::Ended;
    return true;
}

void FileCopy::undo()
{
    const Place &place = upload.place();
    const EntryFacts there = entryFacts(place.folder.get(), place.name.constData());
    if (result == DiskError::None && isSameEntry(openFacts(made.get()), there))
        ::unlinkat(place.folder.get(), place.name.constData(), 0);
}
