#include "standard/http/RequestBody.h"

#include "net/Socket.h"
#include "standard/http/Input.h"
#include "standard/http/Request.h"

#include <array>
#include <utility>

namespace standard {

namespace {

constexpr qint64 fedAtOnce = qint64(256) * 1024;
constexpr qint64 droppedAtOnce = qint64(16) * 1024;
constexpr int readsInATurn = 16;
// Programs that log in only when asked send the whole body before they look at the 401, and one
// desktop takes a connection that ends meanwhile for broken.
constexpr qint64 maxDropped = qint64(64) * 1024 * 1024;

} // namespace

RequestBody::RequestBody(Socket &peerSocket, Input &peerInput)
    : socket(peerSocket)
    , input(peerInput)
{
}

void RequestBody::begin(const Framing &framing)
{
    reader = BodyReader(framing);
    expectsContinue = framing.expectsContinue;
    dropped = 0;
}

bool RequestBody::isHeldBack() const
{
    return expectsContinue && input.buffered().isEmpty();
}

bool RequestBody::isDroppable() const
{
    return !reader.isBad() && reader.bytesLeft() <= maxDropped;
}

void RequestBody::startFeeding(BodySink target, qint64 most)
{
    sink = std::move(target);
    sinkRoom = most;
    if (reader.bytesLeft() > most)
        return;
    if (isHeldBack())
        socket.write("HTTP/1.1 100 Continue\r\n\r\n", false);
    expectsContinue = false;
}

std::optional<BodyEnd> RequestBody::feed()
{
    if (reader.bytesLeft() > sinkRoom)
        return BodyEnd::TooLarge;
    for (int i = 0; !isSinkBusy() && !reader.isAtEnd(); ++i) {
        if (i == readsInATurn) {
            socket.again();
            return {};
        }
        const Fed fed = feedPiece();
        if (fed.size < 0)
            return reader.isBad() ? BodyEnd::Bad : BodyEnd::Lost;
        if (fed.size == 0 && !reader.isAtEnd())
            return {};
        if (sinkRoom < 0)
            return BodyEnd::TooLarge;
        if (!fed.isTaken)
            return BodyEnd::SinkFailed;
    }
    if (isSinkBusy())
        return {};
    return BodyEnd::Whole;
}

/// What is more than the sink has room for is not handed over.
RequestBody::Fed RequestBody::feedPiece()
{
    if (Pipe *const pipe = sink.piped ? reader.pipe(input) : nullptr) {
        const qint64 size = reader.read(input, *pipe);
        return { size, !hasRoomFor(size) || sink.piped(*pipe) };
    }
    std::array<char, fedAtOnce> piece;
    const qint64 size = reader.read(input, piece.data(), fedAtOnce);
    return { size, !hasRoomFor(size) || sink.bytes(piece.data(), size) };
}

bool RequestBody::hasRoomFor(qint64 size)
{
    if (size <= 0)
        return false;
    sinkRoom -= size;
    return sinkRoom >= 0;
}

bool RequestBody::drop()
{
    std::array<char, droppedAtOnce> piece;
    for (int i = 0; !reader.isAtEnd(); ++i) {
        if (i == readsInATurn) {
            socket.again();
            return true;
        }
        const qint64 size = reader.read(input, piece.data(), droppedAtOnce);
        dropped += qMax<qint64>(size, 0);
        if (size < 0 || dropped > maxDropped)
            return false;
        if (size == 0)
            return true;
    }
    return true;
}

} // namespace standard
