#include "server/FileReply.h"

#include "config/Profile.h"

#include <QFileInfo>

#include <array>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace {

struct TypeRow
{
    const char *extension;
    const char *contentType;
};

// Clients know these values. "aac" stands twice; the first row counts.
constexpr std::array<TypeRow, 21> contentTypes{ {
    { "html", "text/html; charset=UTF-8" },
    { "jpg", "image/jpeg" },
    { "png", "image/png" },
    { "avi", "video/x-msvideo" },
    { "torrent", "application/x-bittorrent" },
    { "pdf", "application/pdf" },
    { "mp4", "video/mp4v-es, audio/mp4" },
    { "aac", "video/mp4v-es, audio/mp4" },
    { "flv", "video/x-flv" },
    { "3gp", "audio/3gpp, video/3gpp" },
    { "mp3", "audio/mpeg3" },
    { "aac", "audio/mp4" },
    { "mov", "video/quicktime" },
    { "doc", "application/msword" },
    { "pps", "application/vnd.ms-powerpoint" },
    { "rtf", "application/rtf" },
    { "xls", "application/excel" },
    { "wav", "audio/wav" },
    { "wmv", "video/x-ms-wmv" },
    { "zip", "application/zip" },
    { "exe", "application/octet-stream" },
} };

constexpr auto uploadAction = "up";
constexpr auto uploadsFolder = "/uploads";
constexpr auto iconRequest = "/favicon.ico";
constexpr auto iconFile = "n900.ico";
constexpr auto dispositionMark = "ition: "; ///< of "Content-Disposition: ", in any case of its head
constexpr int earliestMark = 13;
constexpr int dispositionSize = 31; ///< "Content-Disposition: form-data;"

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

QString decodedName(const QByteArray &bytes)
{
    const QString name = QString::fromUtf8(bytes.constData(), bytes.size());
    const bool isUtf8 = !name.contains(QChar::ReplacementCharacter);
    return isUtf8 ? name : QString::fromLatin1(bytes.constData(), bytes.size());
}

/// Browsers of other systems send the whole path of their file.
QByteArray withoutFolders(const QByteArray &name)
{
    auto cut = name.lastIndexOf('/');
    if (cut < 0)
        cut = name.lastIndexOf('\\');
    return name.mid(int(cut) + 1);
}

} // namespace

bool openRegularFile(QFile &file, const QString &path)
{
    file.setFileName(path);
    // Not blocking: a pipe would wait for its writer, and with it the whole server.
    const int fd =
        ::open(QFile::encodeName(path).constData(), O_RDONLY | O_NONBLOCK | O_NOCTTY | O_CLOEXEC);
    if (fd < 0)
        return false;
    struct stat status = {};
    const bool regular = ::fstat(fd, &status) == 0 && S_ISREG(status.st_mode);
    if (regular
        && file.open(fd, QIODevice::ReadOnly | QIODevice::Unbuffered, QFile::AutoCloseHandle))
        return true;
    ::close(fd);
    return false;
}

QString uploadName(const QByteArray &partHeaders)
{
    QByteArray parameters;
    const QList<QByteArray> lines = partHeaders.split('\n');
    for (const QByteArray &line : lines) {
        if (line.indexOf(dispositionMark, earliestMark) >= 0)
            parameters = line.mid(dispositionSize);
    }
    const QByteArray key("filename=");
    const auto start = parameters.indexOf(key);
    if (start < 0)
        return {};
    const auto nameStart = int(start + key.size()) + 1; // behind the opening quote
    const auto nameEnd = int(parameters.indexOf('"', nameStart));
    if (nameEnd < 0)
        return {};
    return decodedName(withoutFolders(parameters.mid(nameStart, nameEnd - nameStart)));
}

FileReply::FileReply(Profile *profile, Request *httpRequest)
    : Responder(httpRequest)
    , config(profile)
{
    setObjectName(QStringLiteral("HR"));
    connect(&request->channel, &Channel::partHead, this, &FileReply::receivePart);
}

