#include "standard/dav/LockTable.h"

#include "files/Path.h"
#include "standard/dav/Paths.h"

#include <QList>
#include <QUuid>

#include <algorithm>
#include <numeric>

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

bool covers(const Lock &lock, const QByteArray &entry)
{
    return std::any_of(lock.paths.begin(), lock.paths.end(), [&](const QByteArray &root) {
        return root == entry || (lock.deep && isBelow(entry, root));
    });
}

qint64 sizeOf(const Lock &lock)
{
    const auto add = [](qint64 sum, const QByteArray &path) { return sum + path.size(); };
    return std::accumulate(lock.paths.begin(), lock.paths.end(), qint64(lock.owner.size()), add);
}

void addOnce(LockTable::Locks &locks, const Lock *lock)
{
    if (std::find(locks.begin(), locks.end(), lock) == locks.end())
        locks.push_back(lock);
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

const Lock *LockTable::add(Lock wanted)
{
    if (!hasRoom(wanted))
        return nullptr;
    ++ofVisitor[wanted.visitor];
    bytes += sizeOf(wanted);
    // From the system's random source: a token is all that a stranger would need.
    wanted.token = "urn:uuid:" + QUuid::createUuid().toByteArray(QUuid::WithoutBraces);
    Lock &made = locks.emplace(wanted.token, wanted).first->second;
    for (const QByteArray &name : made.paths)
        byPath.emplace(name, &made);
    setEnd(&made);
    return &made;
}

bool LockTable::hasRoom(const Lock &wanted) const
{
    const auto mine = ofVisitor.find(wanted.visitor);
    const auto isFull = [this](const QByteArray &path) { return byPath.count(path) >= maxOnPath; };
    return count() < maxLocks && (mine == ofVisitor.end() || mine->second < maxOfVisitor)
        && bytes + sizeOf(wanted) <= maxBytes
        && std::none_of(wanted.paths.begin(), wanted.paths.end(), isFull);
}

const Lock *LockTable::conflict(const Lock &wanted) const
{
    Locks others = covering(wanted.paths);
    if (wanted.deep) {
        const Locks further = below(wanted.paths);
        others.insert(others.end(), further.begin(), further.end());
    }
    const auto found = std::find_if(others.begin(), others.end(), [&wanted](const Lock *other) {
        return !other->shared || !wanted.shared;
    });
    return found == others.end() ? nullptr : *found;
}

const Lock *LockTable::find(const QByteArray &token, const Paths &paths) const
{
    const auto found = locks.find(token);
    if (found == locks.end())
        return nullptr;
    const Lock &lock = found->second;
    const bool fits = std::any_of(paths.begin(), paths.end(),
                                  [&lock](const QByteArray &name) { return covers(lock, name); });
    return fits ? &lock : nullptr;
}

const Lock *LockTable::refresh(const QByteArray &token, seconds timeout)
{
    const auto found = locks.find(token);
    if (found == locks.end())
        return nullptr;
    Lock &lock = found->second;
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

void LockTable::removeTree(const Paths &paths)
{
    std::vector<QByteArray> tokens;
    for (const Lock *lock : below(paths))
        tokens.push_back(lock->token);
    for (const QByteArray &name : paths) {
        const auto [first, last] = byPath.equal_range(name);
        for (auto at = first; at != last; ++at)
            tokens.push_back(at->second->token);
    }
    for (const QByteArray &token : tokens)
        remove(token);
}

void LockTable::erase(Lock *lock)
{
    for (const QByteArray &name : lock->paths) {
        const auto [first, last] = byPath.equal_range(name);
        const auto isIt = [lock](const auto &at) { return at.second == lock; };
        byPath.erase(std::find_if(first, last, isIt));
    }
    byEnd.erase({ lock->until, lock });
    bytes -= sizeOf(*lock);
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

LockTable::Locks LockTable::covering(const Paths &paths) const
{
    Locks found;
    for (const QByteArray &path : paths) {
        for (const QByteArray &root : withAncestors(path)) {
            const auto [first, last] = byPath.equal_range(root);
            for (auto at = first; at != last; ++at) {
                if (at->second->deep || root == path)
                    addOnce(found, at->second);
            }
        }
    }
    return found;
}

LockTable::Locks LockTable::below(const Paths &paths) const
{
    Locks found;
    std::set<const Lock *> known;
    for (const QByteArray &path : paths) {
        for (auto at = firstBelow(byPath, path); at != byPath.end() && isBelow(at->first, path);
             ++at) {
            if (known.insert(at->second).second)
                found.push_back(at->second);
        }
    }
    return found;
}

LockTable::Locks LockTable::ofMembers(const Paths &paths) const
{
    Locks found = below(paths);
    const auto isFurther = [&paths](const Lock *lock) {
        return std::none_of(lock->paths.begin(), lock->paths.end(), [&](const QByteArray &path) {
            return std::find(paths.begin(), paths.end(), parentPath(path)) != paths.end();
        });
    };
    found.erase(std::remove_if(found.begin(), found.end(), isFurther), found.end());
    return found;
}

} // namespace standard
