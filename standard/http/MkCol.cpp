#include "standard/http/MkCol.h"

#include "files/Reservation.h"
#include "files/Share.h"
#include "standard/http/Options.h"

#include <cerrno>

#include <sys/stat.h>

namespace standard {

namespace {

constexpr mode_t folderMode = 0777;

} // namespace

void MkCol::start()
{
    const QByteArray path = folderToAdd(exchange.path());
    if (!isAllowed(path))
        return;
    const Place target = share() ? share()->place(path) : Place();
    if (!target.isValid())
        return exchange.refuse(Status::Conflict, "The folder above does not exist.");
    if (Reservation::isTaken(target))
        return exchange.refuse(Status::Conflict, "A file of this name is being received.");
    if (::mkdirat(target.folder.get(), target.name.constData(), folderMode) == 0)
        return exchange.reply(Status::Created);
    if (errno == EEXIST)
        return exchange.refuse(Status::MethodNotAllowed, {}, { allowField(exchange) });
    exchange.refuse(statusOf(errno));
}

/// Who only adds makes a folder that is there as if it weren't, and learns nothing.
bool MkCol::isAllowed(const QByteArray &path)
{
    const EntryFacts found = factsAt(path);
    if (!isPermitted(found))
        return false;
    // Nobody has said what a body would mean (RFC 4918, section 9.3).
    if (exchange.request().framing.hasBody()) {
        exchange.refuse(Status::UnsupportedMediaType);
        return false;
    }
    if (found.folder && onlyAdds(path)) {
        exchange.reply(Status::Created);
        return false;
    }
    if (found.exists || found.link || !namesEntry()) {
        exchange.refuse(Status::MethodNotAllowed, {}, { allowField(exchange) });
        return false;
    }
    return meetsConditions(found)
        && exchange.mayChange({ { path, Change::Extent::Resource, true } });
}

} // namespace standard
