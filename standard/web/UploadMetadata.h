#pragma once

#include <QByteArray>
#include <QtGlobal>

#include <optional>

namespace standard {

/// What Upload-Metadata tells of the file that is to be uploaded.
struct UploadMetadata
{
    QByteArray path; ///< below a folder, of whole segments that name something
    std::optional<qint64> modified = {}; ///< seconds since 1970-01-01 UTC
};

/// Whether `path` may be one of a file below a folder: it doesn't climb, is not too deep, and each
/// of its segments names something.
bool isFilePath(const QByteArray &path);

/// Reads the field: pairs of a key and a value in base64, between commas. `relativePath`, else
/// `filename`, is the path; `mtime` the time; others are left alone. None when it is none of that,
/// or the path climbs, is too deep or names no file.
std::optional<UploadMetadata> parseUploadMetadata(const QByteArray &field);

} // namespace standard
