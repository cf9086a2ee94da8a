#include "classic/dav/FileCopy.h"

#include "classic/dav/AsideFile.h"
#include "server/FileReply.h"

#include <QByteArray>
#include <QFileInfo>

#include <utility>

namespace {

constexpr qint64 sliceBytes = 1 << 20;

} // namespace

FileCopy::FileCopy() = default;

FileCopy::~FileCopy() = default;

void FileCopy::start(const QString &sourcePath, const QString &target, Existing existing,
                     Done whenDone)
{
    whenThere = existing;
    done = std::move(whenDone);
    const bool opened = open(sourcePath, target);
    // Queued: the caller's own step is to end first.
    QMetaObject::invokeMethod(
        this, [this, opened] { opened ? copySlice() : finish(false); }, Qt::QueuedConnection);
}

bool FileCopy::open(const QString &sourcePath, const QString &target)
{
    const QFileInfo there(target);
    const bool blocked = whenThere == Existing::Kept ? there.exists() : !there.isFile();
    if (blocked || !openRegularFile(source, sourcePath))
        return false;
    left = source.size();
    copy = std::make_unique<AsideFile>(target);
    return copy->openAside();
}

/// Not beyond the size that the source had at first: it may be growing.
void FileCopy::copySlice()
{
    const QByteArray slice = source.read(qMin(left, sliceBytes));
    if (slice.isEmpty())
        return finish(left == 0 && place());
    if (copy->write(slice) != slice.size())
        return finish(false);
    left -= slice.size();
    QMetaObject::invokeMethod(this, &FileCopy::copySlice, Qt::QueuedConnection);
}

bool FileCopy::place()
{
    if (whenThere == Existing::Replaced)
        return copy->replace();
    copy->setPermissions(source.permissions());
    return copy->place();
}

void FileCopy::finish(bool copied)
{
    source.close();
    copy.reset();
    std::exchange(done, {})(copied);
}
