#include "app/Console.h"

#include <algorithm>
#include <cerrno>
#include <climits>
#include <utility>

#include <poll.h>
#include <unistd.h>

namespace {

constexpr auto programName = "quillon-serve: ";
constexpr qint64 oneMinute = 60000;
constexpr int mostPeers = 4096; ///< of one minute

bool hasRoom(int fd)
{
    pollfd writer = { fd, POLLOUT, 0 };
    return ::poll(&writer, 1, 0) > 0 && (writer.revents & POLLOUT) != 0;
}

} // namespace

void LineWriter::write(const QByteArray &line)
{
    QByteArray bytes = line;
    if (dropped > 0)
        bytes.prepend(programName + QByteArray::number(dropped) + " lines dropped\n");
    if (cutOff)
        bytes.prepend('\n');
    if (pass(bytes))
        dropped = 0;
    else
        ++dropped;
}

bool LineWriter::pass(QByteArray bytes)
{
    while (!bytes.isEmpty()) {
        if (!hasRoom(fd))
            return false;
        // A pipe that has room takes this much at once.
        const auto most = std::min(std::size_t(bytes.size()), std::size_t(PIPE_BUF));
        const auto taken = ::write(fd, bytes.constData(), most);
        if (taken < 0 && errno == EINTR)
            continue;
        if (taken <= 0)
            return false;
        cutOff = bytes.at(int(taken) - 1) != '\n';
        bytes.remove(0, int(taken));
    }
    return true;
}

void Console::print(const QString &text)
{
    out.write(text.toUtf8() + '\n');
}

void Console::error(const QString &text)
{
    errors.write(programName + text.toUtf8() + '\n');
}

bool RecentPeers::isNew(const QString &peer)
{
    if (!age.isValid() || age.hasExpired(oneMinute)) {
        before = std::exchange(current, {});
        age.start();
    }
    const bool seen = before.contains(peer) || current.contains(peer);
    if (current.size() >= mostPeers)
        return false;
    current.insert(peer);
    return !seen;
}

ConsoleSink::ConsoleSink(Console *console)
    : m_console(console)
{
}

void ConsoleSink::newConnection(const QString &peer)
{
    if (peers.isNew(peer))
        m_console->error(QLatin1String("New client: ") + peer);
}

void ConsoleSink::msg(const QString &title, const QString &text)
{
    m_console->error(title + QLatin1String(": ") + text);
}
