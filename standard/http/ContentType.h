#pragma once

#include <QByteArray>

namespace standard {

/// The media type of a file by its name; "application/octet-stream" when nothing is known. The
/// first call reads the types that the system knows.
QByteArray contentType(const QByteArray &fileName);

/// The same with the charset, where the file open at `descriptor` is a text in UTF-8.
QByteArray contentType(const QByteArray &fileName, int descriptor);

/// Content-Disposition of a file (RFC 6266): what browsers show by themselves is shown, the rest is
/// saved.
QByteArray disposition(const QByteArray &fileName, const QByteArray &type);

} // namespace standard
