#include "standard/http/PlacedCopy.h"

#include "files/HiddenUploads.h"
#include "files/Rename.h"

#include <cerrno>
#include <utility>

#include <fcntl.h>
#include <unistd.h>

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
    , madeName(replaces ? hiddenUploadName() : target.name)
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
        place();
    }
    if (state == State::Removing && !removal->run(until))
        return false;
    state = State::Ended;
    return true;
}

/// A copy with gaps takes no place where something whole stands.
void PlacedCopy::place()
{
    state = State::Ended;
    const auto &missing = copy.failures();
    const bool nothingMade = !missing.empty() && missing.front().path.isEmpty();
    if (!missing.empty() && (replacing || nothingMade || copy.isDiskFull()))
        result = copy.isDiskFull() ? ENOSPC : errorNumber(missing.front().error);
    if (nothingMade)
        return;
    if (result != 0)
        return remove(madeName);
    if (!replacing)
        return;
    result = exchangeNames();
    if (result != 0)
        remove(madeName);
}

/// The old one is moved aside, and removed only when the new one stands.
int PlacedCopy::exchangeNames()
{
    const Place made = beside(target, madeName);
    const int error = renameOver(made, target);
    if (error != EISDIR && error != ENOTDIR)
        return error;
    const Place aside = beside(target, hiddenUploadName());
    if (const int moved = renameNew(target, aside); moved != 0 && moved != ENOENT)
        return moved;
    if (const int placed = renameNew(made, target)) {
        renameNew(aside, target);
        return placed;
    }
    remove(aside.name);
    return 0;
}

void PlacedCopy::remove(const QByteArray &name)
{
    removal.emplace(beside(target, name));
    state = State::Removing;
}

} // namespace standard
