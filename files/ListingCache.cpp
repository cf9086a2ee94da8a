#include "files/ListingCache.h"

#include <QTimerEvent>

#include <algorithm>
#include <chrono>
#include <utility>

namespace {

constexpr qint64 leastEntries = 2000;
constexpr std::size_t maxListings = 8;
constexpr qint64 maxBytes = qint64(128) << 20;
constexpr qint64 maxIdle = 5000; ///< milliseconds, like the rest
constexpr qint64 maxAge = 10000; ///< files grow without a trace in their folder
constexpr qint64 timeStep = 50; ///< within which two changes may leave the same time
constexpr int sweepInterval = 1000;

qint64 wallClock()
{
    using namespace std::chrono;
    return duration_cast<milliseconds>(system_clock::now().time_since_epoch()).count();
}

} // namespace

ListingCache::ListingCache(QObject *parent)
    : QObject(parent)
{
}

qint64 ListingCache::now()
{
    using namespace std::chrono;
    return duration_cast<milliseconds>(steady_clock::now().time_since_epoch()).count();
}

std::shared_ptr<const FolderListing> ListingCache::find(const FolderStamp &folder,
                                                        const ListingShape &shape)
{
    dropOld();
    const auto found = kept(folder, shape);
    if (found == entries.end())
        return {};
    found->used = now();
    return found->listing;
}

void ListingCache::insert(std::shared_ptr<const FolderListing> listing)
{
    const FolderStamp &stamp = listing->stamp();
    const qint64 changed = std::max(stamp.modified, stamp.changed) / 1000000;
    const qint64 bytes = listing->bytes();
    if (listing->count() < leastEntries || bytes > maxBytes || changed + timeStep > wallClock())
        return;
    const auto older = kept(stamp, listing->shape());
    const qint64 made = older == entries.end() ? now() : older->made;
    if (older != entries.end())
        entries.erase(older);
    makeRoom(bytes);
    entries.push_back({ std::move(listing), made, now() });
    if (!timer.isActive())
        timer.start(sweepInterval, this);
}

std::vector<ListingCache::Kept>::iterator ListingCache::kept(const FolderStamp &folder,
                                                             const ListingShape &shape)
{
    return std::find_if(entries.begin(), entries.end(), [&](const Kept &entry) {
        return entry.listing->stamp() == folder && entry.listing->shape() == shape;
    });
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
