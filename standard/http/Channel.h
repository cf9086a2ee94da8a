#pragma once

#include "files/FileDescriptor.h"
#include "net/FileSender.h"
#include "server/Face.h"
#include "standard/http/HeadCollector.h"
#include "standard/http/Input.h"
#include "standard/http/Request.h"
#include "standard/http/RequestBody.h"

#include <QByteArray>

class Socket;
class TrafficAccount;

namespace standard {

/// The requests and replies of one connection, one after another, as bytes: collects a head, reads
/// its body when somebody wants it, sends what it is given, and drops what nobody read before it
/// goes on. Owned by its face, which is its user.
class Channel
{
public:
    class User
    {
    public:
        User() = default;
        virtual ~User() = default;

        virtual void requestReady(Request request) = 0;
        virtual void requestBad(Status status) = 0; ///< to be answered; the connection ends then
        virtual void bodyEnded(BodyEnd end) = 0; ///< see `readBody`
        virtual void drained() = 0; ///< more can be written
        virtual void fileSent() = 0; ///< see `sendFile`
        virtual void peerStopped() = 0; ///< sending, and most likely left, before its reply began
        virtual void replyEnded() = 0; ///< the reply is over, or its peer is gone

    private:
        Q_DISABLE_COPY(User)
    };

    /// All are borrowed and outlive the channel.
    Channel(Socket &peerSocket, TrafficAccount &traffic, User &channelUser);

    const Socket &connection() const { return socket; }

    /// Feeds the body of the request, at most `most` bytes, to `target`, and tells the end once
    /// through `bodyEnded`, perhaps before this call returns. The peer is asked for its body now,
    /// where it waits for that.
    void readBody(BodySink target, qint64 most);

    /// The target that was busy takes more of it, in a later turn.
    void goOnReading();

    /// Decides whether the connection goes on after the reply, whose head is about to be written.
    bool settlePersistence();

    /// The connection ends with this reply.
    void closeAfterReply() { keepAlive = false; }

    /// Sends or queues `bytes`; `more` tells that further ones follow at once.
    void write(const QByteArray &bytes, bool more);

    /// Whether who writes in pieces should pause until `drained`.
    bool isCongested() const;

    /// Sends `count` bytes of `file` from `offset` on, then tells `fileSent`, perhaps before this
    /// call returns. A file that ends early ends the connection, as the peer was told more.
    void sendFile(OpenDescriptor file, qint64 offset, qint64 count);

    /// Ends the reply. The next request is never looked at before this call returns.
    void end();

    /// Whether somebody will get an answer.
    bool canAnswer() const;

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
        Replying, ///< somebody is at work on the answer
        ReadingBody, ///< for the same
        Streaming, ///< a file goes out
        Settling, ///< between requests: the rest of the last one is dropped, its reply drains
        Lingering, ///< about to close, input is dropped for a while so that the reply arrives
        Closing, ///< the last bytes drain
        Gone
    };

    void takeInput();
    void collectHead();
    void refuse(Status status);
    void continueBody();
    void finishBody(BodyEnd end);
    void continueStreaming();
    void settle();
    void rearm();
    void lookFurther();
    void close();
    void linger();
    void closeSocket();
    void giveUp();

    Socket &socket;
    TrafficAccount &account;
    User &user;
    State state = State::Collecting;
    Input input;
    HeadCollector head;
    RequestBody body;
    bool keepAlive = true;
    bool maySendMore = false; ///< of a request that nobody can take apart
    bool inTurn = false; ///< input is being taken
    bool nextWaits = false; ///< there may be another request to look at in this turn
    FileSender sender;
};

} // namespace standard
