#include "standard/http/Copy.h"

#include "standard/http/PlacedCopy.h"

namespace standard {

bool Copy::isAllowed()
{
    if (depth() == Depth::Zero || depth() == Depth::Infinity)
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
    copy(*depth(), false);
}

void Copy::placed(const PlacedCopy &job)
{
    if (const auto tree = guarded())
        tree->copied(exchange.path(), destination());
    if (job.failures().empty())
        return succeed();
    std::vector<MemberFailure> failures;
    for (const EntryCopy::Failure &failure : job.failures())
        failures.push_back({ failure.path, statusOf(failure.error) });
    refuseMembers(destination(), failures);
}

} // namespace standard
