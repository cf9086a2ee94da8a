#include "app/ServiceManager.h"

#include <QByteArray>

#include <algorithm>
#include <cstddef>
#include <cstring>

#include <fcntl.h>
#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

namespace {

constexpr int firstHanded = 3; ///< descriptor; what else is handed over follows

QByteArray takeVariable(const char *name)
{
    QByteArray value = qgetenv(name);
    qunsetenv(name);
    return value;
}

QString isNoNumber(const char *name, const QByteArray &value)
{
    return QStringLiteral("This is no number in %1: %2")
        .arg(QLatin1String(name), QString::fromUtf8(value));
}

/// How many descriptors are meant for this process; says in `problem` what can't be understood.
/// Those of another process are none of ours: it started us and left its variables.
int handedDescriptors(QString *problem)
{
    const QByteArray process = takeVariable("LISTEN_PID");
    const QByteArray count = takeVariable("LISTEN_FDS");
    takeVariable("LISTEN_FDNAMES");
    if (process.isEmpty() || count.isEmpty())
        return 0;
    bool isNumber = false;
    const qlonglong meant = process.toLongLong(&isNumber);
    if (!isNumber)
        *problem = isNoNumber("LISTEN_PID", process);
    else if (meant != ::getpid())
        return 0;
    const int number = count.toInt(&isNumber);
    if (problem->isEmpty() && (!isNumber || number < 1))
        *problem = isNoNumber("LISTEN_FDS", count);
    return number;
}

int socketOption(int fd, int name)
{
    int value = -1;
    socklen_t size = sizeof value;
    return ::getsockopt(fd, SOL_SOCKET, name, &value, &size) == 0 ? value : -1;
}

bool isListeningTcp(int fd)
{
    const int family = socketOption(fd, SO_DOMAIN);
    return socketOption(fd, SO_ACCEPTCONN) == 1 && socketOption(fd, SO_TYPE) == SOCK_STREAM
        && (family == AF_INET || family == AF_INET6);
}

/// Connected to the socket of this name in the file system, or with "@" ahead of it of the abstract
/// ones; not open when there is none.
FileDescriptor connectedTo(const QByteArray &name)
{
    sockaddr_un address = {};
    address.sun_family = AF_UNIX;
    const bool isAbstract = name.startsWith('@');
    if (!isAbstract && !name.startsWith('/'))
        return {};
    if (std::size_t(name.size()) >= sizeof address.sun_path)
        return {};
    std::copy(name.begin(), name.end(), address.sun_path);
    if (isAbstract)
        address.sun_path[0] = '\0';

    FileDescriptor made(::socket(AF_UNIX, SOCK_DGRAM | SOCK_CLOEXEC, 0));
    // The name of an abstract one ends where the length says, without a zero.
    const auto size = offsetof(sockaddr_un, sun_path) + std::size_t(name.size() + !isAbstract);
    const auto *generic = reinterpret_cast<const sockaddr *>(&address);
    if (made.isOpen() && ::connect(made.get(), generic, socklen_t(size)) != 0)
        made.reset();
    return made;
}

} // namespace

ServiceManager::ServiceManager()
    : reports(connectedTo(takeVariable("NOTIFY_SOCKET")))
{
    const int handed = handedDescriptors(&m_problem);
    if (handed == 0 || !m_problem.isEmpty())
        return;
    if (handed > 1) {
        m_problem = QStringLiteral("The service manager hands over %1 sockets, but one is served.")
                        .arg(handed);
        return;
    }
    // Whatever else has this number may be in use elsewhere: it is not touched.
    if (!isListeningTcp(firstHanded)) {
        m_problem = QStringLiteral("Descriptor %1, which the service manager hands over, is no "
                                   "listening TCP socket.")
                        .arg(firstHanded);
        return;
    }
    ::fcntl(firstHanded, F_SETFD, FD_CLOEXEC);
    socket.reset(firstHanded);
}

void ServiceManager::tellReady() const
{
    tell("READY=1");
}

void ServiceManager::tellStopping() const
{
    tell("STOPPING=1");
}

void ServiceManager::tell(const char *state) const
{
    if (reports.isOpen())
        ::send(reports.get(), state, std::strlen(state), MSG_NOSIGNAL);
}
