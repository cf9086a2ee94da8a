#include "net/Poller.h"

#include <array>
#include <chrono>
#include <utility>

#include <sys/epoll.h>
#include <unistd.h>

using namespace std::chrono_literals;

namespace {

constexpr int batchSize = 128;
constexpr int rounds = 8; ///< before the event loop's others have their turn
constexpr auto roundTime = 2ms; ///< no further round is begun after that
constexpr qint64 maxQueued = qint64(256) * 1024; ///< bytes for one peer
constexpr qint64 maxBacklog = qint64(32) * 1024 * 1024; ///< bytes for all peers
constexpr quint32 watchedEvents = EPOLLIN | EPOLLOUT | EPOLLRDHUP | EPOLLET;

} // namespace

Poller::Poller()
    : epoll(::epoll_create1(EPOLL_CLOEXEC))
    , notifier(epoll, QSocketNotifier::Read)
{
    connect(&notifier, &QSocketNotifier::activated, this, &Poller::serve);
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
    forget(target);
}

void Poller::forget(PollTarget *target)
{
    if (target->turn != PollTarget::noTurn)
        nextTurn[std::size_t(std::exchange(target->turn, PollTarget::noTurn))] = nullptr;
    // Thousands may end in one turn, and most of them wait for nothing.
    if (std::exchange(target->reports, 0) == 0)
        return;
    for (Happening &happening : happenings) {
        if (happening.target == target)
            happening.target = nullptr;
    }
}

void Poller::again(PollTarget *target)
{
    if (target->turn != PollTarget::noTurn)
        return;
    target->turn = int(nextTurn.size());
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
            serve();
        },
        Qt::QueuedConnection);
}

bool Poller::isCrowded(qint64 queued) const
{
    return queued > (m_backlog > maxBacklog ? 0 : maxQueued);
}

/// A look costs less than a round of the event loop. Who is at work on something long goes on only
/// after what came in meanwhile.
void Poller::serve()
{
    const auto end = std::chrono::steady_clock::now() + roundTime;
    for (int i = 0; i < rounds; ++i) {
        collect();
        takeTurns();
        report();
        if (nextTurn.empty())
            return;
        if (std::chrono::steady_clock::now() >= end)
            break;
    }
    schedule();
}

void Poller::remember(PollTarget *target, quint32 events)
{
    ++target->reports;
    happenings.push_back({ target, events });
}

void Poller::collect()
{
    std::array<epoll_event, batchSize> events;
    const int count = ::epoll_wait(epoll, events.data(), batchSize, 0);
    for (int i = 0; i < count; ++i) {
        const epoll_event &event = events.at(std::size_t(i));
        remember(static_cast<PollTarget *>(event.data.ptr), event.events);
    }
}

void Poller::takeTurns()
{
    for (PollTarget *target : nextTurn) {
        if (!target)
            continue;
        target->turn = PollTarget::noTurn;
        remember(target, 0);
    }
    nextTurn.clear();
}

void Poller::report()
{
    reporting = true;
    while (!happenings.empty()) {
        const Happening happening = happenings.front();
        happenings.pop_front();
        if (!happening.target)
            continue;
        --happening.target->reports;
        happening.target->ready(happening.events);
    }
    reporting = false;
}
