#include "standard/web/FormUpload.h"

#include "files/HiddenUploads.h"
#include "files/Path.h"
#include "files/Share.h"
#include "files/UploadFile.h"
#include "server/Uploads.h"
#include "standard/http/Options.h"
#include "standard/http/Reserved.h"
#include "standard/http/Uri.h"

#include <algorithm>
#include <climits>

#include <fcntl.h>

namespace standard {

namespace {

constexpr int maxPartHead = 16 * 1024; ///< bytes
constexpr int maxNumber = 1000; ///< of a name that is taken

/// What stands behind `key` in a field, with or without quotes.
QByteArray parameter(const QByteArray &field, const QByteArray &key)
{
    const int at = int(field.indexOf(key));
    if (at < 0)
        return {};
    const QByteArray value = field.mid(at + key.size());
    return value.startsWith('"') ? value.mid(1, value.indexOf('"', 1) - 1)
                                 : value.split(';').front().trimmed();
}

} // namespace

QByteArray partFileName(const QByteArray &lines)
{
    // So browsers write what would end the name or the line (HTML, "multipart/form-data").
    QByteArray name = parameter(lines, "; filename=")
                          .replace("%22", "\"")
                          .replace("%0D", "\r")
                          .replace("%0A", "\n");
    name = name.mid(std::max(name.lastIndexOf('/'), name.lastIndexOf('\\')) + 1);
    const bool isName = name != "." && name != ".." && name.size() <= NAME_MAX
        && !name.contains('\0') && !namesHiddenUpload(name);
    return isName ? name : QByteArray();
}

void FormUpload::start()
{
    if (!isPermitted(Right::Add, exchange.path()))
        return;
    folder = folderToAdd(exchange.path());
    if (!exchange.namesFolder() || !factsAt(folder).folder)
        return exchange.refuse(Status::MethodNotAllowed, {}, { allowField(exchange) });
    const QByteArray type = exchange.request().value("Content-Type");
    const QByteArray boundary = parameter(type, "boundary=");
    if (!type.toLower().startsWith("multipart/form-data") || boundary.isEmpty())
        return exchange.refuse(Status::UnsupportedMediaType);
    if (!hasRoom())
        return exchange.refuse(Status::InsufficientStorage);
    delimiter = "\r\n--" + boundary;
    exchange.saveBody({ [this](const char *data, qint64 size) {
                           return take(QByteArray::fromRawData(data, int(size)));
                       },
                        {} });
}

bool FormUpload::hasRoom() const
{
    const Framing &framing = exchange.request().framing;
    const FileDescriptor opened = share()->open(folder, O_PATH | O_DIRECTORY);
    return framing.chunked || diskHolds(opened.get(), quint64(framing.contentLength));
}

bool FormUpload::take(const QByteArray &piece)
{
    return part ? write(part->feed(piece)) : takeHead(piece);
}

bool FormUpload::takeHead(const QByteArray &piece)
{
    constexpr auto blankLine = "\r\n\r\n";
    head += piece;
    const int end = int(head.indexOf(blankLine));
    if (end < 0)
        return head.size() <= maxPartHead;
    if (!begin(partFileName(head.left(end))))
        return false;
    part.emplace(delimiter);
    const QByteArray rest = head.mid(end + int(qstrlen(blankLine)));
    head.clear();
    return write(part->feed(rest));
}

bool FormUpload::write(const QByteArray &bytes)
{
    if (bytes.isEmpty() || upload->write(bytes.constData(), bytes.size()) == DiskError::None)
        return true;
    problem = statusOf(upload->error());
    return false;
}

/// Under the first name that is free. Whether a lock keeps it out, is asked in the end.
bool FormUpload::begin(const QByteArray &name)
{
    if (name.isEmpty() || isReserved(exchange.access().home, joinedPath(exchange.path(), name)))
        return false;
    const QByteArray path = joinedPath(folder, name);
    DiskError error = DiskError::Exists;
    for (int number = 1; error == DiskError::Exists && number <= maxNumber; ++number) {
        target = number == 1 ? path : numberedPath(path, number);
        Place place = share()->place(target);
        upload = newUpload(*exchange.service().profile);
        upload->setCareful();
        error = place.isValid() ? upload->create(std::move(place)) : DiskError::Missing;
    }
    problem = statusOf(error);
    return error == DiskError::None;
}

void FormUpload::refuse(Status status)
{
    discard();
    exchange.refuse(status);
}

void FormUpload::bodySaved(BodyEnd end)
{
    switch (end) {
    case BodyEnd::Whole:
        return part && part->isFound() ? keep(false) : refuse(Status::BadRequest);
    case BodyEnd::SinkFailed:
        return refuse(problem);
    case BodyEnd::Bad:
    case BodyEnd::TooLarge:
        return refuse(Status::BadRequest);
    case BodyEnd::Lost:
        return discard();
    }
}

std::vector<QByteArray> FormUpload::addedFiles() const
{
    return isTaken ? std::vector<QByteArray>{ target } : std::vector<QByteArray>();
}

std::vector<Change> FormUpload::changes() const
{
    return { { target, Change::Extent::Resource, true } };
}

bool FormUpload::mayBeKept(const UploadFile &received)
{
    Q_UNUSED(received)
    return exchange.mayChange(changes());
}

void FormUpload::taken(const UploadFile &received)
{
    if (received.error() != DiskError::None)
        return exchange.refuse(statusOf(received.error()));
    isTaken = true;
    exchange.refuse(Status::SeeOther, {},
                    { { "Location", exchange.urlPath(exchange.path(), true) } });
}

} // namespace standard
