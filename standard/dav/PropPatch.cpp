#include "standard/dav/PropPatch.h"

#include "files/DiskWorker.h"
#include "files/Share.h"
#include "standard/dav/DavState.h"
#include "standard/dav/Limits.h"
#include "standard/http/MultiStatus.h"

namespace standard {

void PropPatch::start()
{
    const EntryFacts found = facts();
    if (!isPermitted(found))
        return;
    if (!found.file && !found.folder)
        return exchange.refuse(Status::NotFound);
    if (!meetsConditions(found) || !exchange.mayChange({ { exchange.path() } }))
        return;
    exchange.readBody(maxPropPatchBody);
}

void PropPatch::bodyReady(const QByteArray &body)
{
    if (!exchange.share())
        return exchange.refuse(Status::NotFound);
    // Somebody may have taken a lock while the body came.
    if (!exchange.mayChange({ { exchange.path() } }))
        return;
    const auto &store = DavState::of(exchange.service()).properties();
    job = std::make_shared<PropPatchJob>(
        PropPatchJob::Subject{ exchange.share(), exchange.path(), store, exchange.urls() }, body);
    disk().run(job, this, [this] { answer(); });
}

void PropPatch::answer()
{
    if (!job)
        return;
    DavState::of(exchange.service()).warn();
    if (job->status() != Status::MultiStatus)
        return exchange.refuse(job->status());
    exchange.reply(Status::MultiStatus, { { "Content-Type", xmlType } }, job->answer());
}

} // namespace standard
