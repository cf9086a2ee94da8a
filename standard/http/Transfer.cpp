#include "standard/http/Transfer.h"

#include "config/Profile.h"
#include "files/DiskWorker.h"
#include "files/HiddenUploads.h"
#include "files/LeftoverSweep.h"
#include "files/Path.h"
#include "files/Share.h"
#include "files/TreeRemoval.h"
#include "server/Uploads.h"
#include "standard/http/OwnNames.h"
#include "standard/http/PlacedCopy.h"
#include "standard/http/Reserved.h"

#include <QPointer>
#include <QTimer>

#include <cerrno>
#include <chrono>
#include <utility>

namespace standard {

namespace {

constexpr std::chrono::seconds longestWait{ 60 }; ///< for a pass, before a visitor is told so

/// Whoever leaves trees there when it is killed removes those of others.
void sweep(DiskWorker &worker, const Place &place)
{
    if (const auto due = LeftoverSweep::ifDue(place))
        worker.run(due, nullptr, {});
}

} // namespace

Transfer::Transfer(Exchange &current)
    : ResourceHandler(current)
{
}

Transfer::~Transfer() = default;

void Transfer::start()
{
    what = facts();
    if (!isPermitted(what) || !findDestination())
        return;
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
    const std::optional<QByteArray> path = exchange.pathOf(named->path);
    if (!path || (!named->authority.isEmpty() && !isOwnName(named->authority, exchange))) {
        exchange.refuse(Status::BadGateway, "The Destination is another server.");
        return false;
    }
    target = *path;
    if (namesHiddenUpload(target) || isReserved(exchange.access().home, target)) {
        exchange.refuse(Status::Forbidden, "Such names are kept for the server itself.");
        return false;
    }
    return true;
}

/// RFC 4918, sections 9.8.5 and 9.9.4.
bool Transfer::fits()
{
    const QByteArray &from = exchange.path();
    const QByteArray &to = target;
    const bool isSame = isSameEntry(what, found) && !found.link;
    if (isSame && isRespelled())
        found = {};
    if (!isPermitted(neededThere(), target))
        return false;
    const bool replacing = replaces();
    if (from == to || (isSame && replacing)) {
        exchange.refuse(Status::Forbidden, "It stands there already.");
        return false;
    }
    if (from.isEmpty() || to.isEmpty() || isWithin(to, from) || isWithin(from, to)) {
        exchange.refuse(Status::Conflict, "One of them holds the other.");
        return false;
    }
    there = share()->place(target);
    if (!there.isValid()) {
        exchange.refuse(Status::Conflict, "The folder to put it in does not exist.");
        return false;
    }
    if (replacing && exchange.request().value("Overwrite") == "F") {
        exchange.refuse(Status::PreconditionFailed, "Something stands there.");
        return false;
    }
    return true;
}

/// With a folder comes and goes what it holds.
Rights Transfer::neededThere() const
{
    if (!replaces())
        return Right::Add;
    Rights needed = Right::Change;
    if (what.folder)
        needed |= Right::Add;
    if (found.folder)
        needed |= Right::Delete;
    return needed;
}

std::optional<Depth> Transfer::depth() const
{
    return parseDepth(exchange.request().field("Depth"), Depth::Infinity);
}

void Transfer::copy(Depth howDeep, bool listed)
{
    if (there.holdsHidden)
        return exchange.refuse(Status::Conflict);
    copying = std::make_shared<PlacedCopy>(
        exchange.share(), exchange.path(), beside(there, there.name),
        howDeep == Depth::Zero ? EntryCopy::Depth::Alone : EntryCopy::Depth::Whole, replaces());
    if (listed)
        copying->listCopied();
    // What is replaced or moved goes at once.
    if (listed || replaces() || syncOf(*exchange.service().profile) != UploadFile::Sync::None)
        copying->setSynced();
    waits = true;
    exchange.service().setup.copies->enter(this);
    if (waits)
        QTimer::singleShot(longestWait, this, [this] { stopWaiting(); });
}

void Transfer::stopWaiting()
{
    if (!waits)
        return;
    waits = false;
    exchange.service().setup.copies->leave(this);
    exchange.refuse(Status::Unavailable, "Too many copies are being made.",
                    { { "Retry-After", QByteArray::number(qint64(longestWait.count())) } });
}

/// Only a few copies go on at the same time.
void Transfer::take(Pass given)
{
    waits = false;
    // Given back when the job is at its end, or dropped.
    const auto pass = std::make_shared<Pass>(std::move(given));
    DiskWorker *worker = &disk();
    sweep(*worker, there);
    worker->run(copying, worker,
                [worker, pass, done = copying, self = QPointer<Transfer>(this), tree = guarded(),
                 from = exchange.path(), to = target] {
                    pass->end();
                    if (self && !self->isOver())
                        return self->finishCopy();
                    if (done->isHarmless() && done->takePlace() == 0 && tree)
                        tree->copied(from, to);
                    removeReplaced(*worker, done->leftover());
                });
}

/// Much may have happened since it was asked for.
void Transfer::finishCopy()
{
    const int error = copying->error();
    const bool isTold = error == ENOSPC || error == EBUSY;
    if (error != 0 && !isTold && !copying->failures().empty())
        return exchange.refuse(statusOf(error), "Not all of it can be copied.");
    if (error != 0)
        return refuseError(error);
    DiskWorker &worker = disk();
    const std::shared_ptr<PlacedCopy> done = copying;
    if (mayStillPlace()) {
        if (const int number = done->takePlace()) {
            refuseError(number);
        } else {
            if (const auto tree = guarded(); tree && replaces())
                tree->removed(target);
            placed(*done);
        }
    }
    removeReplaced(worker, done->leftover());
}

bool Transfer::mayStillPlace()
{
    if (!exchange.mayChange(changes()))
        return false;
    if (standsAsFound())
        return true;
    exchange.refuse(Status::Conflict, "Somebody has changed what stands there.");
    return false;
}

/// What takes a free name meanwhile is found by the system, in one step. Of a folder, the members
/// may change: they go with it.
bool Transfer::standsAsFound() const
{
    if (!replaces())
        return true;
    const EntryFacts now = entryFacts(there.folder.get(), there.name.constData());
    if (now.link != found.link || now.exists != found.exists)
        return false;
    return !now.exists || (found.file ? isUntouched(found, now) : isSameEntry(found, now));
}

void Transfer::removeReplaced(DiskWorker &worker, Place old)
{
    if (!old.isValid())
        return;
    worker.run(std::make_shared<TreeRemoval>(std::move(old)), nullptr, {});
}

void Transfer::ended()
{
    if (std::exchange(waits, false))
        exchange.service().setup.copies->leave(this);
}

void Transfer::succeed()
{
    exchange.reply(replaces() ? Status::NoContent : Status::Created);
}

void Transfer::refuseError(int error)
{
    if (error == EBUSY)
        return exchange.refuse(Status::Locked, "It is being received, or holds what is.");
    if (error == EEXIST || error == ENOENT)
        return exchange.refuse(Status::Conflict, "Somebody else was faster.");
    exchange.refuse(statusOf(error));
}

} // namespace standard
