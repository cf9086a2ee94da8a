#include "server/Turns.h"

#include "server/MemoryTrim.h"

#include <algorithm>
#include <new>

using namespace std::chrono_literals;

namespace {

constexpr auto timeForAll = 3ms;
constexpr auto timeForOne = 500us;
constexpr std::size_t maxPlaced = 32;

void drop(std::deque<TurnTaker *> &queue, TurnTaker *taker)
{
    queue.erase(std::remove(queue.begin(), queue.end(), taker), queue.end());
}

} // namespace

Turns::Turns(MemoryTrim &trim, QObject *parent)
    : QObject(parent)
    , memory(trim)
{
}

void Turns::begin(TurnTaker *taker)
{
    newcomers.push_back(taker);
    const bool atOnce = !current && newcomers.size() == 1 && mayAdmit() && used < timeForAll;
    if (!atOnce)
        return schedule();
    newcomers.clear();
    placed.insert(taker);
    give(taker);
    schedule();
}

void Turns::again(TurnTaker *taker)
{
    // Its turn tells by itself whether it goes on.
    if (taker == current)
        return;
    ring.push_back(taker);
    schedule();
}

void Turns::rest(TurnTaker *taker)
{
    placed.erase(taker);
    if (!newcomers.empty())
        schedule();
}

void Turns::leave(TurnTaker *taker)
{
    if (taker == current)
        current = nullptr;
    drop(newcomers, taker);
    drop(ring, taker);
    rest(taker);
}

bool Turns::mayAdmit() const
{
    return placed.size() < (memory.isShort() ? 1 : maxPlaced);
}

/// One that begins and one that goes on, by turns. Null when nobody can have a turn.
TurnTaker *Turns::next()
{
    const bool admits = !newcomers.empty() && mayAdmit();
    newcomerIsNext = admits && (ring.empty() || !newcomerIsNext);
    std::deque<TurnTaker *> &queue = newcomerIsNext ? newcomers : ring;
    if (queue.empty())
        return nullptr;
    TurnTaker *taker = queue.front();
    queue.pop_front();
    if (newcomerIsNext)
        placed.insert(taker);
    return taker;
}

void Turns::give(TurnTaker *taker)
{
    current = taker;
    const auto start = Turn::Clock::now();
    const bool more = takeTurn(taker, Turn(start + timeForOne));
    used += Turn::Clock::now() - start;
    if (more && current == taker)
        ring.push_back(taker);
    current = nullptr;
    if (more)
        memory.trimSoon();
}

bool Turns::takeTurn(TurnTaker *taker, const Turn &turn)
{
    try {
        return taker->takeTurn(turn);
    } catch (const std::bad_alloc &) {
        taker->breakOff();
    }
    return false;
}

void Turns::giveAll()
{
    scheduled = false;
    used = {};
    while (used < timeForAll) {
        TurnTaker *taker = next();
        if (!taker)
            return;
        give(taker);
    }
    schedule();
}

void Turns::schedule()
{
    if (scheduled)
        return;
    scheduled = true;
    // Queued: the sockets are looked at before the next turns.
    QMetaObject::invokeMethod(this, &Turns::giveAll, Qt::QueuedConnection);
}
