#pragma once

#include "standard/dav/PathsTo.h"

#include <QByteArray>

#include <chrono>
#include <functional>
#include <map>
#include <set>
#include <utility>
#include <vector>

namespace standard {

/// A write lock (RFC 4918, section 6).
struct Lock
{
    using Clock = std::chrono::steady_clock;

    Paths paths; ///< of its root
    bool shared = false;
    bool deep = false; ///< with all that stands below, now and later
    bool folder = false; ///< what is locked is one
    QByteArray owner; ///< the element that the client gave, or empty
    QByteArray visitor; ///< who took it, see `visitorOf`
    bool personal = false; ///< with a login: nobody else may use its token
    std::chrono::seconds timeout{};
    QByteArray token = {}; ///< given by the table, like the next
    Clock::time_point until = {};

    /// Whether its token is of use for that visitor: everybody is told the tokens (RFC 4918,
    /// section 6.4). Among those without a login, who may change their address, it is all the proof
    /// there is.
    bool isFor(const QByteArray &who) const { return !personal || visitor == who; }
};

/// How long a lock is to live, from the Timeout header; within what we give, in any case.
std::chrono::seconds lockTimeout(const QByteArray &timeoutHeader);

/// The locks of one server: on files and folders, by whatever name they are reached. Paths are
/// relative to the share's root, "" that itself, with single slashes between their segments; they
/// need not exist. Every call works on what it names, however many locks there are. A pointer to a
/// lock is good until the next call that isn't const; nothing ends while somebody looks.
class LockTable
{
public:
    static constexpr int maxLocks = 10000;
    static constexpr int maxOfVisitor = 1000;
    static constexpr int maxOnPath = 32; ///< that are shared
    static constexpr qint64 maxBytes = qint64(16) << 20; ///< for paths and owners

    using Locks = std::vector<const Lock *>;
    using Now = std::function<Lock::Clock::time_point()>;

    explicit LockTable(Now clock = Lock::Clock::now);

    /// Ends those whose time is over. The other calls don't: it is to be the first of each turn.
    void expire();

    /// The lock that stands against `wanted`; null when none does.
    const Lock *conflict(const Lock &wanted) const;

    /// Takes the lock, against which none stands. Null when there are too many.
    const Lock *add(Lock wanted);

    /// Begins the time of the lock anew. Null when it is gone.
    const Lock *refresh(const QByteArray &token, std::chrono::seconds timeout);

    /// The lock of that token if it covers what has these paths, else null.
    const Lock *find(const QByteArray &token, const Paths &paths) const;

    /// Ends the lock, which may be gone.
    void remove(const QByteArray &token);

    /// Ends those whose root has one of these paths or stands below: what was there is gone.
    void removeTree(const Paths &paths);

    /// Those that forbid to change what has these paths.
    Locks covering(const Paths &paths) const;

    /// Those whose root stands below it.
    Locks below(const Paths &paths) const;

    /// Those of them whose root is a member of it, a folder.
    Locks ofMembers(const Paths &paths) const;

    int count() const { return int(locks.size()); }

private:
    using ByPath = std::multimap<QByteArray, Lock *>; ///< under each of their paths

    void erase(Lock *lock);
    void setEnd(Lock *lock);
    bool hasRoom(const Lock &wanted) const;

    Now now;
    std::map<QByteArray, Lock> locks; ///< by token
    ByPath byPath;
    std::set<std::pair<Lock::Clock::time_point, Lock *>> byEnd;
    std::map<QByteArray, int> ofVisitor;
    qint64 bytes = 0; ///< see `maxBytes`
};

} // namespace standard
