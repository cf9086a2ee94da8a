#include "standard/http/Copy.h"

#include "files/DiskWorker.h"
#include "files/Share.h"
#include "standard/http/PlacedCopy.h"

#include <utility>

namespace standard {

Copy::~Copy() = default;

bool Copy::isAllowed()
{
    if (depth() == "0" || depth() == "infinity")
        return true;
    exchange.refuse(Status::BadRequest);
    return false;
}

std::vector<Change> Copy::changes() const
{
    return { { destination(), Change::Extent::Tree, true } };
}

void Copy::transfer()
{
    waits = true;
    exchange.service().setup.copies->enter(this);
}

/// Only a few copies go on at the same time. A copy goes to its end though nobody may wait for the
/// answer any more: half a tree is of no use.
void Copy::take(Pass given)
{
    waits = false;
    Place there = destinationPlace();
    if (!there.isValid() || there.holdsHidden)
        return exchange.refuse(Status::Conflict);
    const auto howDeep = depth() == "0" ? EntryCopy::Depth::Alone : EntryCopy::Depth::Whole;
    const auto job = std::make_shared<PlacedCopy>(exchange.service().share, exchange.path(),
                                                  std::move(there), howDeep, replaces());
    // Given back when the job is at its end, or dropped.
    const auto pass = std::make_shared<Pass>(std::move(given));
    disk().run(job, this, [this, job, pass] {
        pass->end();
        answer(*job);
    });
}

void Copy::answer(const PlacedCopy &job)
{
    if (job.error() != 0)
        return refuseError(job.error());
    if (guard()) {
        if (replaces())
            guard()->removed(exchange, destination());
        guard()->copied(exchange, exchange.path(), destination());
    }
    if (job.failures().empty())
        return succeed();
    std::vector<MemberFailure> failures;
    for (const EntryCopy::Failure &failure : job.failures())
        failures.push_back({ failure.path, statusOf(failure.error) });
    refuseMembers(destination(), failures);
}

void Copy::ended()
{
    if (std::exchange(waits, false))
        exchange.service().setup.copies->leave(this);
}

} // namespace standard
