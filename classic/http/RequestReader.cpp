#include "classic/http/RequestReader.h"

#include "net/Socket.h"

#include <algorithm>
#include <array>
#include <cstring>
#include <utility>

namespace {

constexpr int maxHeadRest = 64 * 1024; ///< bytes of a head behind its buffer
constexpr int longestRestLine = 8 * 1024; ///< a Destination of 255 folders fits
constexpr int droppedAtOnce = 64 * 1024;
constexpr int dropsInATurn = 64;

/// Header lines that change what a method does, or where its body ends.
constexpr std::array<const char *, 8> decisiveHeaders{
    "Content-Type:", "Depth:",     "Destination:", "If",
    "Origin:",       "Overwrite:", "Range:",       "Sec-Fetch-Site:",
};

bool isDecisive(const QByteArray &line)
{
    return std::any_of(decisiveHeaders.begin(), decisiveHeaders.end(), [&line](const char *name) {
        return qstrnicmp(line.constData(), name, qstrlen(name)) == 0;
    });
}

} // namespace

RequestReader::Look RequestReader::collect(Socket &socket)
{
    const qint64 size = fillBuffer(socket);
    if (fill == 0) {
        buffer.giveBack();
        return size < 0 ? Look::Ended : Look::Incomplete;
    }

    head = scanHead(filled());
    const bool ready = fill == bufferSize || size < 0 || canHandle(filled(), head, !lengthSeen);
    lengthSeen = head.end >= 0 && head.contentLength > 0;
    if (!ready)
        return Look::Incomplete;
    handOver();
    return Look::Ready;
}

/// Reads what there is. Gives what the last read gave.
qint64 RequestReader::fillBuffer(Socket &socket)
{
    buffer.borrow();
    qint64 size = 0;
    while (fill < bufferSize) {
        size = socket.read(buffer.data() + fill, qint64(bufferSize) - fill);
        if (size <= 0)
            break;
        fill += int(size);
    }
    return size;
}

void RequestReader::handOver()
{
    cut = head.end < 0;
    truncated = cut && fill < bufferSize;
    const qint64 headEnd = cut ? fill : head.end;
    requestEnd = int(qMin<qint64>(fill, headEnd + head.contentLength));
    bodyToCome = head.contentLength - (requestEnd - headEnd);
    if (cut)
        restLine = filled().mid(int(filled().lastIndexOf('\n')) + 1);
}

bool RequestReader::fitsBuffer() const
{
    return head.end >= 0 && head.end + head.contentLength <= bufferSize;
}

QByteArray RequestReader::readLine()
{
    const char *line = buffer.data() + readPos;
    const void *end = std::memchr(line, '\r', size_t(requestEnd - readPos));
    if (!end)
        return {};
    const auto size = int(static_cast<const char *>(end) - line);
    readPos = qMin(requestEnd, readPos + size + 2);
    return QByteArray::fromRawData(line, size);
}

QByteArray RequestReader::readBuffered(qint64 count)
{
    const auto size = int(std::clamp<qint64>(count, 0, requestEnd - readPos));
    const int start = std::exchange(readPos, readPos + size);
    return { buffer.data() + start, size };
}

RequestReader::Look RequestReader::collectRest(Socket &socket)
{
    const qint64 size = skipHeadRest(socket);
    if (!cut)
        return restLineCut ? Look::Ended : Look::Ready;
    return size < 0 || restSize > maxHeadRest ? Look::Ended : Look::Incomplete;
}

/// Reads what the buffer could not hold of a head. Gives what the last read gave.
qint64 RequestReader::skipHeadRest(Socket &socket)
{
    qint64 size = 0;
    while (cut && restSize <= maxHeadRest) {
        size = socket.read(buffer.data(), bufferSize);
        if (size <= 0)
            break;
        readPos = 0;
        fill = int(size);
        requestEnd = fill;
        restSize += size;
        while (cut && takeRestLine()) { }
    }
    return size;
}

/// Takes one line of a cut head out of the buffer; false when it has not arrived whole. Its
/// Content-Length is needed to find the next request, although this one was answered without.
bool RequestReader::takeRestLine()
{
    const auto rest = QByteArray::fromRawData(buffer.data() + readPos, fill - readPos);
    const auto eol = rest.indexOf('\n');
    const auto size = eol < 0 ? rest.size() : eol;
    const auto kept = int(qMin<qint64>(size, longestRestLine - restLine.size()));
    restLine += rest.left(kept);
    restLineCut = restLineCut || (kept < size && isDecisive(restLine));
    if (eol < 0) {
        readPos = fill;
        return false;
    }
    readPos += int(eol) + 1;
    if (restLine.endsWith('\r'))
        restLine.chop(1);
    head.strayBreak = head.strayBreak || restLine.contains('\r');
    if (restLine.isEmpty())
        endHead();
    scanHeaderLine(restLine, head);
    if (isDecisive(restLine))
        keptLines.append(restLine);
    restLine.clear();
    return true;
}

void RequestReader::endHead()
{
    cut = false;
    requestEnd = int(qMin<qint64>(fill, readPos + head.contentLength));
    bodyToCome = head.contentLength - (requestEnd - readPos);
}

qint64 RequestReader::readBody(Socket &socket, char *data, qint64 max)
{
    if (cut) {
        const qint64 skipped = skipHeadRest(socket);
        if (cut)
            return restSize > maxHeadRest ? -1 : qMin<qint64>(skipped, 0);
    }
    if (const int buffered = requestEnd - readPos; buffered > 0) {
        const auto size = int(qMin<qint64>(max, buffered));
        std::memcpy(data, buffer.data() + readPos, size_t(size));
        readPos += size;
        return size;
    }
    if (bodyToCome == 0)
        return 0;
    const qint64 size = socket.read(data, qMin(max, bodyToCome));
    bodyToCome -= qMax<qint64>(size, 0);
    return size;
}

Pipe *RequestReader::pipe(Socket &socket) const
{
    return !cut && readPos == requestEnd && bodyToCome > 0 ? socket.pipe() : nullptr;
}

qint64 RequestReader::readBody(Socket &socket, Pipe &pipe, qint64 max)
{
    const qint64 size = socket.read(pipe, qMin(max, bodyToCome));
    bodyToCome -= qMax<qint64>(size, 0);
    return size;
}

RequestReader::Look RequestReader::drop(Socket &socket)
{
    std::array<char, droppedAtOnce> dropped;
    qint64 size = 0;
    for (int i = 0; i < dropsInATurn; ++i) {
        size = isFramingUnknown() && !cut ? socket.read(dropped.data(), droppedAtOnce)
                                          : readBody(socket, dropped.data(), droppedAtOnce);
        if (size <= 0)
            break;
    }
    if (size > 0)
        socket.again();
    if (size < 0)
        return Look::Ended;
    return isAllRead() && !isFramingUnknown() ? Look::Ready : Look::Incomplete;
}

void RequestReader::next()
{
    fill -= requestEnd;
    if (fill > 0)
        std::memmove(buffer.data(), buffer.data() + requestEnd, size_t(fill));
    else
        buffer.giveBack();
    requestEnd = 0;
    readPos = 0;
    head = {};
    lengthSeen = false;
    cut = false;
    truncated = false;
    restSize = 0;
    restLine.clear();
    restLineCut = false;
    keptLines.clear();
}
