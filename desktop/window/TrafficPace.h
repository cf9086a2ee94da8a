#pragma once

#include <QtGlobal>

/// Tells a count of bytes that moves from one that stands still. Looks once a second.
class TrafficPace
{
public:
    void look(qint64 total)
    {
        before = last;
        last = total;
    }

    /// Whether more than a page has passed since the look before the last one.
    bool moves(qint64 total) const { return total - before > aPage; }

private:
    static constexpr qint64 aPage = qint64(32) * 1024; ///< bytes

    qint64 before = 0;
    qint64 last = 0;
};
