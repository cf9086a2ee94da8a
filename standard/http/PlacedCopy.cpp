#include "standard/http/PlacedCopy.h"

#include "files/HiddenUploads.h"
#include "files/Rename.h"

#include <cerrno>
#include <utility>

namespace standard {

namespace {

int errorNumber(DiskError error)
{
    switch (error) {
    case DiskError::NoSpace:
        return ENOSPC;
    case DiskError::Exists:
        return EEXIST;
    case DiskError::Missing:
        return ENOENT;
    case DiskError::Locked:
        return EBUSY;
    default:
        return EACCES;
    }
}

} // namespace

PlacedCopy::PlacedCopy(std::shared_ptr<const Share> share, const QByteArray &path, Place to,
                       EntryCopy::Depth depth, bool replaces)
    : target(std::move(to))
    , replacing(replaces)
    , madeName(hiddenUploadName())
    , copy(std::move(share), path, beside(target, madeName), depth)
{
}

bool PlacedCopy::run(const Budget &until)
{
    if (!until.mayBlock())
        return false;
    if (state == State::Copying) {
        if (!copy.run(until))
            return false;
        if (until.isCancelled()) // that ends a copy as well: who knows what is missing
            return true;
        judge();
        if (state == State::Syncing)
            return false; // on with it where nobody else waits
    }
    if (state == State::Syncing)
        settle(copy.sync());
    if (state == State::Removing) {
        if (!removal->run(until))
            return false;
        state = State::Failed;
    }
    return true;
}

/// A copy with gaps takes no place where something whole stands, and that of a move takes none.
void PlacedCopy::judge()
{
    const auto &missing = copy.failures();
    const bool isMade = entryFacts(target.folder.get(), madeName.constData()).exists;
    if (!missing.empty() && (!isMade || replacing || copied() || copy.isDiskFull()))
        settle(copy.isDiskFull() ? ENOSPC : errorNumber(missing.front().error));
    else
        state = synced ? State::Syncing : State::Ready;
}

void PlacedCopy::settle(int error)
{
    result = error;
    state = error == 0 ? State::Ready : State::Removing;
    if (error != 0)
        removal.emplace(beside(target, madeName));
}

int PlacedCopy::takePlace()
{
    const Place made = beside(target, madeName);
    const int error = replacing ? renameReplacing(made, target, old) : renameNew(made, target);
    if (error != 0)
        return error;
    state = State::Placed;
    copy.unlock();
    return 0;
}

Place PlacedCopy::leftover()
{
    return state == State::Ready ? beside(target, madeName) : std::move(old);
}

} // namespace standard
