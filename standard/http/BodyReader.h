#pragma once

#include "standard/http/ChunkDecoder.h"

#include <QtGlobal>

class Pipe;

namespace standard {

class Input;
struct Framing;

/// Reads the body of one request as its head frames it. A value for each request; the default one
/// is at its end.
class BodyReader
{
public:
    BodyReader() = default;
    explicit BodyReader(const Framing &framing);

    /// The next bytes of content, as `Socket::read`: 0 when there are none yet and at the end, -1
    /// when the rest won't come or can't be told from what follows.
    qint64 read(Input &input, char *data, qint64 max);

    /// By which the next bytes can go into a file unseen; null where they have to be read.
    Pipe *pipe(const Input &input) const;

    /// As above, into that pipe.
    qint64 read(Input &input, Pipe &pipe);

    bool isAtEnd() const { return chunked ? chunks.isAtEnd() : left == 0; }

    /// A chunked body is not as it should be.
    bool isBad() const { return chunks.isBad(); }

    /// Bytes that are still to come, when that is known; else -1.
    qint64 bytesLeft() const { return chunked ? -1 : left; }

private:
    qint64 passed(qint64 size);
    qint64 readChunks(Input &input, char *data, qint64 max);

    bool chunked = false;
    qint64 left = 0; ///< of a body that isn't chunked
    ChunkDecoder chunks;
};

} // namespace standard
