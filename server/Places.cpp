#include "server/Places.h"

#include <algorithm>
#include <utility>

Pass::Pass(Pass &&other) noexcept
    : places(std::exchange(other.places, nullptr))
    , kept(std::exchange(other.kept, 0))
{
}

Pass &Pass::operator=(Pass &&other) noexcept
{
    std::swap(places, other.places);
    std::swap(kept, other.kept);
    return *this;
}

void Pass::keep(qint64 bytes)
{
    if (!places || kept > 0)
        return;
    kept = std::max<qint64>(bytes, 1);
    places->giveBack(1, -kept);
}

void Pass::end()
{
    const qint64 bytes = std::exchange(kept, 0);
    if (Places *owner = std::exchange(places, nullptr))
        owner->giveBack(bytes > 0 ? 0 : 1, bytes);
}

void Places::enter(PassTaker *taker)
{
    waiting.push_back(taker);
    admit();
}

void Places::leave(PassTaker *taker)
{
    waiting.erase(std::remove(waiting.begin(), waiting.end(), taker), waiting.end());
}

void Places::giveBack(int places, qint64 bytes)
{
    free += places;
    freeBytes += bytes;
    admit();
}

/// Who gives the pass back at once does not make this call itself anew.
void Places::admit()
{
    if (admitting)
        return;
    admitting = true;
    while (!waiting.empty() && free > 0 && freeBytes > 0) {
        PassTaker *taker = waiting.front();
        waiting.pop_front();
        --free;
        taker->take(Pass(this));
    }
    admitting = false;
}
