#include "classic/dav/Delete.h"

#include "config/Profile.h"
#include "files/DiskWorker.h"
#include "files/TreeRemoval.h"

#include <utility>

void Delete::reply()
{
    if (!exchange.service.profile->allowsDelete())
        return answer("423 Read-only");
    Place target = place(requestedPath());
    EntryFacts found;
    if (target.isValid())
        found = entryFacts(target.folder.get(), target.name.constData());
    if (!found.exists && !found.link)
        return answer("200 Not exists"); // what the client asked for is so
    remove(std::move(target), found.folder ? "200 Dir deleted" : "200 File deleted");
}

void Delete::remove(Place target, const char *success)
{
    const auto job = std::make_shared<TreeRemoval>(std::move(target));
    disk().run(job, this,
               [this, job, success] { answer(job->isWhole() ? success : Status::locked); });
}
