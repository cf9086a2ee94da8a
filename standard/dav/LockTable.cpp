#include "standard/dav/LockTable.h"

#include "standard/dav/Paths.h"

#include <QList>
#include <QUuid>

#include <algorithm>

namespace standard {

namespace {

using std::chrono::seconds;

constexpr seconds usualTimeout(600);
constexpr seconds leastTimeout(180); // writers renew theirs a minute or two before it ends
constexpr seconds mostTimeout(24 * 3600);

/// What one value of the header asks for (RFC 4918, section 10.7); zero when it isn't understood.
seconds askedTimeout(const QByteArray &value)
{
    constexpr auto unit = "second-";
    const QByteArray asked = value.trimmed().toLower();
    if (asked == "infinite")
        return mostTimeout;
    if (!asked.startsWith(unit))
        return seconds::zero();
    // RFC 4918 has numbers up to 2^32-1.
    bool isNumber = false;
    const uint number = asked.mid(int(qstrlen(unit))).toUInt(&isNumber);
    return isNumber ? seconds(number) : seconds::zero();
}

bool covers(const Lock &lock, const QByteArray &path)
{
    return lock.path == path || (lock.deep && isBelow(path, lock.path));
}

} // namespace

seconds lockTimeout(const QByteArray &timeoutHeader)
{
    const QList<QByteArray> values = timeoutHeader.split(',');
    for (const QByteArray &value : values) {
        const seconds asked = askedTimeout(value);
        if (asked > seconds::zero())
            return std::clamp(asked, leastTimeout, mostTimeout);
    }
    return usualTimeout;
}

LockTable::LockTable(Now clock)
    : now(std::move(clock))
{
}

LockTable::Outcome LockTable::add(Lock wanted)
{
    if (const Lock *other = conflict(wanted))
        return { nullptr, other };
    int &mine = ofVisitor[wanted.visitor];
    if (count() >= maxLocks || mine >= maxOfVisitor) {
        if (mine == 0)
            ofVisitor.erase(wanted.visitor);
        return {};
    }
    ++mine;
    // From the system's random source: a token is all that a stranger would need.
    wanted.token = "urn:uuid:" + QUuid::createUuid().toByteArray(QUuid::WithoutBraces);
    Lock &made = locks.emplace(wanted.token, wanted).first->second;
    byPath.emplace(made.path, &made);
    setEnd(&made);
    return { &made, nullptr };
}

const Lock *LockTable::conflict(const Lock &wanted) const
{
    Locks others = covering(wanted.path);
    if (wanted.deep) {
        const Locks further = below(wanted.path);
        others.insert(others.end(), further.begin(), further.end());
    }
    const auto found = std::find_if(others.begin(), others.end(), [&wanted](const Lock *other) {
        return !other->shared || !wanted.shared;
    });
    return found == others.end() ? nullptr : *found;
}

const Lock *LockTable::find(const QByteArray &token, const QByteArray &path) const
{
    const auto found = locks.find(token);
    const bool fits = found != locks.end() && covers(found->second, path);
    return fits ? &found->second : nullptr;
}

const Lock *LockTable::refresh(const QByteArray &token, const QByteArray &path, seconds timeout)
{
    if (!find(token, path))
        return nullptr;
    Lock &lock = locks.find(token)->second;
    byEnd.erase({ lock.until, &lock });
    lock.timeout = timeout;
    setEnd(&lock);
    return &lock;
}

void LockTable::setEnd(Lock *lock)
{
    lock->until = now() + lock->timeout;
    byEnd.emplace(lock->until, lock);
}

void LockTable::remove(const QByteArray &token)
{
    const auto found = locks.find(token);
    if (found != locks.end())
        erase(&found->second);
}

void LockTable::removeTree(const QByteArray &path)
{
    Locks gone = below(path);
    const auto [first, last] = byPath.equal_range(path);
    for (auto at = first; at != last; ++at)
        gone.push_back(at->second);
    for (const Lock *lock : gone)
        remove(QByteArray(lock->token));
}

void LockTable::erase(Lock *lock)
{
    const auto [first, last] = byPath.equal_range(lock->path);
    byPath.erase(std::find_if(first, last, [lock](const auto &at) { return at.second == lock; }));
    byEnd.erase({ lock->until, lock });
    const auto mine = ofVisitor.find(lock->visitor);
    if (--mine->second == 0)
        ofVisitor.erase(mine);
    locks.erase(QByteArray(lock->token));
}

void LockTable::expire()
{
    while (!byEnd.empty() && byEnd.begin()->first <= now())
        erase(byEnd.begin()->second);
}

LockTable::Locks LockTable::covering(const QByteArray &path) const
{
    Locks found;
    for (const QByteArray &root : withAncestors(path)) {
        const auto [first, last] = byPath.equal_range(root);
        for (auto at = first; at != last; ++at) {
            if (covers(*at->second, path))
                found.push_back(at->second);
        }
    }
    return found;
}

LockTable::Locks LockTable::below(const QByteArray &path) const
{
    Locks found;
    for (auto at = firstBelow(byPath, path); at != byPath.end() && isBelow(at->first, path); ++at)
        found.push_back(at->second);
    return found;
}

} // namespace standard
