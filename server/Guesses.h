#pragma once

#include "server/RecentCounts.h"

#include <QByteArray>
#include <QHash>
#include <QHostAddress>

class StatusSink;

/// Makes those wait who guess passwords. After five wrong ones from an address the next is looked
/// at a second later, then two, up to a minute, one after another. After five at an account each
/// further one waits as long by itself, wherever it comes from; but not where the right one came
/// from lately, and never for its turn. Who gave up waiting and asks again has waited meanwhile, so
/// that a crowd of strangers locks nobody out. This machine
/// never waits, unless it passes on what others want. What was right clears nothing: whoever has an
/// account could guess at others without end. One serves all servers of a program.
class Guesses
{
public:
    using Clock = RecentCounts::Clock;

    /// A password that is to be looked at.
    struct Login
    {
        QHostAddress visitor;
        QByteArray account; ///< empty where any name will do
        Clock::time_point arrived;
        bool standsForItself = true; ///< no proxy and no page of another site is behind it
    };

    /// `statusSink` is borrowed and outlives it; it may be null.
    explicit Guesses(StatusSink *statusSink)
        : sink(statusSink)
    {
    }

    /// When it may be looked at: not after `now` if it may be at once. To be asked again then, as
    /// others may have come first.
    Clock::time_point turnOf(const Login &login, Clock::time_point now) const;

    /// It has to wait, whether somebody stays for it or not.
    void noteWaiting(const Login &login);

    /// It is being looked at until `end`, which may take a while: as long as nobody knows, it
    /// counts as wrong at its address.
    void begin(const Login &login, Clock::time_point now);
    void end(const Login &login);

    void noteWrong(const Login &login, Clock::time_point now);
    void noteRight(const Login &login, Clock::time_point now);

private:
    Clock::time_point arrivalOf(const Login &login) const;
    void warn(const QString &text) const;

    StatusSink *sink;
    QHash<QByteArray, RecentCounts::Count> underWay; ///< by address
    RecentCounts wrongFrom; ///< by address
    RecentCounts wrongAt; ///< by account
    RecentCounts rightFrom; ///< by both
    QHash<QByteArray, Clock::time_point> waitingSince; ///< by both
};
