#include "standard/http/Put.h"

#include "files/Attributes.h"
#include "files/DiskWorker.h"
#include "files/Share.h"
#include "server/Uploads.h"
#include "standard/http/Options.h"

#include <QPointer>

#include <utility>

#include <fcntl.h>
#include <sys/stat.h>
#include <sys/statvfs.h>

namespace standard {

namespace {

// The field by which sync programs tell and keep the time of a file.
constexpr auto timeField = "X-OC-Mtime";

} // namespace

Put::Put(Exchange &current)
    : ResourceHandler(current)
{
}

Put::~Put() = default;

void Put::start()
{
    if (isAllowed(factsAt(exchange.path())))
        receive();
}

bool Put::isAllowed(const EntryFacts &found)
{
    const bool isFolder = found.folder || exchange.namesFolder() || !namesEntry();
    if (!isPermitted(found))
        return false;
    // A part taken for the whole would destroy the rest (RFC 9110, section 14.5).
    if (exchange.request().field("Content-Range")) {
        exchange.refuse(Status::BadRequest, "Parts of a file are sent by PATCH.");
        return false;
    }
    if (isFolder) {
        exchange.refuse(Status::MethodNotAllowed, {}, { allowField(exchange) });
        return false;
    }
    if (found.exists && !found.file) {
        exchange.refuse(Status::Forbidden);
        return false;
    }
    replaces = found.exists;
    return meetsConditions(found) && exchange.mayChange(changes());
}

std::vector<Change> Put::changes() const
{
    return { { exchange.path(), Change::Extent::Resource, !replaces } };
}

void Put::receive()
{
    if (!share())
        return exchange.refuse(Status::Conflict);
    Place target = replaces ? share()->target(exchange.path()) : place();
    if (!target.isValid())
        return exchange.refuse(Status::Conflict, "The folder does not exist.");
    if (!hasRoom(target))
        return exchange.refuse(Status::InsufficientStorage);
    upload = newUpload(*exchange.service().profile);
    upload->setCareful();
    const DiskError error =
        replaces ? upload->replace(std::move(target)) : upload->create(std::move(target));
    if (error != DiskError::None)
        return refuse(error);
    exchange.saveBody([this](const char *data, qint64 size) {
        return upload->write(data, size) == DiskError::None;
    });
}

/// What is said of the length is believed for this alone: some programs tell it in a field of their
/// own when they send chunks.
bool Put::hasRoom(const Place &folder) const
{
    const Request &request = exchange.request();
    const qint64 announced = request.framing.chunked
        ? request.value("X-Expected-Entity-Length").toLongLong()
        : request.framing.contentLength;
    struct statvfs disk = {};
    if (announced <= 0 || ::fstatvfs(folder.folder.get(), &disk) != 0 || disk.f_blocks == 0)
        return true;
    return quint64(announced) / disk.f_frsize < disk.f_bavail;
}

void Put::refuse(DiskError error)
{
    discard();
    exchange.refuse(statusOf(error));
}

void Put::bodySaved(BodyEnd end)
{
    switch (end) {
    case BodyEnd::Whole:
        return keep();
    case BodyEnd::SinkFailed:
        return refuse(upload->error());
    case BodyEnd::Bad:
    case BodyEnd::TooLarge:
        discard();
        return exchange.refuse(Status::BadRequest);
    case BodyEnd::Lost:
        return discard();
    }
}

void Put::keep()
{
    const std::shared_ptr<UploadFile> received = std::exchange(upload, {});
    if (const std::optional<qint64> time = wantedTime())
        tookTime = setTimes(received->descriptor(), {}, timespec{ time_t(*time), 0 }) == 0;
    // The tag is that of this very file, whatever happens to its name.
    const auto kept = std::make_shared<FileDescriptor>(duplicate(received->descriptor()));
    DiskWorker *worker = &disk();
    worker->run(received, worker,
                [worker, received, kept, isNew = !replaces, self = QPointer<Put>(this)] {
                    if (self && !self->isOver())
                        return self->takeName(received, kept);
                    // Nobody waits for it any more: a new file harms nobody.
                    if (!isNew || received->error() != DiskError::None)
                        received->discard();
                    worker->run(received, nullptr, {});
                });
}

/// A lock may have been granted since it was asked for; a file that has changed, the job finds
/// itself.
void Put::takeName(const std::shared_ptr<UploadFile> &received,
                   const std::shared_ptr<FileDescriptor> &kept)
{
    if (received->error() != DiskError::None)
        return answer(received->error(), *kept);
    if (exchange.mayChange(changes()))
        return disk().run(received, this, [this, received, kept] {
            if (!isOver())
                answer(received->error(), *kept);
        });
    received->discard();
    disk().run(received, nullptr, {});
}

/// Seconds since 1970-01-01 UTC; some programs add a fraction.
std::optional<qint64> Put::wantedTime() const
{
    bool good = false;
    const double seconds = exchange.request().value(timeField).toDouble(&good);
    constexpr double latest = 253402300799; // the year 9999
    if (!good || !(seconds >= 0 && seconds <= latest)) // "nan" is a number to the toolkit
        return {};
    return qint64(seconds);
}

void Put::answer(DiskError error, const FileDescriptor &kept)
{
    const bool tooLate = error == DiskError::Exists || error == DiskError::Changed;
    if (tooLate && !isConditional(exchange.request()))
        return exchange.refuse(Status::Conflict, "Somebody else was faster: theirs is kept.");
    if (tooLate)
        return exchange.refuse(Status::PreconditionFailed);
    if (error != DiskError::None)
        return exchange.refuse(statusOf(error));
    Fields fields = validatorFields(openFacts(kept.get()));
    if (tookTime)
        fields.push_back({ timeField, "accepted" });
    exchange.reply(replaces ? Status::NoContent : Status::Created, std::move(fields));
}

/// Freeing a large file takes the disk a while.
void Put::discard()
{
    const std::shared_ptr<UploadFile> received = std::exchange(upload, {});
    if (!received)
        return;
    received->discard();
    disk().run(received, nullptr, {});
}

} // namespace standard
