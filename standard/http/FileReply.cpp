#include "standard/http/FileReply.h"

#include "files/Path.h"
#include "standard/http/ContentType.h"
#include "standard/http/Protection.h"

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
    std::optional<ServedFile> opened =
        exchange.service().closedFiles.open(*share(), exchange.path());
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
    QByteArray &lines = file.memo->note;
    if (lines.isEmpty())
        lines = fieldLines(fileFields()) + fieldLines({ { "Content-Type", type() } });
    return lines;
}

void FileReply::sendWhole()
{
    const qint64 size = file.facts.size;
    if (!exchange.startBody(Status::Ok, {}, size, fileLines()))
        return;
    const QByteArray &content = file.memo->content;
    if (content.isEmpty() || exchange.service().traffic.limit() > 0)
        return exchange.sendFile(std::move(file.descriptor), 0, size);
    exchange.write(content, false);
    exchange.end();
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

} // namespace standard
