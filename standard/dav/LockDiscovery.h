#pragma once

#include "standard/dav/LockTable.h"
#include "standard/http/Depth.h"
#include "standard/http/Uri.h"

#include <QByteArray>

#include <map>
#include <memory>
#include <vector>

namespace standard {

/// The "activelock" element of a lock, with the time that is left to it. What stands above all that
/// its reader sees is told to be that.
QByteArray activeLock(const Lock &lock, const UrlSpace &urls);

/// What is told of the locks in a tree. A copy, for any thread.
class LockDiscovery
{
public:
    static constexpr std::size_t maxTold = 64; ///< of one resource

    LockDiscovery() = default;

    /// Of what has these paths, and of what stands below it as far as `depth` goes.
    LockDiscovery(const LockTable &table, Paths topPaths, Depth depth, UrlSpace visitorsUrls);

    /// The elements of the locks that cover `path`, which begins with the first of the paths.
    QByteArray at(const QByteArray &path) const;

private:
    using Found = std::vector<const Lock *>;

    void add(const LockTable::Locks &locks);
    void find(Found &found, const QByteArray &path) const;

    Paths paths;
    UrlSpace urls;
    std::multimap<QByteArray, std::shared_ptr<const Lock>> byRoot;
};

} // namespace standard
