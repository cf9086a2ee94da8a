#include "standard/http/Move.h"

#include "files/DiskWorker.h"
#include "files/HiddenUploads.h"
#include "files/Rename.h"
#include "files/Share.h"
#include "files/TreeRemoval.h"
#include "standard/http/PlacedCopy.h"

#include <cerrno>
#include <memory>
#include <utility>

#include <fcntl.h>

namespace standard {

bool Move::isAllowed()
{
    if (!mayDelete())
        return false;
    if (!source().folder || depth() == "infinity")
        return true;
    exchange.refuse(Status::BadRequest);
    return false;
}

std::vector<Change> Move::changes() const
{
    return { { exchange.path(), Change::Extent::Tree, true },
             { destination(), Change::Extent::Tree, true } };
}

void Move::transfer()
{
    const int error = rename(place(), destinationPlace());
    if (error == EXDEV)
        return moveAcross();
    if (error != 0)
        return refuseError(error);
    finish();
}

int Move::rename(const Place &from, const Place &to)
{
    if (!replaces())
        return renameNew(from, to);
    const int error = renameOver(from, to);
    return error == EISDIR || error == ENOTDIR ? replaceTree(from, to) : error;
}

/// What stands there is moved aside, and removed only when the new one stands.
int Move::replaceTree(const Place &from, const Place &to)
{
    Place aside{ FileDescriptor(::fcntl(to.folder.get(), F_DUPFD_CLOEXEC, 0)), hiddenUploadName(),
                 false, to.hidden };
    if (const int error = renameNew(to, aside))
        return error;
    if (const int error = renameNew(from, to)) {
        renameNew(aside, to);
        return error;
    }
    disk().run(std::make_shared<TreeRemoval>(std::move(aside)), nullptr, {});
    return 0;
}

/// To another file system: a copy, and what was copied goes once that is whole.
void Move::moveAcross()
{
    const auto job =
        std::make_shared<PlacedCopy>(exchange.service().share, exchange.path(), destinationPlace(),
                                     EntryCopy::Depth::Whole, replaces());
    disk().run(job, this, [this, job] { removeSource(*job); });
}

void Move::removeSource(const PlacedCopy &job)
{
    if (job.error() != 0)
        return refuseError(job.error());
    if (!job.failures().empty() || place().holdsHidden)
        return exchange.refuse(Status::Forbidden,
                               "Not all of it could be copied: nothing is removed.");
    const auto removal = std::make_shared<TreeRemoval>(place());
    disk().run(removal, this, [this, removal] {
        if (removal->isWhole())
            return finish();
        exchange.refuse(Status::Forbidden, "Not all of it could be removed.");
    });
}

void Move::finish()
{
    if (guard()) {
        if (replaces())
            guard()->removed(exchange, destination());
        guard()->moved(exchange, exchange.path(), destination());
    }
    succeed();
}

} // namespace standard
