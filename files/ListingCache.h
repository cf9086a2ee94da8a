#pragma once

#include "files/FolderListing.h"

#include <QBasicTimer>
#include <QObject>

#include <memory>
#include <vector>

/// Keeps the listings of large folders for a moment, for who turns pages or looks again every few
/// seconds. Small folders are read anew each time: that costs less, and sizes stay right.
class ListingCache : public QObject
{
public:
    explicit ListingCache(QObject *parent = nullptr);

    /// A listing of the folder as it is now; null when there is none. It may not cover the window
    /// that is wanted.
    std::shared_ptr<const FolderListing> find(const FolderStamp &folder, const ListingShape &shape);

    /// Keeps a finished listing, unless it is small, or the folder changed just before: then the
    /// next change might leave the same time.
    void insert(std::shared_ptr<const FolderListing> listing);

protected:
    void timerEvent(QTimerEvent *event) override;

private:
    struct Kept
    {
        std::shared_ptr<const FolderListing> listing;
        qint64 made; ///< milliseconds of `now`, like the next
        qint64 used;
    };

    static qint64 now();
    std::vector<Kept>::iterator kept(const FolderStamp &folder, const ListingShape &shape);
    void dropOld();
    void makeRoom(qint64 bytes);

    std::vector<Kept> entries; ///< the latest made last
    QBasicTimer timer;
};
