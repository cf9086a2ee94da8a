#include "standard/http/Resource.h"

#include "files/Path.h"
#include "files/Reservation.h"
#include "files/Share.h"
#include "server/HttpDate.h"
#include "standard/http/MethodUse.h"
#include "standard/http/MultiStatus.h"

#include <QRandomGenerator>

#include <algorithm>
#include <array>
#include <cerrno>
#include <climits>
#include <utility>

namespace standard {

namespace {

constexpr std::array otherRights{ Right::See, Right::Read, Right::Change, Right::Delete };
constexpr int mostInOrder = 10; ///< files of one name; the numbers of others are random
constexpr int mostFolders = 100; ///< that are looked for beside a name
constexpr int mostLevels = 10; ///< of a path, that are taken
constexpr auto notPermitted = "You have no right to do this here.";

} // namespace

Status statusOf(int error)
{
    switch (error) {
    case ENOENT:
    case ENOTDIR:
    case ELOOP:
    case ENAMETOOLONG:
        return Status::NotFound;
    case ENOSPC:
    case EDQUOT:
    case EFBIG:
        return Status::InsufficientStorage;
    case EMFILE:
    case ENFILE:
    case ENOMEM:
        return Status::Unavailable;
    default:
        return Status::Forbidden;
    }
}

Status statusOf(DiskError error)
{
    switch (error) {
    case DiskError::None:
        return Status::NoContent;
    case DiskError::Exists:
        return Status::PreconditionFailed;
    case DiskError::Locked:
        return Status::Locked;
    case DiskError::Missing:
    case DiskError::Changed:
        return Status::Conflict;
    case DiskError::NoSpace:
        return Status::InsufficientStorage;
    case DiskError::Failed:
        break;
    }
    return Status::Forbidden;
}

Fields validatorFields(const Validators &current)
{
    return { { "ETag", current.tag }, { "Last-Modified", httpDate(current.modified) } };
}

Fields validatorFields(const EntryFacts &facts)
{
    return validatorFields(Validators{ true, entityTag(facts), facts.seconds });
}

EntryFacts ResourceHandler::factsAt(const QByteArray &path) const
{
    return share() ? share()->facts(path) : EntryFacts();
}

EntryFacts ResourceHandler::facts() const
{
    const EntryFacts found = factsAt(exchange.path());
    return found.folder || !namesEntry() || !exchange.namesFolder() ? found : EntryFacts();
}

Place ResourceHandler::place() const
{
    return share() ? share()->place(exchange.path()) : Place();
}

std::shared_ptr<GuardedTree> ResourceHandler::guarded() const
{
    return exchange.guard() ? exchange.guard()->tree(exchange) : nullptr;
}

bool ResourceHandler::isPermitted(const EntryFacts &found)
{
    const MethodUse *use = useOf(exchange.request().method);
    if (use && use->isPermitted(exchange.access(), exchange.path(), found))
        return true;
    exchange.refuse(Status::Forbidden, notPermitted);
    return false;
}

bool ResourceHandler::isPermitted(Rights needed, const QByteArray &path)
{
    if (exchange.access().may(needed, path))
        return true;
    exchange.refuse(Status::Forbidden, notPermitted);
    return false;
}

bool ResourceHandler::mayPutAt(const QByteArray &path)
{
    return exchange.access().may(Right::Change, path) || isPermitted(Right::Add, path);
}

void ResourceHandler::refuseMembers(const QByteArray &base,
                                    const std::vector<MemberFailure> &failures)
{
    QByteArray body = rootStart("multistatus");
    for (const MemberFailure &failure : failures)
        body += "<D:response>" + href(exchange.urlPath(base + '/' + failure.path, false))
            + statusElement(failure.status) + "</D:response>";
    exchange.reply(Status::MultiStatus, { { "Content-Type", xmlType } },
                   body + rootEnd("multistatus"));
}

bool ResourceHandler::onlyAdds(const QByteArray &path) const
{
    const Access &access = exchange.access();
    return access.may(Right::Add, path)
        && std::none_of(std::begin(otherRights), std::end(otherRights),
                        [&](Right right) { return access.may(right, path); });
}

QByteArray ResourceHandler::pathToAdd(const QByteArray &path) const
{
    if (!share() || !onlyAdds(path))
        return path;
    const QByteArray name = path.mid(path.lastIndexOf('/') + 1);
    QByteArray wanted = joinedPath(folderToAdd(parentPath(path)), name);
    if (!isTaken(wanted))
        return wanted;
    for (int number = 2; number < mostInOrder; ++number) {
        if (QByteArray numbered = numberedPath(wanted, number); !isTaken(numbered))
            return numbered;
    }
    return numberedPath(wanted, QRandomGenerator::global()->bounded(mostInOrder, INT_MAX));
}

QByteArray ResourceHandler::folderToAdd(const QByteArray &path) const
{
    if (!share() || !onlyAdds(path))
        return path;
    QByteArray meant = path;
    for (int level = 0; level < mostLevels && !factsAt(meant).folder; ++level) {
        const QByteArray top = takenPart(meant);
        const QByteArray beside =
            top.isEmpty() || factsAt(top).folder ? QByteArray() : folderBeside(top);
        if (beside.isEmpty())
            break;
        meant = joinedPath(beside, pathBelow(meant, top));
    }
    return meant;
}

/// The longest part of a path from its begin that has something, unless that is the root that the
/// visitor sees.
QByteArray ResourceHandler::takenPart(const QByteArray &path) const
{
    const int home = int(exchange.access().home.size());
    const QByteArray taken = longestPart(path, [this, home](const QByteArray &part) {
        return part.size() <= home || isTaken(part);
    });
    return taken.size() > home ? taken : QByteArray();
}

/// Empty when all that are tried are none.
QByteArray ResourceHandler::folderBeside(const QByteArray &path) const
{
    for (int number = 2; number < mostFolders; ++number) {
        QByteArray numbered = numberedPath(path, number);
        if (factsAt(numbered).folder || !isTaken(numbered))
            return numbered;
    }
    return {};
}

bool ResourceHandler::isTaken(const QByteArray &path) const
{
    const EntryFacts found = factsAt(path);
    return found.exists || found.link || Reservation::isTaken(share()->place(path));
}

bool ResourceHandler::meetsConditions(const EntryFacts &found)
{
    // What they compare costs more than to look for them.
    return !hasConditions(exchange.request())
        || meetsConditions(Validators::of(found), validatorFields(found));
}

bool ResourceHandler::meetsConditions(const Validators &current, Fields unmodified)
{
    switch (judge(exchange.request(), current)) {
    case Verdict::Proceed:
        return true;
    case Verdict::NotModified:
        exchange.reply(Status::NotModified, std::move(unmodified));
        return false;
    case Verdict::Failed:
        break;
    }
    exchange.refuse(Status::PreconditionFailed);
    return false;
}

} // namespace standard
