#include "standard/dav/PropFind.h"

#include "config/Profile.h"
#include "files/DiskWorker.h"
#include "files/Share.h"
#include "server/MemoryTrim.h"
#include "standard/dav/DavState.h"
#include "standard/dav/Limits.h"
#include "standard/dav/RequestBodies.h"
#include "standard/http/MultiStatus.h"

#include <algorithm>
#include <new>
#include <utility>

#include <fcntl.h>
#include <sys/statvfs.h>

namespace standard {

namespace {

/// The name of what stands at `path`; of the share's root that of the shared folder.
QByteArray nameOf(const QByteArray &path, const Service &service)
{
    return path.isEmpty() ? service.shared.fileName().toUtf8()
                          : path.mid(path.lastIndexOf('/') + 1);
}

} // namespace

void PropFind::start()
{
    const std::optional<Depth> depth = askedDepth();
    if (!depth || !percentDecoded(exchange.request().target.query))
        return exchange.refuse(Status::BadRequest);
    if (*depth == Depth::Infinity && exchange.service().profile->deepListings == 0)
        return exchange.reply(Status::Forbidden, { { "Content-Type", xmlType } },
                              errorBody("propfind-finite-depth"));
    const EntryFacts found = facts();
    if (!isPermitted(found))
        return;
    if (!found.file && !found.folder)
        return exchange.refuse(Status::NotFound);
    // Nothing changes, but the If header counts.
    if (exchange.mayChange({}))
        exchange.readBody(maxPropFindBody);
}

std::optional<Depth> PropFind::askedDepth() const
{
    return parseDepth(exchange.request().field("Depth"), Depth::Infinity);
}

void PropFind::bodyReady(const QByteArray &body)
{
    const Parsed<PropFindBody> parsed = PropFindBody::parse(body);
    const std::optional<Depth> depth = askedDepth();
    if (const auto *status = std::get_if<Status>(&parsed))
        return exchange.refuse(*status);
    const auto &asked = std::get<PropFindBody>(parsed);
    const EntryFacts found = facts();
    const bool withFolders = exchange.service().profile->showsFolders();
    if (!found.file && !found.folder)
        return exchange.refuse(Status::NotFound);

    DavResource top;
    top.path = exchange.path();
    top.href = exchange.urlPath(top.path, found.folder).toStdString();
    top.name = nameOf(top.path, exchange.service()).toStdString();
    top.facts = found;
    PropertyReport report(asked, commonFacts(asked, *depth),
                          DavState::of(exchange.service()).properties());
    const QByteArray part =
        formValue(exchange.request().target.query, "contains").value_or(QByteArray());
    job = std::make_shared<PropFindJob>(PropFindJob::Subject{ exchange.share(), std::move(top),
                                                              *depth, withFolders, exchange.urls(),
                                                              *exchange.service().setup.replies,
                                                              QString::fromUtf8(part) },
                                        std::move(report));
    beginTurns();
}

ReplyFacts PropFind::commonFacts(const PropFindBody &asked, Depth depth) const
{
    ReplyFacts facts;
    const auto asksFor = [&asked](const char *property) {
        return std::any_of(asked.names.begin(), asked.names.end(),
                           [property](const XmlName &name) { return name.isDav(property); });
    };
    const LockTable &locks = DavState::of(exchange.service()).locks();
    const bool asksForLocks = asked.kind == PropFindBody::Kind::All || asksFor("lockdiscovery");
    if (asksForLocks && locks.count() > 0)
        facts.locks =
            LockDiscovery(locks, pathsTo(share(), exchange.path()), depth, exchange.urls());
    struct statvfs disk = {};
    if ((!asksFor("quota-available-bytes") && !asksFor("quota-used-bytes"))
        || ::fstatvfs(share()->open(exchange.path(), O_PATH | O_CLOEXEC).get(), &disk) != 0)
        return facts;
    const auto unit = qint64(disk.f_frsize);
    facts.freeBytes = qint64(disk.f_bavail) * unit;
    facts.usedBytes = qint64(disk.f_blocks - disk.f_bfree) * unit;
    return facts;
}

bool PropFind::takeTurn(const Turn &)
{
    state = State::Waiting;
    if (job->hasPiece())
        sendPiece(); // it was made before the rest
    else // what the loop has no time for goes on elsewhere
        exchange.service().setup.disk->run(job, this, [this] { pieceMade(); });
    return state == State::Making;
}

void PropFind::pieceMade()
{
    if (state != State::Waiting)
        return;
    begun &&exchange.isCongested() ? rest() : trySend();
}

/// Outside of a turn nobody else ends who gets no memory.
void PropFind::trySend()
{
    try {
        sendPiece();
    } catch (const std::bad_alloc &) {
        breakOff();
    }
}

void PropFind::sendPiece()
{
    if (const int error = job->error())
        return begun ? exchange.breakOff() : exchange.refuse(statusOf(error));
    const QByteArray piece = job->takePiece();
    ahead.reset();
    if (send(Status::MultiStatus, { { "Content-Type", xmlType } }, piece, job->isAtEnd()))
        makeAhead();
}

/// The next piece, while this one goes out. Where too many wait with theirs it is made in the next
/// turn, when it can be sent at once.
void PropFind::makeAhead()
{
    ahead.emplace(*exchange.service().setup.replies, PropFindJob::pieceBytes);
    if (!ahead->isGranted())
        return again();
    exchange.service().setup.disk->runAside(job, this, [this] { pieceMade(); });
}

void PropFind::stop()
{
    if (!leave())
        return;
    job->cancel();
    // Whoever took a few of many pieces leaves the most behind.
    if (begun)
        exchange.service().setup.memory->trimSoon();
}

} // namespace standard
