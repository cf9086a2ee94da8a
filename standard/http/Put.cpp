#include "standard/http/Put.h"

#include "files/Attributes.h"
#include "files/Share.h"
#include "server/Uploads.h"
#include "standard/http/Options.h"

#include <utility>

#include <fcntl.h>
#include <sys/stat.h>

namespace standard {

namespace {

// The field by which sync programs tell and keep the time of a file.
constexpr auto timeField = "X-OC-Mtime";

} // namespace

void Put::start()
{
    path = pathToAdd(exchange.path());
    if (isAllowed(factsAt(path)))
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
    return { { path, Change::Extent::Resource, !replaces } };
}

bool Put::mayBeKept(const UploadFile &received)
{
    Q_UNUSED(received)
    return exchange.mayChange(changes());
}

void Put::receive()
{
    if (!share())
        return exchange.refuse(Status::Conflict);
    Place target = replaces ? share()->target(path) : share()->place(path);
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
    exchange.saveBody({ [this](const char *data, qint64 size) {
                           return upload->write(data, size) == DiskError::None;
                       },
                        [this](Pipe &pipe) { return upload->write(pipe) == DiskError::None; } });
}

/// What is said of the length is believed for this alone: some programs tell it in a field of their
/// own when they send chunks.
bool Put::hasRoom(const Place &folder) const
{
    const Request &request = exchange.request();
    const qint64 announced = request.framing.chunked
        ? request.value("X-Expected-Entity-Length").toLongLong()
        : request.framing.contentLength;
    return announced <= 0 || diskHolds(folder.folder.get(), quint64(announced));
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
        return keepWithTime();
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

/// A new file harms nobody, even when nobody waits for it any more.
void Put::keepWithTime()
{
    if (const std::optional<qint64> time = wantedTime(exchange.request().value(timeField)))
        tookTime = setTimes(upload->descriptor(), {}, timespec{ time_t(*time), 0 }) == 0;
    keep(!replaces);
}

void Put::taken(const UploadFile &received)
{
    const DiskError error = received.error();
    const bool tooLate = error == DiskError::Exists || error == DiskError::Changed;
    if (tooLate && !isConditional(exchange.request()))
        return exchange.refuse(Status::Conflict, "Somebody else was faster: theirs is kept.");
    if (tooLate)
        return exchange.refuse(Status::PreconditionFailed);
    if (error != DiskError::None)
        return exchange.refuse(statusOf(error));
    Fields fields = validatorFields(received.kept());
    if (tookTime)
        fields.push_back({ timeField, "accepted" });
    exchange.reply(replaces ? Status::NoContent : Status::Created, std::move(fields));
}

} // namespace standard
