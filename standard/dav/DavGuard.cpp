#include "standard/dav/DavGuard.h"

#include "files/Path.h"
#include "files/Share.h"
#include "standard/dav/DavState.h"
#include "standard/dav/IfHeader.h"
#include "standard/dav/PathsTo.h"
#include "standard/http/Conditions.h"
#include "standard/http/Exchange.h"
#include "standard/http/MultiStatus.h"
#include "standard/http/Uri.h"
#include "standard/http/Visitor.h"

#include <algorithm>
#include <utility>

namespace standard {

namespace {

/// The state of the resources that conditions of a request name.
class SharedState final : public IfState
{
public:
    SharedState(const Exchange &current, const LockTable &table)
        : exchange(current)
        , locks(table)
    {
    }

    bool isLocked(const QByteArray &resource, const QByteArray &token) const override
    {
        const std::optional<QByteArray> path = pathOf(resource);
        return path && locks.find(token, pathsTo(exchange.share().get(), *path));
    }

    QByteArray etag(const QByteArray &resource) const override
    {
        const std::optional<QByteArray> path = pathOf(resource);
        const Share *share = exchange.share().get();
        const EntryFacts found = path && share ? share->facts(*path) : EntryFacts();
        return found.file ? entityTag(found) : QByteArray();
    }

private:
    /// Whatever name of ours a URL begins with: we may be known by several.
    std::optional<QByteArray> pathOf(const QByteArray &resource) const
    {
        if (resource.isEmpty())
            return exchange.path();
        const std::optional<Target> target = parseTarget(resource);
        return target ? exchange.pathOf(target->path) : std::nullopt;
    }

    const Exchange &exchange;
    const LockTable &locks;
};

/// The locks of others, for one request.
class ForeignLocks
{
public:
    /// All are borrowed.
    ForeignLocks(const LockTable &all, const Share *served, const IfHeader &tokens,
                 const QByteArray &who)
        : table(all)
        , share(served)
        , header(tokens)
        , visitor(who)
    {
    }

    /// The lock that forbids the change; null when none does.
    const Lock *forbidding(const Change &change) const
    {
        if (table.count() == 0)
            return nullptr;
        // A tree goes with the link that leads to it, but what it holds stays.
        const bool isTree = change.extent == Change::Extent::Tree;
        const Paths paths = isTree ? pathsToEntry(share, change.path) : pathsTo(share, change.path);
        if (const Lock *lock = closing(table.covering(paths)))
            return lock;
        // What a folder holds is part of it.
        if (change.membership) {
            const Paths folder = pathsTo(share, parentPath(change.path));
            if (const Lock *lock = closing(table.covering(folder)))
                return lock;
        }
        if (!isTree)
            return nullptr;
        for (const Lock *lock : table.below(paths)) {
            if (!isOpen(lock) && closing(table.covering(lock->paths)))
                return lock;
        }
        return nullptr;
    }

private:
    bool isOpen(const Lock *lock) const
    {
        return lock->isFor(visitor) && header.names(lock->token);
    }

    /// One of those on a resource, null when they are no hindrance: of several shared ones the
    /// client needs but one.
    const Lock *closing(const LockTable::Locks &locks) const
    {
        const bool isOneOpen = std::any_of(locks.begin(), locks.end(),
                                           [this](const Lock *lock) { return isOpen(lock); });
        return isOneOpen || locks.empty() ? nullptr : locks.front();
    }

    const LockTable &table;
    const Share *share;
    const IfHeader &header;
    const QByteArray &visitor;
};

/// The locks and properties of one share, for as long as somebody works on it.
class DavTree final : public GuardedTree
{
public:
    DavTree(std::shared_ptr<const Share> served, DavState &state)
        : share(std::move(served))
        , locks(state.sharedLocks())
        , properties(state.properties())
    {
    }

    void removed(const QByteArray &path) override
    {
        locks->removeTree(pathsToEntry(share.get(), path));
        properties->removed(path);
    }

    void thinned(const QByteArray &path) override
    {
        std::vector<QByteArray> known = properties->pathsIn(path);
        known.push_back(path);
        for (const Lock *lock : locks->below(pathsToEntry(share.get(), path)))
            known.push_back(lock->paths.front());
        for (const QByteArray &each : known) {
            const EntryFacts found = wholeOf(share)->facts(each);
            if (!found.exists && !found.link)
                removed(each);
        }
    }

    void moved(const QByteArray &from, const QByteArray &to) override
    {
        locks->removeTree(pathsToEntry(share.get(), from));
        properties->moved(from, to);
    }

    void copied(const QByteArray &from, const QByteArray &to) override
    {
        properties->copied(from, to);
    }

private:
    const std::shared_ptr<const Share> share;
    const std::shared_ptr<LockTable> locks;
    const std::shared_ptr<PropertyStore> properties;
};

} // namespace

std::optional<Refusal> DavGuard::refusal(const Exchange &exchange,
                                         const std::vector<Change> &changes)
{
    const LockTable &table = DavState::of(exchange.service()).locks();
    IfHeader header;
    if (const std::optional<QByteArray> value = exchange.request().field("If")) {
        const std::optional<IfHeader> parsed = IfHeader::parse(*value);
        if (!parsed)
            return Refusal{ Status::BadRequest };
        if (!parsed->holds(SharedState(exchange, table)))
            return Refusal{ Status::PreconditionFailed };
        header = *parsed;
    }
    if (changes.empty())
        return std::nullopt;
    const QByteArray visitor = visitorOf(exchange);
    const ForeignLocks others(table, exchange.share().get(), header, visitor);
    for (const Change &change : changes) {
        if (const Lock *lock = others.forbidding(change))
            return Refusal{ Status::Locked,
                            { { "Content-Type", xmlType } },
                            errorBody("lock-token-submitted",
                                      href(exchange.urlPath(lock->paths.front(), lock->folder))) };
    }
    return std::nullopt;
}

std::shared_ptr<GuardedTree> DavGuard::tree(const Exchange &exchange)
{
    return std::make_shared<DavTree>(exchange.share(), DavState::of(exchange.service()));
}

} // namespace standard
