#include "net/Socket.h"

#include <linux/sockios.h>
#include <sys/ioctl.h>

namespace {

constexpr qint64 limitedStep = 2048; ///< a traffic limit is overrun by no more than this

} // namespace

qint64 Socket::sendFile(int fd, qint64 offset, qint64 count)
{
    if (account->isBlocked())
        return -1;
    const qint64 most = account->limit() > 0 ? std::min(count, limitedStep) : count;
    const qint64 taken = send(fd, offset, most);
    if (taken > 0) {
        account->addSent(taken);
        m_sent += taken;
    }
    return taken;
}

qint64 Socket::exchanged() const
{
    // Sent or not, the peer has not acknowledged these.
    int outstanding = 0;
    if (::ioctl(descriptor(), SIOCOUTQ, &outstanding) != 0)
        outstanding = 0;
    return m_received + m_sent - queued() - outstanding;
}
