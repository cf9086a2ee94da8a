#include "standard/web/UploadReceiver.h"

#include "files/DiskWorker.h"
#include "files/Path.h"
#include "files/Pipe.h"
#include "files/Share.h"
#include "server/Uploads.h"
#include "standard/http/Visitor.h"
#include "standard/web/Tus.h"
#include "standard/web/UploadMetadata.h"

#include <QPointer>

#include <cerrno>
#include <utility>

namespace standard {

bool UploadReceiver::fits(qint64 room)
{
    const Request &request = exchange.request();
    if (request.value("Content-Type") != contentType) {
        refuse(Status::UnsupportedMediaType);
        return false;
    }
    const std::optional<QByteArray> sum = request.field("Upload-Checksum");
    if (sum)
        checksum = UploadChecksum::parse(*sum);
    if (sum && !checksum) {
        refuse(Status::BadRequest, "This checksum is not understood.");
        return false;
    }
    if (request.framing.contentLength <= room)
        return true;
    refuse(Status::ContentTooLarge);
    return false;
}

bool UploadReceiver::mayStand(const QByteArray &path, bool mayReplace)
{
    spot = spotAt(path, mayReplace);
    replaces = spot.replaces;
    if (!isPermitted(spot.needed, spot.path))
        return false;
    if (spot.isFree)
        return exchange.mayChange(changes());
    refuse(Status::PreconditionFailed, "Something has that name.");
    return false;
}

bool UploadReceiver::mayBeKept(const UploadFile &received)
{
    Q_UNUSED(received)
    return exchange.mayChange(changes());
}

std::vector<QByteArray> UploadReceiver::addedFiles() const
{
    return isTaken ? std::vector<QByteArray>{ spot.path } : std::vector<QByteArray>();
}

std::shared_ptr<OpenUploads::Upload> UploadReceiver::enter(const PartialUpload &begun)
{
    const EntryFacts folder = entryFacts(begun.place().folder.get());
    return uploads().enter(begun.id(),
                           { peerNameOf(exchange), wholeOf(exchange.share()), &disk(),
                             parentPath(spot.path), folder.device,
                             begun.record().length - begun.offset(), begun.expires() });
}

void UploadReceiver::resume(PartialUpload claimed)
{
    partial = std::make_shared<PartialUpload>(std::move(claimed));
    partial->touch();
    entry = enter(*partial);
    start = position = partial->offset();
    known = partial->id();
    whole = partial->record();
    receive();
}

void UploadReceiver::receiveWhole(const QByteArray &id, const PartialRecord &wanted)
{
    known = id;
    whole = wanted;
    receive();
}

void UploadReceiver::receive()
{
    if (!openFile())
        return;
    BodySink sink{ [this](const char *data, qint64 size) { return write(data, size); }, {} };
    if (!checksum)
        sink.piped = [this](Pipe &pipe) { return write(pipe); };
    exchange.saveBody(std::move(sink));
}

bool UploadReceiver::openFile()
{
    upload = newUpload(*exchange.service().profile);
    upload->setCareful();
    if (partial) {
        FileDescriptor content = partial->open(start);
        if (!content.isOpen()) {
            refuse(statusOf(errno));
            return false;
        }
        upload->resume(std::move(content), partial->place().name);
    }
    const DiskError error = beginAt(spot.path);
    if (error != DiskError::None)
        refuse(statusOf(error));
    return error == DiskError::None;
}

bool UploadReceiver::write(const char *data, qint64 size)
{
    if (size > whole.length - position || upload->write(data, size) != DiskError::None)
        return false;
    if (checksum)
        checksum->add(data, size);
    return noteArrived(size);
}

bool UploadReceiver::write(Pipe &pipe)
{
    const qint64 size = pipe.size();
    return size <= whole.length - position && upload->write(pipe) == DiskError::None
        && noteArrived(size);
}

bool UploadReceiver::noteArrived(qint64 size)
{
    position += size;
    if (entry) {
        entry->left -= size;
        entry->lastByte = OpenUploads::Clock::now();
    }
    return true;
}

void UploadReceiver::bodySaved(BodyEnd end)
{
    const bool isWrong = checksum && (end != BodyEnd::Whole || !checksum->fits());
    if (end == BodyEnd::Whole && !isWrong)
        return takeWhole();
    const Status status = problem(end);
    if (isWrong && partial)
        return takeBack(status);
    if (end != BodyEnd::Lost)
        refuse(status);
}

/// Why what has come is not taken.
Status UploadReceiver::problem(BodyEnd end) const
{
    if (end == BodyEnd::Whole)
        return Status::ChecksumMismatch;
    if (end != BodyEnd::SinkFailed)
        return Status::BadRequest;
    const DiskError error = upload->error();
    return error == DiskError::None ? Status::ContentTooLarge : statusOf(error);
}

/// Nobody can tell any more which of the bytes are right. Until they are gone nobody goes on.
void UploadReceiver::takeBack(Status status)
{
    DiskWorker *worker = &disk();
    worker->run(PartialUpload::cut(partial, start), worker,
                [known = entry, left = whole.length - start, status,
                 self = QPointer<UploadReceiver>(this)] {
                    known->left = left;
                    if (self && !self->isOver())
                        self->refuse(status);
                });
}

/// A peer that goes meanwhile asks again, and then sends the last byte once more.
void UploadReceiver::takeWhole()
{
    if (position < whole.length) {
        discard();
        return tell(position);
    }
    const std::optional<UploadMetadata> about = parseUploadMetadata(whole.notes);
    if (about && about->modified)
        upload->setModified(*about->modified);
    keep(false);
}

std::function<void()> UploadReceiver::whenKept()
{
    return [record = partial, all = exchange.routes().uploads, id = known, what = whole] {
        if (record)
            record->remove();
        all->finish(id, what.owner, what.length);
    };
}

void UploadReceiver::taken(const UploadFile &received)
{
    const DiskError error = received.error();
    if (error != DiskError::None)
        return refuse(error == DiskError::Changed ? Status::PreconditionFailed : statusOf(error));
    entry.reset();
    isTaken = true;
    tell(whole.length);
}

void UploadReceiver::tell(qint64 offset)
{
    accept(partial ? progressFields(*partial, offset) : Fields{ offsetField(offset) });
}

void UploadReceiver::refuse(Status status, const QByteArray &text)
{
    discard();
    refuseTus(exchange, status, text);
}

void UploadReceiver::ended()
{
    UploadTaker::ended();
    if (!entry)
        return;
    partial->touch();
    entry->left = whole.length - partial->offset();
    entry->expires = partial->expires();
}

} // namespace standard
