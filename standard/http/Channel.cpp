#include "standard/http/Channel.h"

#include "net/Socket.h"
#include "net/TrafficAccount.h"

#include <algorithm>
#include <array>
#include <utility>

namespace standard {

namespace {

constexpr int lingersInATurn = 16;
constexpr qint64 lingeredAtOnce = qint64(16) * 1024;
constexpr int requestsInATurn = 16; ///< of one peer that sends many at once

} // namespace

Channel::Channel(Socket &peerSocket, TrafficAccount &traffic, User &channelUser)
    : socket(peerSocket)
    , account(traffic)
    , user(channelUser)
    , input(peerSocket)
    , body(peerSocket, input)
{
}

// Reading

void Channel::readable()
{
    inTurn = true;
    for (int i = 0; i < requestsInATurn; ++i) {
        nextWaits = false;
        takeInput();
        if (!nextWaits)
            break;
    }
    inTurn = false;
    if (account.isBlocked())
        giveUp();
    else if (nextWaits)
        socket.again();
}

void Channel::takeInput()
{
    switch (state) {
    case State::Collecting:
        return collectHead();
    case State::ReadingBody:
        return continueBody();
    case State::Settling:
        return settle();
    case State::Lingering:
        return linger();
    case State::Replying:
        if (socket.hasStopped())
            user.peerStopped();
        return;
    case State::Streaming:
    case State::Closing:
    case State::Gone:
        return; // Further bytes wait in the socket.
    }
}

void Channel::collectHead()
{
    switch (head.collect(input)) {
    case HeadCollector::Look::Incomplete:
        return;
    case HeadCollector::Look::Bad:
        return refuse(Status::BadRequest);
    case HeadCollector::Look::Ended:
        return closeSocket();
    case HeadCollector::Look::TooLong:
        return refuse(Status::HeadTooLarge);
    case HeadCollector::Look::Ready:
        break;
    }
    std::variant<Request, Status> parsed = parseHead(head.take(input));
    if (const auto *status = std::get_if<Status>(&parsed))
        return refuse(*status);
    auto &request = std::get<Request>(parsed);
    state = State::Replying;
    keepAlive = request.keepAlive;
    body.begin(request.framing);
    user.requestReady(std::move(request));
    if (state == State::Replying && socket.hasStopped())
        user.peerStopped();
}

/// Nobody can say where the next request would begin, or how much of this one is on its way.
void Channel::refuse(Status status)
{
    state = State::Replying;
    keepAlive = false;
    maySendMore = true;
    user.requestBad(status);
}

void Channel::readBody(BodySink target, qint64 most)
{
    state = State::ReadingBody;
    body.startFeeding(std::move(target), most);
    continueBody();
}

void Channel::goOnReading()
{
    socket.again();
}

void Channel::continueBody()
{
    if (const std::optional<BodyEnd> end = body.feed())
        finishBody(*end);
}

void Channel::finishBody(BodyEnd end)
{
    body.stopFeeding();
    state = State::Replying;
    user.bodyEnded(end);
}

// Writing

/// A body that is held back may come or not, so nobody could tell it from the next request.
bool Channel::settlePersistence()
{
    if (body.isHeldBack() || !body.isDroppable() || account.isBlocked())
        keepAlive = false;
    return keepAlive;
}

void Channel::write(const QByteArray &bytes, bool more)
{
    if (state != State::Gone)
        socket.write(bytes, more);
}

bool Channel::isCongested() const
{
    return socket.isCongested();
}

void Channel::sendFile(OpenDescriptor file, qint64 offset, qint64 count)
{
    sender.start(std::move(file), offset, count);
    state = State::Streaming;
    continueStreaming();
}

void Channel::continueStreaming()
{
    switch (sender.send(socket)) {
    case FileSender::Outcome::Waiting:
        return;
    case FileSender::Outcome::Helped:
        return socket.again();
    case FileSender::Outcome::Failed:
        // The peer was told more than it got: only the end of the connection can end this reply.
        sender.stop();
        state = State::Replying;
        keepAlive = false;
        return end();
    case FileSender::Outcome::Sent:
        sender.stop();
        state = State::Replying;
        return user.fileSent();
    }
}

void Channel::writable()
{
    if (state == State::Streaming)
        return continueStreaming();
    if (isCongested())
        return;
    if (state == State::Settling)
        settle();
    else if (state == State::Replying)
        user.drained();
}

// Ending

void Channel::end()
{
    if (state != State::Replying)
        return;
    user.replyEnded();
    if (!settlePersistence())
        return close();
    state = State::Settling;
    if (body.isAtEnd() && !isCongested())
        rearm();
    lookFurther();
}

/// The next request may be here already. It must not be parsed inside the reply to this one.
void Channel::lookFurther()
{
    nextWaits = inTurn && input.mayRead();
    // Whoever owns the channel lets go of the request in a turn, even if no other one follows.
    if (!inTurn)
        socket.again();
}

/// Goes on to the next request once the last one is dropped and its reply is on its way. A peer
/// that sends requests but takes no replies waits here.
void Channel::settle()
{
    if (!body.drop())
        return close();
    if (!body.isAtEnd() || isCongested())
        return;
    rearm();
    lookFurther();
}

void Channel::rearm()
{
    body.forget();
    state = State::Collecting;
}

void Channel::close()
{
    if (!body.mayCome() && !maySendMore && !input.mayRead())
        return closeSocket();
    // Closing on unread input would destroy the reply on its way (RFC 9112, section 9.6).
    state = State::Lingering;
    socket.endWriting();
    socket.again();
}

/// Drops input while the reply is on its way to a peer that may still be sending, for a while or
/// until it stops.
void Channel::linger()
{
    std::array<char, lingeredAtOnce> piece;
    for (int i = 0; i < lingersInATurn; ++i) {
        const qint64 size = input.read(piece.data(), lingeredAtOnce);
        if (size < 0)
            return closeSocket();
        if (size == 0)
            return;
    }
    socket.again();
}

void Channel::closeSocket()
{
    state = State::Closing;
    socket.finish();
}

/// The traffic limit was reached: a body counts as cut off, and the connection closes.
void Channel::giveUp()
{
    if (state == State::ReadingBody)
        finishBody(BodyEnd::Lost);
    sender.stop();
    if (state == State::Replying || state == State::Streaming)
        user.replyEnded();
    if (state != State::Closing && state != State::Gone)
        closeSocket();
}

bool Channel::canAnswer() const
{
    return state != State::Gone && socket.canSend() && !account.isBlocked();
}

void Channel::gone()
{
    sender.stop();
    body.stopFeeding();
    const State last = std::exchange(state, State::Gone);
    if (last == State::ReadingBody)
        user.bodyEnded(BodyEnd::Lost);
    if (last == State::ReadingBody || last == State::Streaming || last == State::Replying)
        user.replyEnded();
}

Awaits Channel::awaits() const
{
    switch (state) {
    case State::Collecting:
        return input.buffered().isEmpty() ? Awaits::Request : Awaits::Head;
    case State::Replying:
        return socket.queued() > 0 ? Awaits::Body : Awaits::Nothing;
    case State::ReadingBody:
        return body.isSinkBusy() ? Awaits::Nothing : Awaits::Body;
    case State::Closing:
        return Awaits::Drain;
    case State::Lingering:
        return Awaits::Linger;
    case State::Gone:
        return Awaits::Nothing;
    default:
        return Awaits::Body;
    }
}

std::optional<FileTransfer> Channel::transfer() const
{
    if (state == State::Streaming)
        return FileTransfer{ false, sender.bytesLeft() };
    if (state == State::ReadingBody)
        return FileTransfer{ true, body.bytesLeft() };
    return {};
}

void Channel::expire()
{
    if (state == State::Lingering)
        closeSocket();
    else
        socket.abort();
}

} // namespace standard
