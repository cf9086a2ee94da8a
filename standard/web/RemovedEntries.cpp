#include "standard/web/RemovedEntries.h"

#include "files/Path.h"
#include "files/Rename.h"
#include "files/Share.h"
#include "files/TreeRemoval.h"
#include "server/Secret.h"

#include <algorithm>
#include <atomic>
#include <cerrno>
#include <iterator>
#include <utility>

#include <fcntl.h>
#include <sys/file.h>

namespace standard {

namespace {

constexpr std::chrono::seconds expiryInterval{ 1 };
constexpr std::chrono::seconds timeAtEnd{ 5 }; ///< for all that is to be removed then
// Each takes two descriptors.
constexpr std::size_t mostRemoved = 300;
constexpr int mostRemovedOfVisitor = 150;
constexpr int mostNames = 100; ///< that are tried for one that can't be removed

/// Of what stands at `hidden` and was called `path`; another name when that is taken by now.
void giveNameBack(const Place &hidden, const QByteArray &path)
{
    const QByteArray name = path.mid(path.lastIndexOf('/') + 1);
    int error = renameNew(hidden, beside(hidden, name));
    for (int number = 2; error == EEXIST && number < mostNames; ++number)
        error = renameNew(hidden, beside(hidden, numberedPath(name, number)));
}

} // namespace

FileDescriptor RemovedEntries::lockedAt(const Place &place)
{
    constexpr int flags = O_RDONLY | O_NOFOLLOW | O_NONBLOCK | O_NOCTTY | O_CLOEXEC;
    FileDescriptor open(::openat(place.folder.get(), place.name.constData(), flags));
    ::flock(open.get(), LOCK_SH | LOCK_NB);
    return open;
}

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
        const Place &hidden = each.removed.hidden;
        TreeRemoval removal(beside(hidden, hidden.name));
        if (!removal.run(budget) || !removal.isWhole())
            giveNameBack(hidden, each.removed.path);
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
    QByteArray id = newSecret();
    kept.emplace(id, Kept{ std::move(removed), Clock::now() + lasting });
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
        if (each->second.end > now) {
            ++each;
            continue;
        }
        remove(std::move(each->second.removed));
        each = kept.erase(each);
    }
    if (kept.empty())
        timer.stop();
}

void RemovedEntries::remove(Removed removed)
{
    if (!removed.disk)
        return giveNameBack(removed.hidden, removed.path);
    DiskWorker *worker = removed.disk;
    const auto removal = std::make_shared<TreeRemoval>(beside(removed.hidden, removed.hidden.name));
    const auto about = std::make_shared<const Removed>(std::move(removed));
    worker->run(removal, worker, [removal, about] {
        if (!removal->isWhole())
            giveNameBack(about->hidden, about->path);
    });
}

} // namespace standard
