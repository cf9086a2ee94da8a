#include "standard/http/FileReply.h"

#include "config/Profile.h"
#include "files/ListingCache.h"
#include "files/Path.h"
#include "server/Secret.h"
#include "standard/http/AppFiles.h"
#include "standard/http/ContentType.h"
#include "standard/http/FolderPage.h"
#include "standard/http/LoginPage.h"
#include "standard/http/Protection.h"
#include "standard/http/Reserved.h"

#include <QRandomGenerator>

#include <algorithm>
#include <cerrno>
#include <numeric>
#include <utility>

namespace standard {

namespace {

QByteArray newBoundary()
{
    return QByteArray::number(QRandomGenerator::system()->generate64(), 16);
}

} // namespace

void FileReply::start()
{
    if (!share())
        return exchange.refuse(Status::NotFound);
    if (share()->isFolder() && exchange.namesFolder())
        return listFolder();
    std::optional<ServedFile> opened = exchange.service().files.open(*share(), exchange.path());
    const int error = opened ? 0 : errno;
    EntryFacts found;
    found.folder = error == EISDIR;
    found.exists = opened || found.folder;
    // Nothing changes, but the If header counts.
    if (!isPermitted(found) || !exchange.mayChange({}))
        return;
    if (opened)
        return sendFile(std::move(*opened));
    if (found.folder)
        return redirectToFolder();
    exchange.refuse(statusOf(error));
}

void FileReply::sendFile(ServedFile opened)
{
    file = std::move(opened);
    if (!meetsConditions(file.facts))
        return;
    const Request &request = exchange.request();
    const std::optional<QByteArray> asked = request.field("Range");
    // For HEAD, and all that isn't GET, there are no ranges (RFC 9110, section 14.2).
    if (!asked || request.isHead() || !rangeApplies(request, Validators::of(file.facts)))
        return sendWhole();
    RangeAnswer answer = rangesOf(*asked, file.facts.size);
    if (answer.kind == RangeAnswer::Kind::Whole)
        return sendWhole();
    if (answer.kind == RangeAnswer::Kind::Unsatisfiable) {
        return exchange.refuse(
            Status::RangeNotSatisfiable, {},
            { { "Content-Range", "bytes */" + QByteArray::number(file.facts.size) } });
    }
    if (answer.parts.size() == 1)
        return sendPart(answer.parts.front());
    startParts(std::move(answer.parts));
}

QByteArray FileReply::type() const
{
    return contentType(fileName(), file.descriptor->get());
}

/// What every reply says of the file, whatever part of it is sent.
Fields FileReply::fileFields() const
{
    Fields fields = validatorFields(file.facts);
    fields.push_back({ "Accept-Ranges", "bytes" });
    addFileProtection(fields);
    fields.push_back({ "Content-Disposition", disposition(fileName(), type()) });
    return fields;
}

/// The same with the type, made once for as long as the file stays open.
const QByteArray &FileReply::fileLines() const
{
    if (file.note->isEmpty())
        *file.note = fieldLines(fileFields()) + fieldLines({ { "Content-Type", type() } });
    return *file.note;
}

void FileReply::sendWhole()
{
    const qint64 size = file.facts.size;
    if (exchange.startBody(Status::Ok, {}, size, fileLines()))
        exchange.sendFile(std::move(file.descriptor), 0, size);
}

void FileReply::sendPart(const ByteRange &part)
{
    Fields fields{ { "Content-Range", contentRange(part, file.facts.size) } };
    if (exchange.startBody(Status::PartialContent, std::move(fields), part.count, fileLines()))
        exchange.sendFile(std::move(file.descriptor), part.first, part.count);
}

void FileReply::startParts(std::vector<ByteRange> wanted)
{
    boundary = newBoundary();
    partType = type();
    Fields fields = fileFields();
    fields.push_back({ "Content-Type", "multipart/byteranges; boundary=" + boundary });
    const auto length = std::accumulate(wanted.begin(), wanted.end(), qint64(partsEnd().size()),
                                        [this](qint64 sum, const ByteRange &part) {
                                            return sum + partHead(part).size() + part.count;
                                        });
    parts = std::move(wanted);
    std::reverse(parts.begin(), parts.end());
    if (exchange.startBody(Status::PartialContent, std::move(fields), length))
        sendNextPart();
}

/// Each begins with the line break that ends the one before.
QByteArray FileReply::partHead(const ByteRange &part) const
{
    return "\r\n--" + boundary + "\r\nContent-Type: " + partType
        + "\r\nContent-Range: " + contentRange(part, file.facts.size) + "\r\n\r\n";
}

QByteArray FileReply::partsEnd() const
{
    return "\r\n--" + boundary + "--\r\n";
}

void FileReply::sendNextPart()
{
    const ByteRange part = parts.back();
    parts.pop_back();
    exchange.write(partHead(part));
    exchange.sendFile(file.descriptor, part.first, part.count);
}

void FileReply::fileSent()
{
    if (boundary.isEmpty())
        return exchange.end();
    if (!parts.empty())
        return sendNextPart();
    exchange.write(partsEnd());
    exchange.end();
}

QByteArray FileReply::fileName() const
{
    const QByteArray &path = exchange.path();
    if (path.isEmpty())
        return nativePath(exchange.service().shared.fileName());
    return path.mid(path.lastIndexOf('/') + 1);
}

/// Relative links of its page would lead elsewhere without the "/". Only the path is told: what is
/// in front of it a proxy may know better.
void FileReply::redirectToFolder()
{
    QByteArray location = exchange.urlPath(exchange.path(), true);
    if (const QByteArray &query = exchange.request().target.query; !query.isEmpty())
        location += '?' + query;
    exchange.refuse(Status::PermanentRedirect, {}, { { "Location", location } });
}

void FileReply::listFolder()
{
    if (isDropBox())
        return sendPage(nullptr);
    if (!isPermitted(Right::See, exchange.path()) || !exchange.mayChange({}))
        return;
    if (!exchange.service().profile->showsFolders())
        return exchange.refuse(Status::Forbidden, "Folders are not listed here.");
    std::optional<FolderReader> folder = share()->openFolder(exchange.path());
    if (!folder)
        return exchange.refuse(statusOf(errno));
    exchange.service().setup.listings->list(
        std::move(*folder), ListingShape(), { 0, maxPageEntries }, this,
        [this](const ListingCache::Listing &listing) { sendListing(listing.get()); });
}

/// Whether the visitor may add files here but see nothing, which is told of any folder.
bool FileReply::isDropBox() const
{
    return takesForms() && !exchange.access().may(Right::See, exchange.path());
}

void FileReply::sendListing(const FolderListing *listing)
{
    if (isOver())
        return;
    if (!listing)
        return exchange.breakOff();
    sendPage(listing);
}

bool FileReply::hasPad() const
{
    const Access &access = exchange.access();
    return exchange.service().profile->scratchPad != 0 && access.home.isEmpty()
        && access.may(Right::Read, {}) && findRoute(exchange.routes(), Method::Get, padPath);
}

/// Whether the visitor may add files here by a form.
bool FileReply::takesForms() const
{
    return exchange.access().may(Right::Add, exchange.path())
        && findRoute(exchange.routes(), Method::Post, exchange.path());
}

void FileReply::sendPage(const FolderListing *listing)
{
    const Access &access = exchange.access();
    // The button that leads back would show it again after the log-out.
    Fields fields{ { "Content-Type", "text/html; charset=utf-8" },
                   { "Cache-Control", access.inSession ? "no-store" : "no-cache" } };
    QByteArray top = access.inSession ? logOutForm(exchange) : QByteArray();
    if (isArchived())
        top += FolderPage::archiveLink();
    if (hasPad())
        top += FolderPage::padLink(exchange.urls().prefix);
    if (takesForms())
        top += FolderPage::uploadForm();
    const QByteArray nonce = newSecret();
    const QByteArray head = appHead(exchange.urls().prefix, nonce);
    if (!head.isEmpty())
        addAppProtection(fields, nonce);
    else
        takesForms() || access.inSession ? addFormProtection(fields) : addPageProtection(fields);
    const FolderPage page{ seenFrom(access.home, exchange.path()), head, top, listing };
    exchange.reply(Status::Ok, std::move(fields), page.html());
}

/// Whether the visitor can have the folder as a file.
bool FileReply::isArchived() const
{
    const Route *route = findRoute(exchange.routes(), Method::Get, exchange.path(), archiveQuery);
    return route && route->parameter && exchange.access().may(Right::See, exchange.path())
        && exchange.access().may(Right::Read, exchange.path());
}

} // namespace standard
