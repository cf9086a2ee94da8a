#include "classic/http/Channel.h"

#include "net/Socket.h"
#include "net/TrafficAccount.h"

#include <utility>

namespace {

constexpr int requestsInATurn = 16; ///< of one peer that sends many at once

} // namespace

Channel::Channel(Socket &peerSocket, TrafficAccount &traffic, BufferPool &heads, User &channelUser)
    : socket(peerSocket)
    , account(traffic)
    , user(channelUser)
    , reader(heads)
    , intake(reader, socket)
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
        collectHead();
        break;
    case State::ReadingHeadRest:
        collectHeadRest();
        break;
    case State::Receiving:
        continueReceiving();
        break;
    case State::Settling:
        settle();
        break;
    case State::Lingering:
        linger();
        break;
    case State::Replying:
    case State::Streaming:
    case State::Closing:
    case State::Gone:
        // Further bytes wait in the socket.
        break;
    }
}

void Channel::collectHead()
{
    const auto look = reader.collect(socket);
    if (look == RequestReader::Look::Ended)
        return closeSocket();
    if (look == RequestReader::Look::Incomplete)
        return;
    state = State::Replying;
    user.headReady();
}

void Channel::readHeadRest()
{
    state = State::ReadingHeadRest;
    collectHeadRest();
}

void Channel::collectHeadRest()
{
    const auto look = reader.collectRest(socket);
    if (look == RequestReader::Look::Incomplete)
        return;
    state = State::Replying;
    user.headRestReady(look == RequestReader::Look::Ready);
}

void Channel::receive(const BodyIntake::Wanted &what)
{
    intake.start(what);
    continueReceiving();
}

void Channel::continueReceiving()
{
    state = State::Receiving;
    const auto progress = intake.goOn();
    if (progress == BodyIntake::Progress::TurnOver)
        return socket.again();
    if (progress == BodyIntake::Progress::Waiting)
        return;
    state = State::Replying;
    tellReceived();
}

void Channel::tellReceived()
{
    switch (intake.target()) {
    case BodyIntake::Target::Form:
        return user.formReady(intake.takeBytes());
    case BodyIntake::Target::PartHead:
        return user.partHeadReady(intake.takeBytes());
    case BodyIntake::Target::File:
        return user.uploadEnded(intake.result());
    }
}

/// Tells the responder that the rest of an upload won't come.
void Channel::tellCutOff()
{
    // A form that breaks off ends with its connection.
    if (intake.target() == BodyIntake::Target::Form)
        return;
    intake.cutOff();
    tellReceived();
}

// Writing

void Channel::write(const QByteArray &bytes, bool last)
{
    if (state == State::Gone)
        return;
    socket.write(bytes, !last);
    if (last)
        end();
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
        keepAlive = false;
        break;
    case FileSender::Outcome::Sent:
        break;
    }
    sender.stop();
    state = State::Replying;
    end();
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
    if (!keepAlive || account.isBlocked())
        return close();
    state = State::Settling;
    if (reader.isAllRead() && !isCongested())
        rearm();
    lookFurther();
}

/// The next request may be here already. It must not be parsed inside the reply to this one.
void Channel::lookFurther()
{
    if (reader.isEmpty() && !socket.mayRead())
        return;
    nextWaits = inTurn;
    if (!inTurn)
        socket.again();
}

/// Goes on to the next request once the last one is dropped and its reply is on its way. A peer
/// that sends requests but takes no replies waits here. The rest of a cut head may have told that
/// nobody can say where the next request begins.
void Channel::settle()
{
    const auto look = reader.drop(socket);
    if (look == RequestReader::Look::Ended || (reader.isFramingUnknown() && !reader.isCut()))
        return close();
    if (look == RequestReader::Look::Incomplete || isCongested())
        return;
    rearm();
    lookFurther();
}

void Channel::rearm()
{
    reader.next();
    intake.next();
    state = State::Collecting;
}

void Channel::close()
{
    if (reader.isAllRead() && !reader.isFramingUnknown())
        return closeSocket();
    // Closing on unread input would destroy the reply on its way (RFC 9112, section 9.6).
    state = State::Lingering;
    socket.endWriting();
    socket.again();
}

/// Drops input while the reply is on its way to a peer that may still be sending, until there is
/// surely no more of it.
void Channel::linger()
{
    if (reader.drop(socket) != RequestReader::Look::Incomplete)
        closeSocket();
}

void Channel::closeSocket()
{
    state = State::Closing;
    socket.finish();
}

void Channel::abort()
{
    socket.abort();
}

/// The traffic limit was reached: an upload counts as cut off, and the connection closes.
void Channel::giveUp()
{
    if (state == State::Receiving) {
        state = State::Replying;
        tellCutOff();
    }
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
    const State last = std::exchange(state, State::Gone);
    if (last == State::Receiving)
        tellCutOff();
    else if (last == State::Streaming || last == State::Replying)
        user.replyEnded();
}

Awaits Channel::awaits() const
{
    switch (state) {
    case State::Collecting:
        return reader.isEmpty() ? Awaits::Request : Awaits::Head;
    case State::ReadingHeadRest:
        return Awaits::Head;
    case State::Replying:
        return socket.queued() > 0 ? Awaits::Body : Awaits::Nothing;
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
    if (state == State::Receiving && intake.target() == BodyIntake::Target::File)
        return FileTransfer{ true, reader.bytesLeft() };
    return {};
}

void Channel::expire()
{
    if (state == State::Lingering)
        closeSocket();
    else
        abort();
}
