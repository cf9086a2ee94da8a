#include "net/Listener.h"

#include "net/Log.h"

#include <cerrno>

#include <netinet/in.h>
#include <netinet/tcp.h>
#include <sys/socket.h>

namespace {

constexpr int pendingHandshakes = 512; ///< TCP connections that the system holds for us
// In ms. Ends a peer that acknowledges nothing, and one that acknowledges but makes no room for
// more: a player at rest, say, which asks again for the rest.
constexpr unsigned stalledFor = 60000;
constexpr int batch = 64; ///< clients accepted before others get their turn

bool isOutOfDescriptors(int error)
{
    return error == EMFILE || error == ENFILE || error == ENOBUFS || error == ENOMEM;
}

/// The address of this machine that `fd` listens on, or that its peer called.
QHostAddress reachedAddress(int fd)
{
    sockaddr_storage storage = {};
    socklen_t size = sizeof storage;
    auto *address = reinterpret_cast<sockaddr *>(&storage);
    return ::getsockname(fd, address, &size) == 0 ? QHostAddress(address) : QHostAddress();
}

} // namespace

Listener::Listener(Poller *watcher, Events listenerEvents)
    : poller(watcher)
    , events(std::move(listenerEvents))
{
}

Listener::~Listener()
{
    close();
}

bool Listener::listen(const QHostAddress &address, quint16 port)
{
    return server.listen(address, port) && watch();
}

bool Listener::adopt(FileDescriptor opened)
{
    if (!server.setSocketDescriptor(opened.get()))
        return false;
    opened.release(); // closed with the server now
    return watch();
}

bool Listener::watch()
{
    server.pauseAccepting();
    const auto fd = int(server.socketDescriptor());
    // The toolkit asks for 50, which a crowd of new clients fills within a moment.
    ::listen(fd, pendingHandshakes);
    // The system hands it on to every accepted descriptor: replies are put together here.
    const int on = 1;
    ::setsockopt(fd, IPPROTO_TCP, TCP_NODELAY, &on, sizeof on);
    ::setsockopt(fd, IPPROTO_TCP, TCP_USER_TIMEOUT, &stalledFor, sizeof stalledFor);
    paused = false;
    bound = reachedAddress(fd);
    if (bound == QHostAddress::AnyIPv4 || bound == QHostAddress::AnyIPv6)
        bound.clear();
    return poller->watch(fd, this);
}

void Listener::close()
{
    if (!server.isListening())
        return;
    poller->forget(int(server.socketDescriptor()), this);
    server.close();
}

void Listener::resume()
{
    if (!paused || !server.isListening())
        return;
    paused = false;
    poller->again(this);
}

void Listener::ready(quint32 /*events*/)
{
    for (int i = 0; i < batch; ++i) {
        if (paused || !server.isListening() || !acceptOne())
            return;
    }
    poller->again(this);
}

/// True while it is worth to try the next one.
bool Listener::acceptOne()
{
    sockaddr_storage storage = {};
    socklen_t size = sizeof storage;
    auto *address = reinterpret_cast<sockaddr *>(&storage);
    FileDescriptor accepted(
        ::accept4(int(server.socketDescriptor()), address, &size, SOCK_NONBLOCK | SOCK_CLOEXEC));
    if (accepted.isOpen()) {
        const QHostAddress reached = bound.isNull() ? reachedAddress(accepted.get()) : bound;
        events.accepted(std::move(accepted), QHostAddress(address), reached);
        return true;
    }
    if (errno == EINTR || errno == ECONNABORTED || errno == EPROTO)
        return true;
    if (!isOutOfDescriptors(errno))
        return false;
    qCDebug(netLog) << "no descriptor for a new client:" << errno;
    paused = !events.crowded();
    return !paused;
}
