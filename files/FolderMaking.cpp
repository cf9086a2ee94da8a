#include "files/FolderMaking.h"

#include "files/Share.h"

#include <utility>

namespace {

constexpr int fewLevels = 8; ///< that keep nobody waiting

} // namespace

FolderMaking::FolderMaking(std::shared_ptr<const Share> where, QByteArray wanted)
    : share(std::move(where))
    , path(std::move(wanted))
{
}

bool FolderMaking::run(const Budget &until)
{
    if (path.count('/') > fewLevels && !until.mayBlock())
        return false;
    result = share->makeFolders(path);
    return true;
}
