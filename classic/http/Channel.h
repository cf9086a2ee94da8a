#pragma once

#include "classic/http/BodyIntake.h"
#include "classic/http/RequestReader.h"
#include "net/FileSender.h"
#include "server/Face.h"

#include <QByteArray>

class Socket;
class TrafficAccount;

/// The channel of one connection: joins what reads requests, writes replies, streams files out and
/// request bodies into files. Owned by its face, which is its user.
///
/// One request at a time: collecting a head, then its reply, then - on a kept-alive connection -
/// whatever nobody read of that request is dropped and the next head is collected.
class Channel
{
public:
    class User
    {
    public:
        User() = default;
        virtual ~User() = default;

        virtual void headReady() = 0; ///< a request head can be parsed
        virtual void headRestReady(bool whole) = 0; ///< see `readHeadRest`
        virtual void formReady(const QByteArray &form) = 0; ///< see `receive`
        virtual void partHeadReady(const QByteArray &lines) = 0; ///< the same
        virtual void uploadEnded(SaveResult result) = 0; ///< the same
        virtual void drained() = 0; ///< what waited to be sent fell below the mark
        virtual void replyEnded() = 0; ///< the reply is over, or its peer is gone

    private:
        Q_DISABLE_COPY(User)
    };

    /// All are borrowed and outlive the channel.
    Channel(Socket &peerSocket, TrafficAccount &traffic, BufferPool &heads, User &channelUser);

    /// Whose bytes it carries, and how.
    const Socket &connection() const { return socket; }

    /// Whether the connection serves another request after this one.
    bool isKeepAlive() const { return keepAlive; }
    void setKeepAlive(bool on) { keepAlive = on; }

    /// The request whose head was collected.
    RequestReader &request() { return reader; }
    const RequestReader &request() const { return reader; }

    /// Whether the file that was received last broke off.
    bool isBodyLost() const { return intake.result() == ReadFailed; }

    /// Whether the peer holds its body back and was not asked for it.
    bool isBodyHeldBack() const { return intake.isHeldBack(); }

    /// Reads the rest of a head that the buffer could not hold; `headRestReady` tells the end,
    /// perhaps before this call returns: false when it is too long or the peer is gone.
    void readHeadRest();

    /// Receives the body, or what is wanted of it, and reports it once through `formReady`,
    /// `partHeadReady` or `uploadEnded`, perhaps before this call returns. A form that breaks off
    /// is cut; the part's headers are empty when they are too long or the connection is lost; a
    /// file ends as `Saved`, `ReadFailed` or `WriteFailed`, a part also as `BoundaryMissing`.
    void receive(const BodyIntake::Wanted &what);

    /// Sends `bytes`; nothing once the traffic limit was reached. `last` ends the reply.
    void write(const QByteArray &bytes, bool last);

    /// Whether a responder that writes in pieces should pause until `drained`.
    bool isCongested() const;

    /// Streams `count` bytes of `file` from `offset` on and ends the reply. A file that ends
    /// early closes the connection, since the peer was told more.
    void sendFile(OpenDescriptor file, qint64 offset, qint64 count);

    /// Whether somebody will get an answer; clean up without one otherwise.
    bool canAnswer() const;

    /// Ends the reply: the connection is re-armed for the next request, or closed once the peer
    /// has taken the last bytes. Never calls into the next request, and does nothing when no
    /// reply is due.
    void end();

    /// Cuts the connection at once.
    void abort();

    // What the connection tells.
    void readable();
    void writable();
    void gone();

    Awaits awaits() const;
    void expire();

    /// The file that is on its way; its path is not known here.
    std::optional<FileTransfer> transfer() const;

private:
    enum class State {
        Collecting, ///< a request head
        ReadingHeadRest, ///< of a head that was cut
        Replying, ///< a responder is at work
        Streaming, ///< a file goes out
        Receiving, ///< a request body, or a part of one
        Settling, ///< between requests: the rest of the last one is dropped, its reply drains
        Lingering, ///< about to close, input is dropped for a while so that the reply arrives
        Closing, ///< the last bytes drain
        Gone
    };

    void takeInput();
    void collectHead();
    void collectHeadRest();
    void continueReceiving();
    void tellReceived();
    void tellCutOff();
    void continueStreaming();
    void lookFurther();
    void settle();
    void rearm();
    void close();
    void linger();
    void closeSocket();
    void giveUp();

    Socket &socket;
    TrafficAccount &account;
    User &user;
    State state = State::Collecting;
    bool keepAlive = true;
    bool inTurn = false; ///< input is being taken
    bool nextWaits = false; ///< there may be another request to look at in this turn
    RequestReader reader;
    BodyIntake intake;
    FileSender sender;
};
