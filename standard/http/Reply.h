#pragma once

#include "standard/http/Request.h"
#include "standard/http/Status.h"

#include <QByteArray>

#include <optional>

namespace standard {

/// How the end of a reply's body is told.
enum class Ending {
    Length, ///< by its length
    Chunks,
    Close, ///< of the connection: HTTP/1.0 knows nothing else
    NoBody ///< and no length either: 204, 304
};

/// The head of a reply.
struct ReplyHead
{
    Status status = Status::Ok;
    Fields fields; ///< its own ones, as the handler gives them
    QByteArray lines; ///< and some that are ready to be sent
    Ending ending = Ending::Length;
    qint64 length = 0; ///< bytes, when it ends by that
    bool keepAlive = true;
    bool tellsKeepAlive = false; ///< to a peer that would not expect it (HTTP/1.0)
};

/// The lines of these fields. Line breaks in values become blanks.
QByteArray fieldLines(const Fields &fields);

/// The status line and all fields, with what every reply has, and the blank line.
QByteArray headBlock(const ReplyHead &head);

/// A piece of a body as a chunk. `bytes` are not empty: that would end the body.
QByteArray chunk(const QByteArray &bytes);

constexpr auto lastChunk = "0\r\n\r\n";

} // namespace standard
