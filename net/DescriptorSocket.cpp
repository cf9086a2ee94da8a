#include "net/DescriptorSocket.h"

#include <algorithm>
#include <array>
#include <cerrno>

#include <netinet/in.h>
#include <sys/epoll.h>
#include <sys/socket.h>
#include <sys/uio.h>
#include <unistd.h>

namespace {

constexpr qint64 maxHeld = qint64(64) * 1024; ///< bytes that are put together in one turn

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

bool DescriptorSocket::mustWait()
{
    return errno == EAGAIN || errno == EINTR;
}

DescriptorSocket::DescriptorSocket(FileDescriptor accepted, const QHostAddress &peerAddress,
                                   Poller *watcher, TrafficAccount *counter)
    : Socket(counter)
    , fd(std::move(accepted))
    , poller(watcher)
    , peer(peerAddress)
    , queue(watcher)
{
    // Most peers have sent something by now. Who is answered and gone in the first turn is never
    // watched: two calls less.
    poller->again(this);
}

DescriptorSocket::~DescriptorSocket()
{
    closeDescriptor();
    poller->forget(this);
}

void DescriptorSocket::ready(quint32 events)
{
    if (state == State::Broken)
        return close();
    handle(watched ? events : EPOLLIN);
    if (!watched)
        watch();
}

void DescriptorSocket::watch()
{
    if (!fd.isOpen())
        return;
    watched = poller->watch(fd.get(), this);
    if (!watched)
        breakOff();
}

void DescriptorSocket::handle(quint32 events)
{
    const bool dead = (events & (EPOLLERR | EPOLLHUP)) != 0;
    inputEnded = inputEnded || dead || (events & EPOLLRDHUP) != 0;
    inputWaits = inputWaits || inputEnded || (events & EPOLLIN) != 0;
    if (dead) {
        state = State::Broken;
        poller->again(this);
    }
    serving = true;
    if (!isEstablished() && state == State::Open)
        establish();
    if (isEstablished())
        serve(events);
    serving = false;
    if (queue.isHeld())
        flush();
}

void DescriptorSocket::serve(quint32 events)
{
    const bool asked = events == 0;
    if ((events & EPOLLOUT) != 0 || asked) {
        flush();
        if (state == State::Open)
            user->writable();
    }
    // The user may have closed it inside the call above, but it is not destroyed there.
    if ((mayReceive() || asked) && fd.isOpen() && state != State::Finishing)
        user->readable();
}

qint64 DescriptorSocket::takeNow(char *data, qint64 max)
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
qint64 DescriptorSocket::takeNow(Pipe &pipe, qint64 max)
{
    if (!inputWaits || !fd.isOpen())
        return fd.isOpen() ? 0 : -1;
    return taken(pipe.fill(fd.get(), max));
}

/// What the system told, as `read` tells it.
qint64 DescriptorSocket::taken(qint64 size)
{
    if (size > 0)
        return size;
    if (size == 0 || !mustWait() || inputEnded)
        return -1;
    inputWaits = false;
    return 0;
}

void DescriptorSocket::pass(const char *data, qint64 size, bool more)
{
    // Within a turn the head of a reply waits for its body: one call and one packet for both.
    if (more && serving && queued() == 0)
        queue.hold();
    if (queue.isHeld() && more && queued() + size <= maxHeld)
        queue.append(data, size);
    else
        sendOrQueue(data, size, more);
}

/// Sends these bytes behind what is queued, or queues what the system does not take.
void DescriptorSocket::sendOrQueue(const char *data, qint64 size, bool more)
{
    // Who waits for the peer already is told when it took something.
    const bool waits = queued() > 0 && !queue.isHeld();
    queue.release();
    const qint64 taken = waits ? 0 : sendNow(data, size, more);
    queue.append(data + taken, size - taken);
}

/// Offers the system what is queued and then these bytes, with one call. Gives how many of these
/// it took.
qint64 DescriptorSocket::sendNow(const char *data, qint64 size, bool more)
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

void DescriptorSocket::flush(bool more)
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

void DescriptorSocket::endWriting()
{
    if (state != State::Open)
        return;
    takeLeave();
    state = State::WritingEnded;
    flush();
}

void DescriptorSocket::finish()
{
    if (state != State::Open && state != State::WritingEnded)
        return;
    takeLeave();
    if (queued() == 0)
        return abort();
    state = State::Finishing;
}

void DescriptorSocket::abort()
{
    if (state == State::Closed)
        return;
    // The peer sees the end now; the user hears of it in a turn of its own.
    closeDescriptor();
    breakOff();
}

void DescriptorSocket::closeDescriptor()
{
    queue.clear();
    if (!fd.isOpen())
        return;
    if (watched)
        poller->forget(fd.get(), this);
    else
        poller->forget(this);
    fd.reset();
}

void DescriptorSocket::breakOff()
{
    state = State::Broken;
    poller->again(this);
}

void DescriptorSocket::close()
{
    if (state == State::Closed)
        return;
    closeDescriptor();
    state = State::Closed;
    user->gone();
}

QHostAddress DescriptorSocket::localAddress() const
{
    return localEnd(fd.get()).address;
}

quint16 DescriptorSocket::localPort() const
{
    return localEnd(fd.get()).port;
}
