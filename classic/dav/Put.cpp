#include "classic/dav/Put.h"

#include "classic/dav/UploadFile.h"
#include "config/Profile.h"

namespace {

constexpr auto replacingClient = "mc";
constexpr auto probingClient = "ezdavplugin";
constexpr int probeSize = 1; ///< bytes

} // namespace

Put::Put(Request *httpRequest)
    : Dav(httpRequest, name)
{
}

Put::~Put() = default;

void Put::reply(const QFileInfo &shared, Profile *profile)
{
    if (!profile->allowsUpload())
        return sendHeader("423 Read only", 0);

    const QString path = pathIn(shared, request->path);
    const bool exists = QFileInfo::exists(path);
    if (exists && request->userAgent != replacingClient)
        return sendHeader(DavStatus::preconditionFailed, 0);
    if (isProbe())
        return sendHeader(DavStatus::created, 0);
    if (isLengthUnknown())
        return sendHeader("411 Length Required", 0);
    receive(path, exists);
}

/// A plug-in tries a share out by writing one byte, and expects no file of it.
bool Put::isProbe() const
{
    return request->contentLength == probeSize && request->userAgent == probingClient;
}

/// The head was too long for its buffer and the length lies behind the cut: an empty file would
/// pass for a stored one.
bool Put::isLengthUnknown() const
{
    const HeadScan &framing = request->channel.framing();
    return framing.end < 0 && !framing.lengthDeclared;
}

void Put::receive(const QString &path, bool exists)
{
    upload = std::make_unique<UploadFile>();
    const bool opened = !path.isEmpty() && (exists ? upload->replace(path) : upload->create(path));
    if (!opened) {
        upload.reset();
        return sendHeader(DavStatus::locked, 0);
    }
    awaitUpload();
    request->channel.saveFile(upload->device(), request->contentLength);
}

void Put::reply(int result)
{
    const char *status = DavStatus::created;
    if (result == OpenFailed || result == ReadFailed)
        status = "500 Network read error";
    else if (result == WriteFailed || !upload->keep())
        status = "507 Insufficient Storage";
    upload.reset();
    sendHeader(status, 0);
}
