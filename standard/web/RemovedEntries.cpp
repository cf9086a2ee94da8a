#include "standard/web/RemovedEntries.h"

#include "files/Share.h"
#include "files/TreeRemoval.h"
#include "server/Secret.h"

#include <algorithm>
#include <atomic>
#include <iterator>
#include <utility>

#include <fcntl.h>
#include <sys/file.h>

namespace standard {

namespace {

constexpr std::chrono::seconds expiryInterval{ 1 };
constexpr std::chrono::milliseconds timeAtEnd{ 500 }; ///< for all that is to be removed then
// Each takes a descriptor.
constexpr std::size_t mostRemoved = 500;
constexpr int mostRemovedOfVisitor = 250;

Place hiddenPlace(const RemovedEntries::Removed &removed)
{
    return beside(removed.share->place(removed.path), removed.hiddenName);
}

/// Open and locked; not open where it can't be, and sweeps may be too early then.
FileDescriptor lockedAt(const Place &place)
{
    constexpr int flags = O_RDONLY | O_NOFOLLOW | O_NONBLOCK | O_NOCTTY | O_CLOEXEC;
    FileDescriptor open(::openat(place.folder.get(), place.name.constData(), flags));
    ::flock(open.get(), LOCK_SH | LOCK_NB);
    return open;
}

} // namespace

RemovedEntries::RemovedEntries()
{
    timer.setInterval(expiryInterval);
    connect(&timer, &QTimer::timeout, this, &RemovedEntries::expire);
}

RemovedEntries::~RemovedEntries()
{
    const std::atomic<bool> goesOn{ false };
    const Budget budget(goesOn, timeAtEnd, true);
    for (const auto &[id, each] : kept) {
        if (!budget.isUsedUp())
            TreeRemoval(hiddenPlace(each.removed)).run(budget);
    }
}

bool RemovedEntries::hasRoomFor(const QByteArray &visitor) const
{
    const auto own = std::count_if(kept.begin(), kept.end(), [&visitor](const auto &entry) {
        return entry.second.removed.visitor == visitor;
    });
    return kept.size() < mostRemoved && own < mostRemovedOfVisitor;
}

QByteArray RemovedEntries::keep(Removed removed)
{
    FileDescriptor unswept = lockedAt(hiddenPlace(removed));
    const QByteArray id = newSecret();
    kept.emplace(id, Kept{ std::move(removed), std::move(unswept), Clock::now() + lasting });
    if (!timer.isActive())
        timer.start();
    return id;
}

const RemovedEntries::Removed *RemovedEntries::find(const QByteArray &id,
                                                    const QByteArray &visitor) const
{
    const auto found = kept.find(id);
    if (found == kept.end() || found->second.removed.visitor != visitor)
        return nullptr;
    return &found->second.removed;
}

void RemovedEntries::expire()
{
    const auto now = Clock::now();
    for (auto each = kept.begin(); each != kept.end();) {
        const auto &[id, entry] = *each;
        if (entry.end > now) {
            ++each;
            continue;
        }
        if (entry.removed.disk)
            entry.removed.disk->run(std::make_shared<TreeRemoval>(hiddenPlace(entry.removed)),
                                    nullptr, {});
        each = kept.erase(each);
    }
    if (kept.empty())
        timer.stop();
}

} // namespace standard
