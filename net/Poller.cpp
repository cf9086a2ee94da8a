#include "net/Poller.h"

#include <algorithm>
#include <array>

#include <sys/epoll.h>
#include <unistd.h>

namespace {

constexpr int batchSize = 128;
constexpr qint64 maxQueued = qint64(256) * 1024; ///< bytes for one peer
constexpr qint64 maxBacklog = qint64(32) * 1024 * 1024; ///< bytes for all peers
constexpr quint32 watchedEvents = EPOLLIN | EPOLLOUT | EPOLLRDHUP | EPOLLET;

} // namespace

Poller::Poller()
    : epoll(::epoll_create1(EPOLL_CLOEXEC))
    , notifier(epoll, QSocketNotifier::Read)
{
    connect(&notifier, &QSocketNotifier::activated, this, &Poller::collect);
}

Poller::~Poller()
{
    notifier.setEnabled(false);
    ::close(epoll);
}

bool Poller::watch(int fd, PollTarget *target) const
{
    epoll_event event = {};
    event.events = watchedEvents;
    event.data.ptr = target;
    return ::epoll_ctl(epoll, EPOLL_CTL_ADD, fd, &event) == 0;
}

void Poller::forget(int fd, PollTarget *target)
{
    ::epoll_ctl(epoll, EPOLL_CTL_DEL, fd, nullptr);
    for (Happening &happening : happenings) {
        if (happening.target == target)
            happening.target = nullptr;
    }
    nextTurn.erase(std::remove(nextTurn.begin(), nextTurn.end(), target), nextTurn.end());
}

void Poller::again(PollTarget *target)
{
    if (std::find(nextTurn.begin(), nextTurn.end(), target) != nextTurn.end())
        return;
    nextTurn.push_back(target);
    if (!reporting)
        schedule();
}

void Poller::schedule()
{
    if (scheduled)
        return;
    scheduled = true;
    QMetaObject::invokeMethod(
        this,
        [this] {
            scheduled = false;
            takeTurns();
        },
        Qt::QueuedConnection);
}

bool Poller::isCrowded(qint64 queued) const
{
    return queued > (m_backlog > maxBacklog ? 0 : maxQueued);
}

void Poller::collect()
{
    std::array<epoll_event, batchSize> events;
    const int count = ::epoll_wait(epoll, events.data(), batchSize, 0);
    for (int i = 0; i < count; ++i) {
        const epoll_event &event = events.at(std::size_t(i));
        happenings.push_back({ static_cast<PollTarget *>(event.data.ptr), event.events });
    }
    report();
    // Everybody had a turn just now: a second one costs less than another round of the event loop.
    takeTurns();
}

void Poller::takeTurns()
{
    for (PollTarget *target : nextTurn)
        happenings.push_back({ target, 0 });
    nextTurn.clear();
    report();
    if (!nextTurn.empty())
        schedule();
}

void Poller::report()
{
    reporting = true;
    while (!happenings.empty()) {
        const Happening happening = happenings.front();
        happenings.pop_front();
        if (happening.target)
            happening.target->ready(happening.events);
    }
    reporting = false;
}
