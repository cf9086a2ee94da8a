#include "net/SendQueue.h"

void SendQueue::append(const char *data, qint64 size)
{
    bytes.append(data, int(size));
    poller->addBacklog(size);
}

void SendQueue::remove(qint64 size)
{
    if (size == this->size())
        return clear();
    poller->addBacklog(-size);
    start += int(size);
    // A slow peer may never take all of it: what it took must not stay in front.
    if (start > this->size()) {
        bytes.remove(0, start);
        start = 0;
    }
}

void SendQueue::clear()
{
    poller->addBacklog(-size());
    bytes.clear();
    start = 0;
    held = false;
}
