#pragma once

#include "files/PartialUpload.h"
#include "standard/http/Exchange.h"

#include <QByteArray>

#include <optional>

namespace standard {

/// Below it a request names a folder of the share to upload into, or behind that the id of an
/// upload: tus 1.0 of tus.io.
constexpr auto tusPath = ".quillon/tus";

constexpr auto tusVersion = "1.0.0";

/// What an upload and its folder are called, as the path of a request has it.
struct UploadName
{
    QByteArray folder; ///< a path of the share
    QByteArray id; ///< anything, when the request names no upload

    explicit UploadName(const Exchange &exchange);
};

/// The path of a URL by which its visitor goes on with an upload into `folder`, a path of the
/// share.
QByteArray uploadUrl(const Exchange &exchange, const QByteArray &folder, const QByteArray &id);

/// Whether the request speaks our version of the protocol; else it is refused.
bool speaksTus(Exchange &exchange);

/// The reply to such a request.
void replyTus(Exchange &exchange, Status status, Fields fields = {});
void refuseTus(Exchange &exchange, Status status, const QByteArray &text = {}, Fields fields = {});

/// "Upload-Offset", and "Upload-Expires" of what is not whole.
Field offsetField(qint64 offset);
Fields progressFields(const PartialUpload &upload, qint64 offset);

/// The upload of that id in `folder`, a path of the share. None when there is none for the visitor;
/// one that was given up is removed then.
std::optional<PartialUpload> findUpload(const Exchange &exchange, const QByteArray &folder,
                                        const QByteArray &id);

} // namespace standard
