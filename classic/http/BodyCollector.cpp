#include "classic/http/BodyCollector.h"

#include "classic/http/RequestReader.h"

#include <algorithm>
#include <array>
#include <utility>

void BodyCollector::start(qint64 most)
{
    limit = most;
    bytes.clear();
}

bool BodyCollector::collectForm(RequestReader &reader, Socket &socket)
{
    std::array<char, RequestReader::bufferSize> piece;
    qint64 size = 0;
    while (room() > 0) {
        size = reader.readBody(socket, piece.data(),
                               std::min<qint64>(room(), RequestReader::bufferSize));
        if (size <= 0)
            break;
        bytes.append(piece.data(), int(size));
    }
    return room() <= 0 || size < 0 || reader.isAllRead();
}

bool BodyCollector::collectPartHead(RequestReader &reader, Socket &socket)
{
    char byte = 0;
    qint64 size = 0;
    // One byte at a time: what follows the blank line is the part's content.
    while (room() > 0 && (size = reader.readBody(socket, &byte, 1)) == 1) {
        bytes += byte;
        if (byte == '\n' && bytes.endsWith("\r\n\r\n"))
            return true;
    }
    if (size == 0 && room() > 0 && !reader.isAllRead())
        return false;
    bytes.clear();
    return true;
}

QByteArray BodyCollector::take()
{
    return std::exchange(bytes, {});
}
