#include "standard/http/Patch.h"

#include "files/Attributes.h"
#include "files/DiskJob.h"
#include "files/DiskWorker.h"
#include "files/Share.h"
#include "server/Uploads.h"
#include "standard/http/Options.h"

#include <QList>

#include <algorithm>
#include <cerrno>
#include <limits>
#include <memory>
#include <utility>

#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

namespace standard {

namespace {

constexpr auto rangeField = "X-Update-Range";
constexpr auto bytesUnit = "bytes=";

/// In any case, whatever parameters follow (RFC 9110, section 8.3.1).
bool isPartialUpdate(const QByteArray &type)
{
    const QByteArray name = type.split(';').front().trimmed();
    return qstricmp(name.constData(), Patch::contentType) == 0;
}

/// Waits until the disk has what was written to an open file.
class SyncJob final : public DiskJob
{
public:
    explicit SyncJob(FileDescriptor written)
        : m_file(std::move(written))
    {
    }

    bool run(const Budget &until) override
    {
        if (!until.mayBlock())
            return false;
        const bool failed = ::fdatasync(m_file.get()) != 0 && errno != EINVAL && errno != ENOSYS;
        result = failed ? diskError(errno) : DiskError::None;
        return true;
    }

    bool isSync() const override { return true; }

    DiskError error() const { return result; }
    const FileDescriptor &file() const { return m_file; }

private:
    FileDescriptor m_file;
    DiskError result = DiskError::None;
};

constexpr qint64 coarsestTick = 2; ///< seconds, of FAT

/// Whether one of the times that make the tag has moved on.
bool isLater(const EntryFacts &now, const EntryFacts &before)
{
    const auto modified = [](const EntryFacts &f) { return std::pair(f.seconds, f.nanoseconds); };
    const auto changed = [](const EntryFacts &f) {
        return std::pair(f.changeSeconds, f.changeNanoseconds);
    };
    return modified(now) > modified(before) || changed(now) > changed(before);
}

/// Two writes within one tick of the clock, the system's or the file system's, would leave the same
/// tag. Where the tick is long the file gets the time of the next.
void touch(int descriptor, const EntryFacts &before)
{
    timespec now = {};
    ::clock_gettime(CLOCK_REALTIME, &now);
    setTimes(descriptor, {}, now);
    if (!isLater(openFacts(descriptor), before))
        setTimes(descriptor, {}, timespec{ time_t(before.seconds + coarsestTick), 0 });
}

} // namespace

std::optional<UpdateRange> updateRange(const QByteArray &value, qint64 size)
{
    if (value == "append")
        return UpdateRange{ size };
    const QList<QByteArray> ends = value.startsWith(bytesUnit)
        ? value.mid(int(qstrlen(bytesUnit))).split('-')
        : QList<QByteArray>();
    if (ends.size() != 2)
        return {};
    const std::optional<qint64> last = numberOf(ends[1]);
    if (ends[0].isEmpty())
        return last ? std::optional(UpdateRange{ std::max<qint64>(0, size - *last) })
                    : std::nullopt;
    const std::optional<qint64> first = numberOf(ends[0]);
    if (!first || *first > size)
        return {};
    if (ends[1].isEmpty())
        return UpdateRange{ *first };
    if (!last || *last < *first || *last == std::numeric_limits<qint64>::max())
        return {};
    return UpdateRange{ *first, *last - *first + 1 };
}

void Patch::start()
{
    const EntryFacts found = facts();
    if (!isAllowed(found))
        return;
    const Request &request = exchange.request();
    const std::optional<QByteArray> asked = request.field(rangeField);
    const std::optional<UpdateRange> range =
        asked ? updateRange(*asked, found.size) : std::optional<UpdateRange>();
    if (!range)
        return exchange.refuse(asked ? Status::RangeNotSatisfiable : Status::BadRequest);
    if (range->count && request.framing.chunked)
        return exchange.refuse(Status::LengthRequired);
    if (range->count && *range->count != request.framing.contentLength)
        return exchange.refuse(Status::BadRequest, "The body has another length than the range.");
    receive(*range);
}

bool Patch::isAllowed(const EntryFacts &found)
{
    if (!isPermitted(found))
        return false;
    if (!isPartialUpdate(exchange.request().value("Content-Type"))) {
        exchange.refuse(Status::UnsupportedMediaType, {}, { { "Accept-Patch", contentType } });
        return false;
    }
    if (!found.exists) {
        exchange.refuse(Status::NotFound);
        return false;
    }
    if (!found.file || !namesEntry()) {
        exchange.refuse(Status::MethodNotAllowed, {}, { allowField(exchange) });
        return false;
    }
    return meetsConditions(found) && exchange.mayChange({ { exchange.path() } });
}

void Patch::receive(const UpdateRange &range)
{
    file = share()->open(exchange.path(), O_WRONLY);
    if (!file.isOpen())
        return exchange.refuse(statusOf(errno));
    // Nobody else may be writing to it, or putting another in its place.
    if (::flock(file.get(), LOCK_EX | LOCK_NB) != 0 && errno == EWOULDBLOCK)
        return exchange.refuse(Status::Locked);
    before = openFacts(file.get());
    position = range.first;
    exchange.saveBody({ [this](const char *data, qint64 size) { return write(data, size); }, {} });
}

bool Patch::write(const char *data, qint64 size)
{
    for (qint64 done = 0; done < size;) {
        const ssize_t written =
            ::pwrite(file.get(), data + done, std::size_t(size - done), off_t(position));
        if (written < 0 && errno == EINTR)
            continue;
        if (written <= 0) {
            failure = written == 0 ? DiskError::NoSpace : diskError(errno);
            return false;
        }
        done += written;
        position += written;
    }
    return true;
}

void Patch::bodySaved(BodyEnd end)
{
    if (file.isOpen())
        touch(file.get(), before);
    if (end == BodyEnd::Whole)
        return keep();
    file.reset();
    if (end == BodyEnd::SinkFailed)
        exchange.refuse(statusOf(failure));
    else if (end == BodyEnd::Bad)
        exchange.refuse(Status::BadRequest);
}

void Patch::keep()
{
    if (syncOf(*exchange.service().profile) == UploadFile::Sync::None)
        return answer(DiskError::None, std::exchange(file, {}));
    const auto job = std::make_shared<SyncJob>(std::move(file));
    disk().run(job, this, [this, job] {
        if (!isOver())
            answer(job->error(), job->file());
    });
}

void Patch::answer(DiskError error, const FileDescriptor &kept)
{
    if (error != DiskError::None)
        return exchange.refuse(statusOf(error));
    const EntryFacts written = openFacts(kept.get());
    if (!isSameEntry(facts(), written))
        return exchange.refuse(Status::Conflict, "Somebody has put something else there.");
    exchange.reply(Status::NoContent, validatorFields(written));
}

} // namespace standard
