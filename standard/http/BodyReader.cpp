#include "standard/http/BodyReader.h"

#include "standard/http/Input.h"
#include "standard/http/Request.h"

#include <algorithm>

namespace standard {

namespace {

constexpr int lookAhead = 4 * 1024; ///< bytes, for the lines between chunks

} // namespace

BodyReader::BodyReader(const Framing &framing)
    : chunked(framing.chunked)
    , left(framing.contentLength)
{
}

qint64 BodyReader::read(Input &input, char *data, qint64 max)
{
    if (isAtEnd())
        return 0;
    if (chunked)
        return readChunks(input, data, max);
    return passed(input.read(data, std::min(max, left)));
}

Pipe *BodyReader::pipe(const Input &input) const
{
    return chunked || left == 0 ? nullptr : input.pipe();
}

qint64 BodyReader::read(Input &input, Pipe &pipe)
{
    return passed(input.read(pipe, left));
}

qint64 BodyReader::passed(qint64 size)
{
    left -= std::max<qint64>(size, 0);
    return size;
}

/// Never takes from the socket what may belong to the next request, unless into the buffer.
qint64 BodyReader::readChunks(Input &input, char *data, qint64 max)
{
    for (;;) {
        if (chunks.contentLeft() > 0 && input.buffered().isEmpty()) {
            const qint64 size = input.read(data, std::min(max, chunks.contentLeft()));
            if (size > 0)
                chunks.passContent(size);
            return size;
        }
        if (input.buffered().isEmpty()) {
            const qint64 size = input.fill(lookAhead);
            if (size <= 0)
                return size;
        }
        const QByteArray &ahead = input.buffered();
        const ChunkDecoder::Step step = chunks.decode(ahead.constData(), ahead.size(), data, max);
        input.take(step.used);
        if (chunks.isBad())
            return -1;
        if (step.content > 0 || chunks.isAtEnd())
            return step.content;
    }
}

} // namespace standard
