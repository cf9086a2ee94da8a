#include "net/Socket.h"

#include <linux/sockios.h>
#include <sys/ioctl.h>

qint64 Socket::exchanged() const
{
    // Sent or not, the peer has not acknowledged these.
    int outstanding = 0;
    if (::ioctl(descriptor(), SIOCOUTQ, &outstanding) != 0)
        outstanding = 0;
    return m_received + m_sent - queued() - outstanding;
}
