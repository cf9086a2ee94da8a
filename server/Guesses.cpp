#include "server/Guesses.h"

#include "server/PeerAddress.h"
#include "server/StatusSink.h"

#include <QCoreApplication>

#include <algorithm>

using namespace std::chrono_literals;

namespace {

constexpr int freeGuesses = 5;
constexpr int mostDoublings = 6;
constexpr std::chrono::seconds longest = 60s;
constexpr std::chrono::minutes longestPause{ 5 }; ///< between two attempts of who waits
constexpr int maxWaiting = 10000;
constexpr int longestName = 64; ///< of an account, bytes that count

std::chrono::seconds delayAfter(int wrong)
{
    if (wrong < freeGuesses)
        return 0s;
    return std::min(longest, 1s * (1 << std::min(wrong - freeGuesses, mostDoublings)));
}

QByteArray addressKey(const Guesses::Login &login)
{
    return peerOf(login.visitor).toString().toLatin1();
}

QByteArray accountKey(const Guesses::Login &login)
{
    return login.account.left(longestName);
}

QByteArray pairKey(const Guesses::Login &login)
{
    return addressKey(login) + ' ' + accountKey(login);
}

bool isExempt(const Guesses::Login &login)
{
    return login.standsForItself && isOwnAddress(login.visitor);
}

QString translated(const char *source)
{
    return QCoreApplication::translate("WebServer", source);
}

} // namespace

Guesses::Clock::time_point Guesses::turnOf(const Login &login, Clock::time_point now) const
{
    const RecentCounts::Count wrong = wrongFrom.of(addressKey(login), now);
    const RecentCounts::Count open = underWay.value(addressKey(login));
    const int here = wrong.number + open.number;
    Clock::time_point turn = login.arrived;
    if (here >= freeGuesses)
        turn = std::max(turn, std::max(wrong.last, open.last) + delayAfter(here));
    const auto atAccount = delayAfter(wrongAt.of(accountKey(login), now).number);
    if (atAccount > 0s && rightFrom.of(pairKey(login), now).number == 0)
        turn = std::max(turn, arrivalOf(login) + atAccount);
    return turn > now && isExempt(login) ? login.arrived : turn;
}

/// Of the attempt, or of an earlier one that nobody looked at.
Guesses::Clock::time_point Guesses::arrivalOf(const Login &login) const
{
    const Clock::time_point since = waitingSince.value(pairKey(login), login.arrived);
    return login.arrived - since < longestPause ? std::min(since, login.arrived) : login.arrived;
}

void Guesses::noteWaiting(const Login &login)
{
    if (waitingSince.size() >= maxWaiting)
        waitingSince.clear();
    waitingSince.insert(pairKey(login), arrivalOf(login));
}

void Guesses::begin(const Login &login, Clock::time_point now)
{
    waitingSince.remove(pairKey(login));
    RecentCounts::Count &open = underWay[addressKey(login)];
    open = { open.number + 1, now };
}

void Guesses::end(const Login &login)
{
    const auto open = underWay.find(addressKey(login));
    if (open != underWay.end() && --open->number == 0)
        underWay.erase(open);
}

void Guesses::noteWrong(const Login &login, Clock::time_point now)
{
    if (isExempt(login))
        return;
    const int here = wrongFrom.add(addressKey(login), now);
    const int atAccount = wrongAt.add(accountKey(login), now);
    if (here == freeGuesses)
        warn(translated(
                 QT_TRANSLATE_NOOP("WebServer",
                                   "Too many wrong passwords from %1: further ones have to wait."))
                 .arg(login.visitor.toString()));
    else if (atAccount == freeGuesses)
        warn(translated(QT_TRANSLATE_NOOP("WebServer",
                                          "Too many wrong passwords for one account, from several "
                                          "addresses: new visitors have to wait a little.")));
}

void Guesses::noteRight(const Login &login, Clock::time_point now)
{
    rightFrom.add(pairKey(login), now);
}

void Guesses::warn(const QString &text) const
{
    if (sink)
        sink->msg(translated("Warning"), text);
}
