#include "classic/dav/MkCol.h"

#include "files/DiskWorker.h"
#include "files/FolderMaking.h"

#include <memory>

void MkCol::reply()
{
    constexpr auto failed = "500 MKPATH Failed";
    if (!share())
        return answer(failed);
    const auto job = std::make_shared<FolderMaking>(exchange.service.share, requestedPath());
    disk().run(job, this, [this, job] { answer(job->error() == 0 ? Status::created : failed); });
}
