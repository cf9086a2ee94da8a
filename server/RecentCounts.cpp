#include "server/RecentCounts.h"

#include <iterator>

RecentCounts::Count RecentCounts::of(const QByteArray &key, Clock::time_point now) const
{
    const auto place = places.constFind(key);
    const bool known = place != places.constEnd() && now - (*place)->count.last <= lifetime;
    return known ? (*place)->count : Count();
}

int RecentCounts::add(const QByteArray &key, Clock::time_point now)
{
    const int number = of(key, now).number + 1;
    if (const auto place = places.constFind(key); place != places.constEnd())
        byAge.erase(*place);
    else if (places.size() >= maxKept) {
        places.remove(byAge.front().key);
        byAge.pop_front();
    }
    byAge.push_back({ key, { number, now } });
    places.insert(key, std::prev(byAge.end()));
    return number;
}
