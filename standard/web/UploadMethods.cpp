#include "standard/web/UploadMethods.h"

#include "files/DiskWorker.h"
#include "files/LeftoverSweep.h"
#include "files/Path.h"
#include "files/Share.h"
#include "standard/http/Options.h"
#include "standard/http/Visitor.h"
#include "standard/web/Tus.h"
#include "standard/web/UploadMetadata.h"

#include <cerrno>
#include <utility>

#include <fcntl.h>

namespace standard {

namespace {

constexpr auto isReceived = "It is being received.";
constexpr auto extensions = "creation,creation-with-upload,termination,expiration,checksum";
constexpr qint64 maxLength = qint64(1) << 50; ///< bytes, so that sums of lengths are safe

} // namespace

void UploadCreation::start()
{
    const QByteArray folder = exchange.access().inShare(pathBelow(exchange.path(), tusPath));
    if (!speaksTus(exchange) || !mayPutAt(folder))
        return;
    const std::optional<Wanted> wanted = readWanted(folder);
    if (!wanted)
        return;
    sentTo = parentPath(wanted->path);
    const QByteArray standsAt = joinedPath(folderToAdd(sentTo), wanted->record.name);
    missing = missingAround(standsAt);
    const QByteArray existing = parentPath(missing.empty() ? standsAt : missing.back());
    const PartialRecord &record = wanted->record;
    const bool hasBody = exchange.request().framing.hasBody();
    if ((hasBody && !fits(record.length)) || !mayStand(wanted->path, record.replaces))
        return;
    if (!mayBegin())
        return;
    if (!hasRoom(existing, record.length))
        return refuseTus(exchange, Status::InsufficientStorage);
    if (missing.empty())
        return begin(record);
    makeFolder(parentPath(target()), [this, record](int error) {
        if (error != 0)
            return refuseTus(exchange, statusOf(diskError(error)));
        if (mayBegin()) // others may have begun theirs meanwhile
            begin(record);
    });
}

/// Whether no more than usual are open; else the request is refused.
bool UploadCreation::mayBegin()
{
    const bool may = uploads().mayBegin(peerNameOf(exchange));
    if (!may)
        refuseTus(exchange, Status::TooManyRequests, "Too many uploads are open.");
    return may;
}

std::optional<UploadCreation::Wanted> UploadCreation::readWanted(const QByteArray &folder)
{
    const Request &request = exchange.request();
    const std::optional<qint64> length = numberOf(request.value("Upload-Length"));
    const QByteArray notes = request.value("Upload-Metadata");
    const std::optional<UploadMetadata> about = parseUploadMetadata(notes);
    const auto refused = [this](Status status, const char *text = "") {
        refuseTus(exchange, status, text);
        return std::nullopt;
    };
    if (!length)
        return refused(Status::BadRequest, "Upload-Length is no number of bytes.");
    if (!about)
        return refused(Status::BadRequest, "Upload-Metadata has no path for a file.");
    if (*length > maxLength)
        return refused(Status::ContentTooLarge);
    const QByteArray path = joinedPath(folder, about->path);
    if (!factsAt(folderToAdd(folder)).folder)
        return refused(Status::NotFound);
    if (isKeptName(path))
        return refused(Status::Forbidden);
    return Wanted{ path,
                   { path.mid(path.lastIndexOf('/') + 1), *length, exchange.access().account,
                     request.value("Overwrite") == "T", notes } };
}

std::vector<Change> UploadCreation::changes() const
{
    std::vector<Change> all = UploadReceiver::changes();
    for (const QByteArray &folder : missing)
        all.push_back({ folder, Change::Extent::Resource, true });
    return all;
}

void UploadCreation::begin(const PartialRecord &record)
{
    const QByteArray id = PartialUpload::newId();
    location = uploadUrl(exchange, sentTo, id);
    const Framing &framing = exchange.request().framing;
    if (!framing.chunked && framing.contentLength == record.length)
        return receiveWhole(id, record);
    const Place place = share()->place(target());
    std::optional<PartialUpload> begun =
        place.isValid() ? PartialUpload::begin(place, id, record) : std::nullopt;
    if (!begun)
        return refuseTus(exchange, statusOf(diskError(errno)));
    if (const auto due = LeftoverSweep::ifDue(place))
        disk().runAside(due, nullptr, {});
    if (framing.hasBody())
        return resume(std::move(*begun));
    enter(*begun);
    accept(progressFields(*begun, 0));
}

void UploadCreation::accept(Fields progress)
{
    isMade = true;
    progress.push_back({ "Location", location });
    replyTus(exchange, Status::Created, std::move(progress));
}

/// Nobody knows where it is: neither can anybody go on with it.
void UploadCreation::ended()
{
    UploadReceiver::ended();
    if (isMade || !partial)
        return;
    disk().run(PartialUpload::removal(partial), nullptr, {});
    uploads().leave(partial->id());
}

void UploadAppend::start()
{
    const UploadName named(exchange);
    if (!speaksTus(exchange) || !mayPutAt(named.folder))
        return;
    std::optional<PartialUpload> found = findUpload(exchange, folderToAdd(named.folder), named.id);
    if (!found)
        return refuseTus(exchange, Status::NotFound);
    if (!found->claim())
        return refuseTus(exchange, Status::Locked, isReceived);
    const qint64 offset = found->offset();
    const PartialRecord &record = found->record();
    const std::optional<qint64> given = numberOf(exchange.request().value("Upload-Offset"));
    if (given != offset)
        return refuseTus(exchange, given ? Status::Conflict : Status::BadRequest, {},
                         { offsetField(offset) });
    const QByteArray path = joinedPath(named.folder, record.name);
    if (fits(record.length - offset) && mayStand(path, record.replaces))
        resume(std::move(*found));
}

void UploadAppend::accept(Fields progress)
{
    replyTus(exchange, Status::NoContent, std::move(progress));
}

void UploadStatus::start()
{
    const UploadName named(exchange);
    if (!speaksTus(exchange) || !mayPutAt(named.folder))
        return;
    const Field fresh{ "Cache-Control", "no-store" };
    const std::optional<qint64> whole =
        exchange.routes().uploads->finishedLength(named.id, exchange.access().account);
    const std::optional<PartialUpload> found =
        whole ? std::nullopt : findUpload(exchange, folderToAdd(named.folder), named.id);
    if (!whole && !found)
        return refuseTus(exchange, Status::NotFound, {}, { fresh });
    Fields fields = found ? progressFields(*found, found->offset()) : Fields{ offsetField(*whole) };
    const qint64 length = found ? found->record().length : *whole;
    fields.push_back({ "Upload-Length", QByteArray::number(length) });
    if (found)
        fields.push_back({ "Upload-Metadata", found->record().notes });
    fields.push_back(fresh);
    replyTus(exchange, Status::Ok, std::move(fields));
}

void UploadRemoval::start()
{
    const UploadName named(exchange);
    if (!speaksTus(exchange) || !mayPutAt(named.folder))
        return;
    std::optional<PartialUpload> found = findUpload(exchange, folderToAdd(named.folder), named.id);
    if (!found)
        return refuseTus(exchange, Status::NotFound);
    if (!found->claim())
        return refuseTus(exchange, Status::Locked, isReceived);
    exchange.routes().uploads->leave(found->id());
    disk().run(PartialUpload::removal(std::make_shared<PartialUpload>(std::move(*found))), this,
               [this] {
                   if (!isOver())
                       replyTus(exchange, Status::NoContent);
               });
}

void UploadOptions::start()
{
    replyTus(exchange, Status::NoContent,
             { allowField(exchange),
               { "Tus-Version", tusVersion },
               { "Tus-Extension", extensions },
               { "Tus-Max-Size", QByteArray::number(maxLength) },
               { "Tus-Checksum-Algorithm", UploadChecksum::algorithms() } });
}

} // namespace standard
