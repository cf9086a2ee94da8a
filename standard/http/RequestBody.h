#pragma once

#include "standard/http/BodyReader.h"

#include <QtGlobal>

#include <functional>
#include <optional>

class Pipe;
class Socket;

namespace standard {

class Input;
struct Framing;

/// Who takes a body, some bytes after others; false when they could not be taken.
struct BodySink
{
    std::function<bool(const char *data, qint64 size)> bytes;
    std::function<bool(Pipe &pipe)> piped; ///< null for who has to see them all
    /// Whether to wait, with the end too, until `Channel::goOnReading`. Null for who never does.
    std::function<bool()> isBusy = {};
};

/// How reading a body ended.
enum class BodyEnd {
    Whole,
    TooLarge,
    SinkFailed, ///< the sink took no more
    Bad, ///< its framing is broken
    Lost ///< the peer stopped sending, or is gone
};

/// The body of one request after another: fed to whoever wants it as it arrives, or dropped. Takes
/// a bounded share of a turn of the event loop and has the socket tell when to go on.
class RequestBody
{
public:
    /// Both are borrowed and outlive it.
    RequestBody(Socket &peerSocket, Input &peerInput);

    /// Of the next request.
    void begin(const Framing &framing);

    /// Hands at most `most` bytes to `target` from now on, see `feed`. The peer is asked for its
    /// body now, where it waits for that (RFC 9110, section 10.1.1).
    void startFeeding(BodySink target, qint64 most);

    /// Hands over what has arrived. Gives the end when it is there.
    std::optional<BodyEnd> feed();

    /// Whether it is not the peer who is waited for.
    bool isSinkBusy() const { return sink.isBusy && sink.isBusy(); }

    void stopFeeding() { sink = {}; }

    /// Drops what has arrived. False when the rest won't come, or is more than anybody drops.
    bool drop();

    /// The request is over, and nobody asks for its body any more.
    void forget() { expectsContinue = false; }

    bool isAtEnd() const { return reader.isAtEnd(); }

    /// As `BodyReader::bytesLeft`.
    qint64 bytesLeft() const { return reader.bytesLeft(); }

    /// Whether the peer may send it, or the next request instead.
    bool isHeldBack() const;

    /// Whether what is left of it can be dropped, to go on behind it.
    bool isDroppable() const;

    /// Whether a peer may still be sending it.
    bool mayCome() const { return expectsContinue || !isAtEnd(); }

private:
    struct Fed
    {
        qint64 size; ///< bytes, or as `Socket::read`
        bool isTaken; ///< by the sink, if there are any and it has room
    };

    Fed feedPiece();
    bool hasRoomFor(qint64 size);

    Socket &socket;
    Input &input;
    BodyReader reader;
    bool expectsContinue = false; ///< the peer was not yet asked for it
    BodySink sink;
    qint64 sinkRoom = 0;
    qint64 dropped = 0; ///< bytes that nobody read
};

} // namespace standard
