#pragma once

#include <QByteArray>
#include <QHash>

#include <chrono>
#include <list>

/// Counts by key. Each is forgotten an hour after it last grew, and where there are too many, the
/// one that has not grown for the longest goes.
class RecentCounts
{
public:
    using Clock = std::chrono::steady_clock;

    static constexpr std::chrono::hours lifetime{ 1 };
    static constexpr int maxKept = 10000;

    struct Count
    {
        int number = 0;
        Clock::time_point last; ///< when it grew
    };

    /// 0 for what is not known, or was forgotten by `now`.
    Count of(const QByteArray &key, Clock::time_point now) const;

    /// Counts once more; gives the number.
    int add(const QByteArray &key, Clock::time_point now);

private:
    struct Entry
    {
        QByteArray key;
        Count count;
    };
    using Entries = std::list<Entry>;

    Entries byAge; ///< oldest first
    QHash<QByteArray, Entries::iterator> places;
};
