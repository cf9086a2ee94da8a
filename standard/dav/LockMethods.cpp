#include "standard/dav/LockMethods.h"

#include "files/DiskWorker.h"
#include "files/Reservation.h"
#include "files/Share.h"
#include "files/UploadFile.h"
#include "standard/dav/DavState.h"
#include "standard/dav/IfHeader.h"
#include "standard/dav/Limits.h"
#include "standard/dav/LockDiscovery.h"
#include "standard/http/Depth.h"
#include "standard/http/MultiStatus.h"
#include "standard/http/Visitor.h"

#include <cerrno>
#include <utility>

namespace standard {

namespace {

LockTable &lockTable(const Exchange &exchange)
{
    return DavState::of(exchange.service()).locks();
}

/// Some clients send it without its brackets.
QByteArray withoutBrackets(const QByteArray &token)
{
    return token.startsWith('<') && token.endsWith('>') ? token.mid(1, token.size() - 2) : token;
}

/// To what the request names.
Paths pathsTo(const Exchange &exchange)
{
    return standard::pathsTo(exchange.share().get(), exchange.path());
}

Fields tokenField(const Lock &lock)
{
    return { { "Lock-Token", '<' + lock.token + '>' } };
}

} // namespace

void LockMethod::start()
{
    const EntryFacts found = facts();
    if (!isPermitted(found) || !meetsConditions(found))
        return;
    if (!isDeep())
        return exchange.refuse(Status::BadRequest);
    const Framing &framing = exchange.request().framing;
    if (framing.expectsContinue && framing.contentLength > 0 && !mayTake(leastLock()))
        return;
    exchange.readBody(maxLockBody);
}

/// What any body would ask for at least, so that no peer sends one in vain.
Lock LockMethod::leastLock() const
{
    Lock least = wantedLock();
    least.shared = true;
    return least;
}

/// Whether all below the folder is meant; none for a depth that locks don't have.
std::optional<bool> LockMethod::isDeep() const
{
    const auto depth = parseDepth(exchange.request().field("Depth"), Depth::Infinity);
    if (!depth || *depth == Depth::One)
        return std::nullopt;
    return *depth == Depth::Infinity;
}

void LockMethod::bodyReady(const QByteArray &body)
{
    if (body.isEmpty())
        return refresh();
    const Parsed<LockBody> parsed = LockBody::parse(body);
    if (const auto *status = std::get_if<Status>(&parsed))
        return exchange.refuse(*status);
    const auto &asked = std::get<LockBody>(parsed);
    Lock wanted = wantedLock();
    wanted.shared = asked.shared;
    wanted.owner = asked.owner;
    take(wanted);
}

/// The lock is named by the If header, perhaps through a member of what it covers.
void LockMethod::refresh()
{
    const std::optional<IfHeader> header = IfHeader::parse(exchange.request().value("If"));
    if (!header)
        return exchange.refuse(Status::BadRequest);
    if (!exchange.mayChange({}))
        return;
    LockTable &table = lockTable(exchange);
    for (const Lock *lock : table.covering(pathsTo(exchange))) {
        if (!header->names(lock->token) || !lock->isFor(visitorOf(exchange)))
            continue;
        const auto timeout = lockTimeout(exchange.request().value("Timeout"));
        return answer(*table.refresh(lock->token, timeout), Status::Ok);
    }
    exchange.reply(Status::PreconditionFailed, { { "Content-Type", xmlType } },
                   errorBody("lock-token-matches-request-uri"));
}

/// All but what the body says.
Lock LockMethod::wantedLock() const
{
    Lock wanted;
    wanted.paths = pathsTo(exchange);
    wanted.deep = isDeep().value_or(false);
    wanted.folder = facts().folder;
    wanted.visitor = visitorOf(exchange);
    wanted.personal = !exchange.access().account.isEmpty();
    wanted.timeout = lockTimeout(exchange.request().value("Timeout"));
    return wanted;
}

/// Whether the lock may be taken as things stand now; else it is refused.
bool LockMethod::mayTake(const Lock &wanted)
{
    const EntryFacts found = facts();
    const bool isNew = !found.exists;
    if (!isPermitted(found))
        return false;
    if (isNew && (exchange.namesFolder() || !place().isValid())) {
        exchange.refuse(Status::Conflict);
        return false;
    }
    // A new file is a change of its folder; else only the conditions count.
    using Changes = std::vector<Change>;
    const Change appears{ exchange.path(), Change::Extent::Resource, true };
    if (!exchange.mayChange(isNew ? Changes{ appears } : Changes()))
        return false;
    // Who began before the lock goes on to the end.
    if (found.file && isInUse(share()->target(exchange.path()))) {
        exchange.refuse(Status::Locked, "It is being written to.");
        return false;
    }
    const Lock *other = lockTable(exchange).conflict(wanted);
    if (!other)
        return true;
    exchange.reply(Status::Locked, { { "Content-Type", xmlType } },
                   errorBody("no-conflicting-lock",
                             href(exchange.urlPath(other->paths.front(), other->folder))));
    return false;
}

void LockMethod::take(const Lock &wanted)
{
    if (!mayTake(wanted))
        return;
    const bool isNew = !facts().exists;
    const Lock *lock = lockTable(exchange).add(wanted);
    if (!lock)
        return exchange.refuse(Status::Unavailable, "There are too many locks.");
    if (!isNew)
        return answer(*lock, Status::Ok, tokenField(*lock));
    made = lock->token;
    makeFile();
}

void LockMethod::makeFile()
{
    file = std::make_shared<UploadFile>();
    file->setSync(UploadFile::Sync::None);
    const DiskError error = file->create(place());
    if (error != DiskError::None)
        return exchange.refuse(statusOf(error));
    exchange.service().setup.disk->run(file, this, [this] { fileMade(); });
}

void LockMethod::fileMade()
{
    if (!file)
        return;
    const DiskError error = std::exchange(file, nullptr)->error();
    if (error != DiskError::None)
        return exchange.refuse(statusOf(error));
    const QByteArray token = std::exchange(made, {});
    if (const Lock *lock = lockTable(exchange).find(token, pathsTo(exchange)))
        answer(*lock, Status::Created, tokenField(*lock));
    else
        exchange.refuse(Status::Conflict);
}

/// `fields` tell the token, but only who takes a lock (RFC 4918, section 9.10).
void LockMethod::answer(const Lock &lock, Status status, Fields fields)
{
    const QByteArray body = rootStart("prop") + "<D:lockdiscovery>"
        + activeLock(lock, exchange.urls()) + "</D:lockdiscovery>" + rootEnd("prop");
    fields.push_back({ "Content-Type", xmlType });
    exchange.reply(status, std::move(fields), body);
}

/// A lock that its client was never told would be in everybody's way.
void LockMethod::ended()
{
    file.reset();
    if (!made.isEmpty())
        lockTable(exchange).remove(std::exchange(made, {}));
}

void UnlockMethod::start()
{
    const QByteArray token = withoutBrackets(exchange.request().value("Lock-Token"));
    if (!isPermitted(facts()))
        return;
    if (token.isEmpty())
        return exchange.refuse(Status::BadRequest);
    if (!exchange.mayChange({}))
        return;
    LockTable &table = lockTable(exchange);
    const Lock *lock = table.find(token, pathsTo(exchange));
    if (!lock)
        return exchange.reply(Status::Conflict, { { "Content-Type", xmlType } },
                              errorBody("lock-token-matches-request-uri"));
    if (!lock->isFor(visitorOf(exchange)))
        return exchange.refuse(Status::Forbidden, "The lock is somebody else's.");
    table.remove(token);
    exchange.reply(Status::NoContent);
}

} // namespace standard
