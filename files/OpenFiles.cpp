#include "files/OpenFiles.h"

#include <QTimerEvent>

#include <linux/magic.h>
#include <sys/vfs.h>
#include <unistd.h>

#include <algorithm>
#include <ctime>
#include <utility>

using namespace std::chrono_literals;

namespace {

constexpr auto keptTime = 1s;
constexpr int closeInterval = 1000; ///< milliseconds
constexpr int maxKept = 64;
constexpr qint64 maxKeptSize =
    qint64(256) * 1024; ///< bytes; the room of larger ones is free at once

constexpr qint64 maxContent = qint64(16) * 1024; ///< bytes
constexpr qint64 coarsestTime = 2; ///< seconds

/// Whether a change from now on will show in its times, which some systems count by the second.
bool showsChanges(const EntryFacts &facts)
{
    return std::max(facts.seconds, facts.changeSeconds) + coarsestTime < ::time(nullptr);
}

/// Its content, for all who ask within the next second; empty when it is to be sent as it stands.
QByteArray wholeContent(const ServedFile &file)
{
    const qint64 size = file.facts.size;
    if (size > maxContent || !showsChanges(file.facts))
        return {};
    QByteArray content(int(size), Qt::Uninitialized);
    if (::pread(file.descriptor->get(), content.data(), std::size_t(size), 0) != size)
        return {};
    return content;
}

/// Where an open file that is deleted keeps a hidden name in its folder, which then can't be
/// deleted, or can't be deleted at all: on file systems that a program or another machine runs.
bool holdsItsFolder(const FileDescriptor &file)
{
    struct statfs system;
    if (::fstatfs(file.get(), &system) != 0)
        return true;
    switch (quint32(system.f_type)) {
    case FUSE_SUPER_MAGIC:
    case NFS_SUPER_MAGIC:
    case SMB_SUPER_MAGIC:
    case CIFS_SUPER_MAGIC:
    case SMB2_SUPER_MAGIC:
    case V9FS_MAGIC:
        return true;
    default:
        return false;
    }
}

} // namespace

ServedFile served(OpenFile file)
{
    return { std::make_shared<const FileDescriptor>(std::move(file.descriptor)), file.facts,
             std::make_shared<FileMemo>() };
}

std::optional<ServedFile> OpenFiles::open(const Share &share, const QByteArray &path)
{
    const auto known = kept.constFind(path);
    if (known != kept.constEnd() && Clock::now() - known->opened < keptTime
        && share.leadsStillTo(path, known->file.facts)) {
        if (known->file.memo->content.isEmpty())
            known->file.memo->content = wholeContent(known->file);
        return known->file;
    }
    std::optional<OpenFile> opened = share.openFile(path);
    if (!opened)
        return {};
    ServedFile file = served(std::move(*opened));
    keep(path, file);
    return file;
}

void OpenFiles::clear()
{
    kept.clear();
    timer.stop();
}

void OpenFiles::timerEvent(QTimerEvent *event)
{
    if (event->timerId() == timer.timerId())
        dropOld();
}

void OpenFiles::keep(const QByteArray &path, const ServedFile &file)
{
    if (file.facts.size > maxKeptSize || holdsItsFolder(*file.descriptor))
        return;
    if (kept.size() >= maxKept)
        kept.clear();
    kept.insert(path, { file, Clock::now() });
    if (!timer.isActive())
        timer.start(closeInterval, this);
}

void OpenFiles::dropOld()
{
    const Clock::time_point now = Clock::now();
    for (auto file = kept.begin(); file != kept.end();) {
        if (now - file->opened >= keptTime)
            file = kept.erase(file);
        else
            ++file;
    }
    if (kept.isEmpty())
        timer.stop();
}
