#include "files/ListingCache.h"

#include "files/DiskWorker.h"

#include <QTimerEvent>

#include <algorithm>
#include <chrono>
#include <new>
#include <utility>

namespace {

constexpr qint64 leastEntries = 2000;
constexpr std::size_t maxListings = 8;
constexpr qint64 maxBytes = qint64(128) << 20;
constexpr qint64 maxIdle = 5000; ///< milliseconds, like the rest
constexpr qint64 maxAge = 10000; ///< files grow without a trace in their folder
constexpr qint64 timeStep = 50; ///< within which two changes may leave the same time
constexpr int sweepInterval = 1000;

template <typename Clock> qint64 milliseconds()
{
    const auto time = Clock::now().time_since_epoch();
    return std::chrono::duration_cast<std::chrono::milliseconds>(time).count();
}

qint64 now()
{
    return milliseconds<std::chrono::steady_clock>();
}

/// Whether the next change of the folder will show.
bool isSettled(const FolderStamp &folder)
{
    const qint64 changed = std::max(folder.modified, folder.changed) / 1000000;
    return changed + timeStep < milliseconds<std::chrono::system_clock>();
}

bool isOf(const FolderListing &listing, const FolderStamp &folder, const ListingShape &shape)
{
    return listing.stamp() == folder && listing.shape() == shape;
}

} // namespace

ListingCache::ListingCache(DiskWorker &diskWorker, QObject *parent)
    : QObject(parent)
    , worker(diskWorker)
{
}

void ListingCache::list(FolderReader folder, ListingShape shape, FolderListing::Window window,
                        QObject *context, Done done)
{
    shape.border = folder.borderId();
    list(std::move(folder), shape, Waiter{ context, window, std::move(done) });
}

void ListingCache::list(FolderReader folder, const ListingShape &shape, Waiter waiter)
{
    const FolderStamp stamp = FolderStamp::of(folder.descriptor());
    if (const Listing listing = known(stamp, shape))
        return serve(listing, std::move(waiter));
    const auto same = find(stamp, shape);
    if (same == underWay.end())
        start(std::make_shared<FolderListing>(std::move(folder), shape, waiter.window), waiter);
    else if (isSettled(stamp) && same->job->stamp() == stamp)
        same->waiters.push_back(std::move(waiter));
    else
        same->later.push_back({ std::move(folder), std::move(waiter) });
}

void ListingCache::give(const Listing &listing, const Waiter &waiter)
{
    try {
        return waiter.done(listing->isWhole() ? listing : nullptr);
    } catch (const std::bad_alloc &) {
        waiter.done(nullptr);
    }
}

/// Who wants another part than the one in order has all of it put in order.
void ListingCache::serve(const Listing &listing, Waiter waiter)
{
    if (!waiter.context)
        return;
    if (!listing->isWhole() || listing->covers(waiter.window))
        return give(listing, waiter);
    const auto same = find(listing->stamp(), listing->shape());
    if (same != underWay.end() && same->job->stamp() == listing->stamp())
        same->waiters.push_back(std::move(waiter));
    else
        start(std::make_shared<FolderListing>(listing), std::move(waiter));
}

/// The job that lists the folder, as it is now or was before.
std::vector<ListingCache::UnderWay>::iterator ListingCache::find(const FolderStamp &folder,
                                                                 const ListingShape &shape)
{
    return std::find_if(underWay.begin(), underWay.end(), [&](const UnderWay &candidate) {
        const FolderStamp &stamp = candidate.job->stamp();
        return stamp.device == folder.device && stamp.inode == folder.inode
            && candidate.job->shape() == shape;
    });
}

void ListingCache::start(const std::shared_ptr<FolderListing> &job, Waiter waiter)
{
    underWay.push_back({ job, {}, {} });
    underWay.back().waiters.push_back(std::move(waiter));
    worker.run(job, this, [this, job] { finish(job); });
}

void ListingCache::finish(const std::shared_ptr<FolderListing> &job)
{
    const auto found =
        std::find_if(underWay.begin(), underWay.end(),
                     [&job](const UnderWay &candidate) { return candidate.job == job; });
    UnderWay ended = std::move(*found);
    underWay.erase(found);
    keep(job);
    for (Waiter &waiter : ended.waiters)
        serve(job, std::move(waiter));
    for (Later &next : ended.later)
        list(std::move(next.folder), job->shape(), std::move(next.waiter));
}

ListingCache::Listing ListingCache::known(const FolderStamp &folder, const ListingShape &shape)
{
    dropOld();
    const auto found = std::find_if(entries.begin(), entries.end(), [&](const Kept &entry) {
        return isOf(*entry.listing, folder, shape);
    });
    if (found == entries.end())
        return {};
    found->used = now();
    return found->listing;
}

/// One with more in order takes the place, and the age, of the one that it was made from.
void ListingCache::keep(const Listing &listing)
{
    if (!listing->isWhole())
        return;
    const qint64 bytes = listing->bytes();
    if (listing->count() < leastEntries || bytes > maxBytes || !isSettled(listing->stamp()))
        return;
    const auto older = std::find_if(entries.begin(), entries.end(), [&](const Kept &entry) {
        return isOf(*entry.listing, listing->stamp(), listing->shape());
    });
    if (older != entries.end()) {
        older->listing = listing;
        return;
    }
    makeRoom(bytes);
    entries.push_back({ listing, now(), now() });
    if (!timer.isActive())
        timer.start(sweepInterval, this);
}

void ListingCache::makeRoom(qint64 bytes)
{
    qint64 total = bytes;
    for (const Kept &entry : entries)
        total += entry.listing->bytes();
    while (!entries.empty() && (total > maxBytes || entries.size() >= maxListings)) {
        total -= entries.front().listing->bytes();
        entries.erase(entries.begin());
    }
}

void ListingCache::dropOld()
{
    const qint64 time = now();
    const auto isOld = [time](const Kept &entry) {
        return time - entry.used > maxIdle || time - entry.made > maxAge;
    };
    entries.erase(std::remove_if(entries.begin(), entries.end(), isOld), entries.end());
    if (entries.empty())
        timer.stop();
}

void ListingCache::timerEvent(QTimerEvent *event)
{
    if (event->timerId() == timer.timerId())
        dropOld();
}
