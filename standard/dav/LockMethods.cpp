#include "standard/dav/LockMethods.h"

#include "files/DiskWorker.h"
#include "files/UploadFile.h"
#include "standard/dav/DavState.h"
#include "standard/http/Depth.h"
#include "standard/dav/IfHeader.h"
#include "standard/dav/Limits.h"
#include "standard/dav/LockDiscovery.h"
#include "standard/dav/MultiStatus.h"
#include "standard/dav/Visitor.h"

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
    return standard::pathsTo(exchange.share(), exchange.path());
}

Fields tokenField(const Lock &lock)
{
    return { { "Lock-Token", '<' + lock.token + '>' } };
}

} // namespace

void LockMethod::start()
{
    if (!mayUpload() || !meetsConditions(facts()))
        return;
    exchange.readBody(maxLockBody);
}

void LockMethod::bodyReady(const QByteArray &body)
{
    const std::optional<Depth> depth =
        parseDepth(exchange.request().field("Depth"), Depth::Infinity);
    if (!depth || *depth == Depth::One)
        return exchange.refuse(Status::BadRequest);
    if (body.isEmpty())
        return refresh();
    const std::optional<LockBody> asked = LockBody::parse(body);
    if (!asked)
        return exchange.refuse(Status::BadRequest);
    if (asked->owner.size() > maxOwner)
        return exchange.refuse(Status::ContentTooLarge, "The owner is too long.");
    take(*asked, *depth == Depth::Infinity);
}

/// The lock is named by the If header, perhaps through a member of what it covers.
void LockMethod::refresh()
{
    const std::optional<IfHeader> header = IfHeader::parse(exchange.request().value("If"));
    if (!header)
        return exchange.refuse(Status::BadRequest);
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

void LockMethod::take(const LockBody &asked, bool deep)
{
    const EntryFacts found = facts();
    const bool isNew = !found.exists;
    if (isNew && (exchange.namesFolder() || !place().isValid()))
        return exchange.refuse(Status::Conflict);
    // A new file is a change of its folder; else only the conditions count.
    using Changes = std::vector<Change>;
    const Change appears{ exchange.path(), Change::Extent::Resource, true };
    if (!exchange.mayChange(isNew ? Changes{ appears } : Changes()))
        return;

    Lock wanted;
    wanted.paths = pathsTo(exchange);
    wanted.shared = asked.shared;
    wanted.deep = deep;
    wanted.folder = found.folder;
    wanted.owner = asked.owner;
    wanted.visitor = visitorOf(exchange);
    wanted.personal = !exchange.user().isEmpty();
    wanted.timeout = lockTimeout(exchange.request().value("Timeout"));
    const LockTable::Outcome outcome = lockTable(exchange).add(wanted);
    if (const Lock *other = outcome.conflict)
        return exchange.reply(
            Status::Locked, { { "Content-Type", xmlType } },
            errorBody("no-conflicting-lock",
                      href(exchange.urlPath(other->paths.front(), other->folder))));
    if (!outcome.made)
        return exchange.refuse(Status::Unavailable, "There are too many locks.");
    if (!isNew)
        return answer(*outcome.made, Status::Ok, tokenField(*outcome.made));
    made = outcome.made->token;
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
        + activeLock(lock, exchange.request().outside.prefix) + "</D:lockdiscovery>"
        + rootEnd("prop");
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
    if (token.isEmpty())
        return exchange.refuse(Status::BadRequest);
    if (!mayUpload())
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
