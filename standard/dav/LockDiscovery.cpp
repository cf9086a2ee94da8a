#include "standard/dav/LockDiscovery.h"

#include "standard/dav/MultiStatus.h"
#include "standard/dav/Paths.h"
#include "standard/http/Uri.h"

namespace standard {

QByteArray activeLock(const Lock &lock, const QByteArray &prefix)
{
    using std::chrono::seconds;
    const auto left = std::chrono::ceil<seconds>(lock.until - Lock::Clock::now());
    return QByteArray("<D:activelock><D:locktype><D:write/></D:locktype><D:lockscope>")
        + (lock.shared ? "<D:shared/>" : "<D:exclusive/>") + "</D:lockscope><D:depth>"
        + (lock.deep ? "infinity" : "0") + "</D:depth>" + lock.owner + "<D:timeout>Second-"
        + QByteArray::number(qint64(left.count())) + "</D:timeout><D:locktoken><D:href>"
        + lock.token + "</D:href></D:locktoken><D:lockroot>"
        + href(urlPath(prefix, lock.path, lock.folder)) + "</D:lockroot></D:activelock>";
}

LockDiscovery::LockDiscovery(const LockTable &table, const QByteArray &path, bool withTree,
                             const QByteArray &prefix)
{
    add(table.covering(path), prefix);
    if (withTree)
        add(table.below(path), prefix);
}

void LockDiscovery::add(const LockTable::Locks &locks, const QByteArray &prefix)
{
    for (const Lock *lock : locks)
        byRoot.emplace(lock->path, Told{ lock->deep, activeLock(*lock, prefix) });
}

QByteArray LockDiscovery::at(const QByteArray &path) const
{
    QByteArray elements;
    if (byRoot.empty())
        return elements;
    for (const QByteArray &root : withAncestors(path)) {
        const auto [first, last] = byRoot.equal_range(root);
        for (auto at = first; at != last; ++at) {
            if (at->second.deep || root == path)
                elements += at->second.element;
        }
    }
    return elements;
}

} // namespace standard
