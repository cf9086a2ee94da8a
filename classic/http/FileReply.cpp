#include "classic/http/FileReply.h"

#include "config/Profile.h"
#include "files/OpenFiles.h"
#include "files/Path.h"
#include "files/Share.h"

#include <QFileInfo>

#include <array>

#include <fcntl.h>

namespace {

struct TypeRow
{
    QLatin1String extension;
    const char *contentType;
};

constexpr QLatin1String operator""_l1(const char *text, std::size_t size)
{
    return QLatin1String(text, int(size));
}

// Clients know these values. "aac" stands twice; the first row counts.
constexpr std::array<TypeRow, 21> contentTypes{ {
    { "html"_l1, htmlType },
    { "jpg"_l1, "image/jpeg" },
    { "png"_l1, "image/png" },
    { "avi"_l1, "video/x-msvideo" },
    { "torrent"_l1, "application/x-bittorrent" },
    { "pdf"_l1, "application/pdf" },
    { "mp4"_l1, "video/mp4v-es, audio/mp4" },
    { "aac"_l1, "video/mp4v-es, audio/mp4" },
    { "flv"_l1, "video/x-flv" },
    { "3gp"_l1, "audio/3gpp, video/3gpp" },
    { "mp3"_l1, "audio/mpeg3" },
    { "aac"_l1, "audio/mp4" },
    { "mov"_l1, "video/quicktime" },
    { "doc"_l1, "application/msword" },
    { "pps"_l1, "application/vnd.ms-powerpoint" },
    { "rtf"_l1, "application/rtf" },
    { "xls"_l1, "application/excel" },
    { "wav"_l1, "audio/wav" },
    { "wmv"_l1, "video/x-ms-wmv" },
    { "zip"_l1, "application/zip" },
    { "exe"_l1, "application/octet-stream" },
} };

const QLatin1String top("/");
constexpr auto appletUpload = "up";
constexpr auto uploadsFolder = "/uploads";
constexpr auto iconRequest = "/favicon.ico";
constexpr auto iconFile = "n900.ico";
constexpr auto sandboxed = "Content-Security-Policy: sandbox\r\n";

bool isPart(qint64 start, qint64 end)
{
    return start >= 1 || end >= 1;
}

/// The line of a "206 Partial Content". Total and open end come from the request's own
/// Content-Length, which is usually 0: clients of this server rely on the body alone.
QByteArray contentRange(const Request &request)
{
    const qint64 end = request.rangeEnd != 0 ? request.rangeEnd : request.contentLength - 1;
    return "Content-Range: bytes " + QByteArray::number(request.rangeStart) + '-'
        + QByteArray::number(end) + '/' + QByteArray::number(request.contentLength) + "\r\n";
}

/// How many bytes of a file go out for a range: from its start on, the end taken as a count.
qint64 bodySize(qint64 fileSize, qint64 start, qint64 end)
{
    const qint64 left = qMax<qint64>(0, fileSize - qMax<qint64>(0, start));
    return end > 0 ? qMin(end, left) : left;
}

/// A file name as it may stand in a header line: nothing in it ends the quotes or the line.
QByteArray headerSafe(const QString &name)
{
    QByteArray bytes = name.toLatin1();
    for (char &c : bytes) {
        const auto code = static_cast<unsigned char>(c);
        const bool control = code < 0x20 || (code >= 0x7f && code < 0xa0);
        if (control || c == '"')
            c = '?';
    }
    return bytes;
}

QByteArray disposition(const QString &name)
{
    return "Content-Disposition: attachment; filename=\"" + headerSafe(name) + "\"\r\n";
}

/// What ends in a slash is no file.
bool namesFolder(const QString &path)
{
    return path.endsWith(QLatin1Char('/')) && path != top;
}

QString lastName(const QString &path)
{
    return path.mid(path.lastIndexOf(QLatin1Char('/')) + 1);
}

/// In lower case, without its dot.
QString extensionOf(const QString &name)
{
    const auto dot = name.lastIndexOf(QLatin1Char('.'));
    return dot < 0 ? QString() : name.mid(dot + 1).toLower();
}

/// A file of ours by its own path.
std::optional<OpenFile> openInstalled(const QString &path)
{
    OpenFile file{ FileDescriptor(::open(nativePath(path).constData(),
                                         O_RDONLY | O_NONBLOCK | O_NOCTTY | O_CLOEXEC)),
                   {} };
    if (file.descriptor.isOpen())
        file.facts = openFacts(file.descriptor.get());
    if (!file.facts.file)
        return {};
    return file;
}

} // namespace