void FileReply::reply(const QFileInfo &shared)
{
    const QString root = shared.absoluteFilePath();
    const bool upload = request->methodCode == Request::Post
        && (request->isMultipart() || request->field("a") == QLatin1String(uploadAction));
    if (upload)
        return saveFileTo(root + QLatin1String(uploadsFolder));

    const bool isRoot = request->path == QLatin1String("/");
    sendFile(isRoot ? root : root + request->path);
}

void FileReply::sendFile(const QString &path)
{
    file.close();
    if (path.contains(QChar::Null) || !openRegularFile(file, path))
        return refuseFile(path);

    const bool part = isPart(request->rangeStart, request->rangeEnd);
    const qint64 size = file.size();
    QByteArray extra;
    if (part)
        extra += contentRange(*request);
    const QString suffix = QFileInfo(path).suffix().toLower();
    contentType = getContentType(suffix);
    if (suffix != QLatin1String("html"))
        extra += disposition(path);
    sendHeader(part ? "206 Partial Content" : "200 OK", size, extra);
    if (size == 0)
        return;
    // The size of the whole file is announced for a part too, so that only the end of the
    // connection can tell the peer that it has all of it.
    if (bodySize(size, request->rangeStart, request->rangeEnd) < size)
        request->channel.setKeepAlive(false);
    request->channel.sendFile(&file, request->rangeStart, request->rangeEnd);
}

/// Answers for what is no regular file that can be read.
void FileReply::refuseFile(const QString &path)
{
    if (!path.contains(QChar::Null) && QFile::exists(path))
        return sendHeader("500 Can't read file", 0);

    const QString icon = request->directories->icons + QLatin1String(iconFile);
    if (config->showsThumbnails() && path.endsWith(QLatin1String(iconRequest)))
        return sendFile(icon);
    notFound(path.toUtf8());
}

QByteArray FileReply::disposition(const QString &path)
{
    const QString name = QFileInfo(path).fileName();
    return "Content-Disposition: attachment; filename=\"" + headerSafe(name) + "\"\r\n";
}

QByteArray FileReply::getContentType(const QString &extension)
{
    for (const TypeRow &row : contentTypes) {
        if (extension == QLatin1String(row.extension))
            return row.contentType;
    }
    return {};
}

void FileReply::notFound(const QByteArray &triedFile)
{
    QByteArray body;
    body.reserve(256);
    body += "<html><title>Wrong URL</title><body><h1>Wrong URL</h1>Path=";
    body += request->path.toLatin1();
    body += "<br>or File=";
    body += triedFile;
    body += "<br>Not found.</body></html>";
    contentType = "text/html";
    sendHeader("404 Not Found", body.size());
    request->channel.write(body, true);
}

void FileReply::saveFileTo(const QString &folder)
{
    awaitUpload();
    uploadFolder = folder;
    receiving = false;
    if (!request->contentType.contains("boundary="))
        return reply(NoUsableForm);
    request->channel.readPartHead();
}

void FileReply::receivePart(const QByteArray &headers)
{
    const QString name = uploadName(headers);
    if (name.isEmpty() || name.contains(QChar::Null) || climbsOut(name))
        return reply(NoUsableForm);

    file.setFileName(uploadFolder + QLatin1Char('/') + name);
    if (file.exists())
        return reply(NameExists);
    // New only: an upload never overwrites, not even a file made a moment ago.
    if (!file.open(QIODevice::WriteOnly | QIODevice::NewOnly | QIODevice::Unbuffered))
        return reply(OpenFailed);

    receiving = true;
    request->contentLength -= headers.size();
    const QByteArray key("boundary=");
    const QByteArray &type = request->contentType;
    const QByteArray boundary = type.mid(int(type.indexOf(key) + key.size()));
    request->channel.saveFile(&file, "\r\n--" + boundary, request->contentLength);
}

void FileReply::reply(int result)
{
    finishUpload(result);
    // Nothing is answered to a plain upload; its end closes the connection.
    request->channel.setKeepAlive(false);
    request->channel.end();
}

void FileReply::finishUpload(int result)
{
    file.close();
    const bool whole = result == Saved || result == NameExists;
    if (receiving && !whole)
        file.remove();
    receiving = false;
}
