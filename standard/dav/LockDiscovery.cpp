#include "standard/dav/LockDiscovery.h"

#include "standard/dav/Paths.h"
#include "standard/http/MultiStatus.h"

#include <algorithm>
#include <utility>

namespace standard {

QByteArray activeLock(const Lock &lock, const UrlSpace &urls)
{
    using std::chrono::seconds;
    const auto left = std::chrono::ceil<seconds>(lock.until - Lock::Clock::now());
    return QByteArray("<D:activelock><D:locktype><D:write/></D:locktype><D:lockscope>")
        + (lock.shared ? "<D:shared/>" : "<D:exclusive/>") + "</D:lockscope><D:depth>"
        + (lock.deep ? "infinity" : "0") + "</D:depth>" + lock.owner + "<D:timeout>Second-"
        + QByteArray::number(qint64(left.count())) + "</D:timeout><D:locktoken><D:href>"
        + lock.token + "</D:href></D:locktoken><D:lockroot>"
        + href(urlPath(urls, lock.paths.front(), lock.folder)) + "</D:lockroot></D:activelock>";
}

LockDiscovery::LockDiscovery(const LockTable &table, Paths topPaths, Depth depth,
                             UrlSpace visitorsUrls)
    : paths(std::move(topPaths))
    , urls(std::move(visitorsUrls))
{
    add(table.covering(paths));
    if (depth != Depth::Zero)
        add(depth == Depth::One ? table.ofMembers(paths) : table.below(paths));
}

void LockDiscovery::add(const LockTable::Locks &locks)
{
    for (const Lock *lock : locks) {
        const auto copy = std::make_shared<const Lock>(*lock);
        for (const QByteArray &name : copy->paths)
            byRoot.emplace(name, copy);
    }
}

QByteArray LockDiscovery::at(const QByteArray &path) const
{
    if (byRoot.empty())
        return {};
    Found found;
    const QByteArray rest = path.mid(paths.front().size());
    for (const QByteArray &top : paths)
        find(found, top.isEmpty() && rest.startsWith('/') ? rest.mid(1) : top + rest);
    QByteArray elements;
    for (const Lock *lock : found)
        elements += activeLock(*lock, urls);
    return elements;
}

void LockDiscovery::find(Found &found, const QByteArray &path) const
{
    for (const QByteArray &root : withAncestors(path)) {
        const auto [first, last] = byRoot.equal_range(root);
        for (auto at = first; at != last; ++at) {
            const Lock *lock = at->second.get();
            const bool isNew = std::find(found.begin(), found.end(), lock) == found.end();
            if (isNew && (lock->deep || root == path) && found.size() < maxTold)
                found.push_back(lock);
        }
    }
}

} // namespace standard
