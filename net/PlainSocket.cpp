#include "net/PlainSocket.h"

#include <algorithm>
#include <array>
#include <cerrno>

#include <netinet/in.h>
#include <sys/epoll.h>
#include <sys/sendfile.h>
#include <sys/socket.h>
#include <sys/uio.h>
#include <unistd.h>

namespace {

constexpr qint64 maxHeld = qint64(64) * 1024; ///< bytes that are put together in one turn
constexpr qint64 smallFile = qint64(16) * 1024; ///< bytes; copying them costs less than a call

bool mustWait()
{
    return errno == EAGAIN || errno == EINTR;
}

struct LocalEnd
{
    QHostAddress address;
    quint16 port = 0;
};

LocalEnd localEnd(int fd)
{
    sockaddr_storage storage = {};
    socklen_t size = sizeof storage;
    auto *address = reinterpret_cast<sockaddr *>(&storage);
    if (::getsockname(fd, address, &size) != 0)
        return {};
    LocalEnd end;
    end.address.setAddress(address);
    end.port =
        ntohs(storage.ss_family == AF_INET6 ? reinterpret_cast<sockaddr_in6 *>(&storage)->sin6_port
                                            : reinterpret_cast<sockaddr_in *>(&storage)->sin_port);
    return end;
}

} // namespace

PlainSocket::PlainSocket(FileDescriptor accepted, const QHostAddress &peerAddress, Poller *watcher,
                         TrafficAccount *counter)
    : Socket(counter)
    , fd(std::move(accepted))
    , poller(watcher)
    , peer(peerAddress)
    , queue(watcher)
{
    if (!poller->watch(fd.get(), this))
        breakOff();
}

PlainSocket::~PlainSocket()
{
    closeDescriptor();
    poller->forget(this);
}

void PlainSocket::ready(quint32 events)
{
    if (state == State::Broken)
        return close();
    const bool dead = (events & (EPOLLERR | EPOLLHUP)) != 0;
    inputEnded = inputEnded || dead || (events & EPOLLRDHUP) != 0;
    inputWaits = inputWaits || inputEnded || (events & EPOLLIN) != 0;
    if (dead) {
        state = State::Broken;
        poller->again(this);
    }
    serving = true;
    serve(events);
    serving = false;
    if (queue.isHeld())
        flush();
}

void PlainSocket::serve(quint32 events)
{
    const bool asked = events == 0;
    if ((events & EPOLLOUT) != 0 || asked) {
        flush();
        if (state == State::Open)
            user->writable();
    }
    // The user may have closed it inside the call above, but it is not destroyed there.
    if ((inputWaits || asked) && fd.isOpen() && state != State::Finishing)
        user->readable();
}

qint64 PlainSocket::receive(char *data, qint64 max)
{
    if (!inputWaits || !fd.isOpen())
        return fd.isOpen() ? 0 : -1;
    const qint64 size = taken(::recv(fd.get(), data, size_t(max), 0));
    // Less than there was room for: that was all, unless the end is behind it.
    if (size > 0 && size < max && !inputEnded)
        inputWaits = false;
    return size;
}

/// How much a pipe takes has reasons of its own: only the system tells that this was all.
qint64 PlainSocket::receiveInto(Pipe &pipe, qint64 max)
{
    if (!inputWaits || !fd.isOpen())
        return fd.isOpen() ? 0 : -1;
    return taken(pipe.fill(fd.get(), max));
}

/// What the system told, as `read` tells it.
qint64 PlainSocket::taken(qint64 size)
{
    if (size > 0)
        return size;
    if (size == 0 || !mustWait() || inputEnded)
        return -1;
    inputWaits = false;
    return 0;
}

bool PlainSocket::send(const QByteArray &bytes, bool more)
{
    if (!canSend())
        return false;
    // Within a turn the head of a reply waits for its body: one call and one packet for both.
    if (more && serving && queued() == 0)
        queue.hold();
    if (queue.isHeld() && more && queued() + bytes.size() <= maxHeld)
        queue.append(bytes.constData(), bytes.size());
    else
        sendOrQueue(bytes.constData(), bytes.size(), more);
    return canSend();
}

/// Sends these bytes behind what is queued, or queues what the system does not take.
void PlainSocket::sendOrQueue(const char *data, qint64 size, bool more)
{
    // Who waits for the peer already is told when it took something.
    const bool waits = queued() > 0 && !queue.isHeld();
    queue.release();
    const qint64 taken = waits ? 0 : sendNow(data, size, more);
    queue.append(data + taken, size - taken);
}

/// Offers the system what is queued and then these bytes, with one call. Gives how many of these
/// it took.
qint64 PlainSocket::sendNow(const char *data, qint64 size, bool more)
{
    const qint64 first = queued();
    std::array<iovec, 2> pieces{ { { const_cast<char *>(queue.data()), size_t(first) },
                                   { const_cast<char *>(data), size_t(size) } } };
    msghdr message = {};
    message.msg_iov = pieces.data();
    message.msg_iovlen = pieces.size();
    const int flags = MSG_DONTWAIT | MSG_NOSIGNAL | (more ? MSG_MORE : 0);
    const qint64 taken = ::sendmsg(fd.get(), &message, flags);
    if (taken < 0 && !mustWait())
        breakOff();
    queue.remove(std::clamp<qint64>(taken, 0, first));
    return std::max<qint64>(0, taken - first);
}

void PlainSocket::flush(bool more)
{
    queue.release();
    if (queued() > 0)
        sendNow(nullptr, 0, more);
    if (queued() > 0)
        return;
    if (state == State::WritingEnded)
        ::shutdown(fd.get(), SHUT_WR);
    else if (state == State::Finishing)
        close();
}

qint64 PlainSocket::send(int file, qint64 offset, qint64 count)
{
    if (!canSend())
        return -1;
    if (queue.isHeld() && count <= smallFile)
        return sendSmall(file, offset, count);
    if (queue.isHeld())
        flush(true);
    if (queued() > 0)
        return 0;
    off_t position = offset;
    const qint64 taken = ::sendfile(fd.get(), file, &position, size_t(count));
    if (taken > 0)
        return taken;
    return taken < 0 && mustWait() ? 0 : -1;
}

/// Together with the head that waits for it.
qint64 PlainSocket::sendSmall(int file, qint64 offset, qint64 count)
{
    std::array<char, smallFile> content;
    const qint64 size = ::pread(file, content.data(), size_t(count), offset);
    sendOrQueue(content.data(), std::max<qint64>(0, size), false);
    return size > 0 ? size : -1;
}

void PlainSocket::endWriting()
{
    if (state != State::Open)
        return;
    state = State::WritingEnded;
    flush();
}

void PlainSocket::finish()
{
    if (state != State::Open && state != State::WritingEnded)
        return;
    if (queued() == 0)
        return abort();
    state = State::Finishing;
}

void PlainSocket::abort()
{
    if (state == State::Closed)
        return;
    // The peer sees the end now; the user hears of it in a turn of its own.
    closeDescriptor();
    breakOff();
}

void PlainSocket::closeDescriptor()
{
    queue.clear();
    if (!fd.isOpen())
        return;
    poller->forget(fd.get(), this);
    fd.reset();
}

void PlainSocket::breakOff()
{
    state = State::Broken;
    poller->again(this);
}

void PlainSocket::close()
{
    if (state == State::Closed)
        return;
    closeDescriptor();
    state = State::Closed;
    user->gone();
}

QHostAddress PlainSocket::localAddress() const
{
    return localEnd(fd.get()).address;
}

quint16 PlainSocket::localPort() const
{
    return localEnd(fd.get()).port;
}
