#include "standard/http/Transfer.h"

#include "config/Profile.h"
#include "files/Path.h"
#include "files/Share.h"
#include "standard/http/OwnNames.h"

#include <cerrno>

namespace standard {

void Transfer::start()
{
    if (!mayUpload() || !findDestination())
        return;
    what = facts();
    if (!what.exists)
        return exchange.refuse(Status::NotFound);
    found = factsAt(target);
    if (fits() && isAllowed() && meetsConditions(what) && exchange.mayChange(changes()))
        transfer();
}

/// A URL may name the server in any way; a proxy in front of it, in another one than we know.
bool Transfer::findDestination()
{
    const std::optional<QByteArray> field = exchange.request().field("Destination");
    const std::optional<Target> named = field ? parseTarget(*field) : std::nullopt;
    if (!named) {
        exchange.refuse(Status::BadRequest, "There is no Destination that can be understood.");
        return false;
    }
    const std::optional<QByteArray> path = exchange.request().outside.inside(named->path);
    if (!path || (!named->authority.isEmpty() && !isOwnName(named->authority, exchange))) {
        exchange.refuse(Status::BadGateway, "The Destination is another server.");
        return false;
    }
    target = cleanPath(*path);
    return true;
}

/// RFC 4918, sections 9.8.5 and 9.9.4.
bool Transfer::fits()
{
    const QByteArray &from = exchange.path();
    const QByteArray &to = target;
    const bool replacing = replaces();
    if (from == to || (what.inode != 0 && isSameEntry(what, found) && !found.link)) {
        exchange.refuse(Status::Forbidden, "It stands there already.");
        return false;
    }
    if (from.isEmpty() || to.isEmpty() || isWithin(to, from) || isWithin(from, to)) {
        exchange.refuse(Status::Conflict, "One of them holds the other.");
        return false;
    }
    if (!destinationPlace().isValid()) {
        exchange.refuse(Status::Conflict, "The folder to put it in does not exist.");
        return false;
    }
    if (replacing && exchange.request().value("Overwrite") == "F") {
        exchange.refuse(Status::PreconditionFailed, "Something stands there.");
        return false;
    }
    // With a folder goes what it holds.
    return !replacing || !found.folder || mayDelete();
}

Place Transfer::destinationPlace() const
{
    return share()->place(target);
}

void Transfer::succeed()
{
    exchange.reply(replaces() ? Status::NoContent : Status::Created);
}

void Transfer::refuseError(int error)
{
    if (error == EBUSY)
        return exchange.refuse(Status::Locked, "It is being received.");
    if (error == EEXIST || error == ENOENT)
        return exchange.refuse(Status::Conflict, "Somebody else was faster.");
    exchange.refuse(statusOf(error));
}

} // namespace standard