FileReply::FileReply(Exchange &current)
    : Responder(current)
    , upload(current, this, [this](SaveResult result) { uploadDone(result); })
{
}

void FileReply::reply()
{
    const bool uploads = request.methodCode == Request::Post
        && (request.isMultipart()
            || request.field(Request::actionField) == QLatin1String(appletUpload));
    if (!uploads)
        return sendShared(request.path, exchange.service.shared.absoluteFilePath() + request.path);
    if (!exchange.service.profile->allowsUpload())
        return uploadDone(OpenFailed);
    upload.start(QLatin1String(uploadsFolder));
}

bool FileReply::sendRegular(const QString &path)
{
    const Share *share = exchange.service.share.get();
    if (!share || namesFolder(path))
        return false;
    std::optional<ServedFile> file = exchange.service.files.open(*share, nativePath(path));
    if (!file)
        return false;
    sendOpened(std::move(*file), path == top ? exchange.service.shared.fileName() : lastName(path));
    return true;
}

void FileReply::sendShared(const QString &path, const QString &shownPath)
{
    if (sendRegular(path))
        return;
    const Share *share = exchange.service.share.get();
    refuse(shownPath, share && !namesFolder(path) && share->facts(nativePath(path)).exists);
}

void FileReply::sendInstalled(const QString &path, const QByteArray &status)
{
    std::optional<OpenFile> file = openInstalled(path);
    if (!file)
        return refuse(path, QFileInfo::exists(path));
    sendOpened(served(std::move(*file)), QFileInfo(path).fileName(), status);
}

void FileReply::sendOpened(ServedFile file, const QString &name, const QByteArray &status)
{
    const bool part = isPart(request.rangeStart, request.rangeEnd);
    const qint64 size = file.facts.size;
    const QString suffix = extensionOf(name);
    QByteArray extra;
    if (part)
        extra += contentRange(request);
    if (suffix != QLatin1String("html"))
        extra += disposition(name);
    setContentType(typeOf(suffix));
    exchange.sendsFile = true;
    sendHeader(part ? "206 Partial Content" : status, size, extra);
    if (size == 0)
        return;
    // The size of the whole file is announced for a part too, so that only the end of the
    // connection can tell the peer that it has all of it.
    const qint64 count = bodySize(size, request.rangeStart, request.rangeEnd);
    if (count < size)
        channel.setKeepAlive(false);
    const QByteArray &content = file.memo->content;
    if (count < size || content.isEmpty() || exchange.service.traffic.limit() > 0)
        return channel.sendFile(std::move(file.descriptor), qMax<qint64>(0, request.rangeStart),
                                count);
    channel.write(content, true);
}

/// Answers for what is no regular file that can be read.
void FileReply::refuse(const QString &shownPath, bool exists)
{
    if (exists)
        return sendHeader("500 Can't read file", 0);
    const bool wantsIcon = exchange.service.profile->showsThumbnails()
        && shownPath.endsWith(QLatin1String(iconRequest));
    std::optional<OpenFile> icon;
    if (wantsIcon)
        icon = openInstalled(exchange.service.setup.directories.icons + QLatin1String(iconFile));
    if (icon)
        return sendOpened(served(std::move(*icon)), QLatin1String(iconFile));
    notFound(shownPath.toUtf8());
}

QByteArray FileReply::typeOf(const QString &extension)
{
    for (const TypeRow &row : contentTypes) {
        if (extension == row.extension)
            return row.contentType;
    }
    return {};
}

void FileReply::notFound(const QByteArray &triedFile)
{
    QByteArray body;
    body.reserve(256);
    body += "<html><title>Wrong URL</title><body><h1>Wrong URL</h1>Path=";
    const bool strict = exchange.service.profile->isStrict();
    body += (strict ? request.path.toHtmlEscaped() : request.path).toLatin1();
    body += "<br>or File=";
    body += strict ? QString::fromUtf8(triedFile).toHtmlEscaped().toUtf8() : triedFile;
    body += "<br>Not found.</body></html>";
    setContentType("text/html");
    // A path that carries a script must not run in the page's name.
    sendBody(Status::notFound, body, sandboxed);
}

void FileReply::partHeadReady(const QByteArray &lines)
{
    upload.partHeadReady(lines);
}

void FileReply::uploadEnded(SaveResult result)
{
    upload.bodyEnded(result);
}

void FileReply::uploadDone(SaveResult /*result*/)
{
    // Nothing is answered to a plain upload; its end closes the connection.
    channel.setKeepAlive(false);
    channel.end();
}
