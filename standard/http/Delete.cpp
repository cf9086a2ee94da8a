#include "standard/http/Delete.h"

#include "files/DiskWorker.h"
#include "files/TreeRemoval.h"
#include "standard/http/Depth.h"

#include <QPointer>

#include <memory>
#include <utility>

namespace standard {

void Delete::start()
{
    if (!isAllowed(facts()))
        return;
    Place target = place();
    if (!target.isValid() || target.holdsHidden)
        return exchange.refuse(Status::Forbidden);
    remove(std::move(target));
}

void Delete::remove(Place target)
{
    const auto removal = std::make_shared<TreeRemoval>(std::move(target));
    DiskWorker *worker = &disk();
    worker->run(removal, worker,
                [removal, self = QPointer<Delete>(this), tree = guarded(), path = exchange.path()] {
                    if (tree && removal->isWhole())
                        tree->removed(path);
                    else if (tree)
                        tree->thinned(path);
                    if (self && !self->isOver())
                        self->answer(*removal);
                });
}

bool Delete::isAllowed(const EntryFacts &found)
{
    if (!isPermitted(found))
        return false;
    if (!namesEntry()) {
        exchange.refuse(Status::Forbidden, "What is shared can't be removed.");
        return false;
    }
    if (!found.exists && !found.link) {
        exchange.refuse(Status::NotFound);
        return false;
    }
    // A folder never goes without what it holds (RFC 4918, section 9.6.1).
    const auto depth = parseDepth(exchange.request().field("Depth"), Depth::Infinity);
    if (found.folder && depth != Depth::Infinity) {
        exchange.refuse(Status::BadRequest);
        return false;
    }
    return meetsConditions(found)
        && exchange.mayChange({ { exchange.path(), Change::Extent::Tree, true } });
}

void Delete::answer(const TreeRemoval &removal)
{
    if (removal.isWhole())
        return exchange.reply(Status::NoContent);
    if (removal.isChanged())
        return exchange.refuse(Status::Conflict, "Somebody has put something else there.");
    std::vector<MemberFailure> failures;
    for (const QByteArray &path : removal.failures())
        failures.push_back({ path, Status::Forbidden });
    if (failures.empty())
        return exchange.refuse(Status::Forbidden);
    refuseMembers(exchange.path(), failures);
}

} // namespace standard
