#pragma once

#include "files/FolderListing.h"

#include <QBasicTimer>
#include <QObject>
#include <QPointer>

#include <functional>
#include <memory>
#include <vector>

class DiskWorker;

/// Gives the listings of folders: reads each as often as needed and no oftener. Those of large
/// folders are kept for a moment, for who turns pages or looks again every few seconds, and who
/// asks for one that is being read waits for that, however often the folder changes. Small folders
/// are read anew each time: that costs less, and sizes stay right. Lives in the event loop, not
/// longer than its worker.
class ListingCache : public QObject
{
public:
    using Listing = std::shared_ptr<const FolderListing>;
    using Done = std::function<void(const Listing &listing)>;

    explicit ListingCache(DiskWorker &diskWorker, QObject *parent = nullptr);

    /// Calls `done` with a listing that covers `window`: before `list` returns if it is at hand or
    /// the folder is small, so let it be the caller's last step. Not called once `context` is gone.
    /// `folder` is at its start. The listing is null when there is too little memory for it, or was
    /// for what `done` made of it: that call is then the second one.
    void list(FolderReader folder, ListingShape shape, FolderListing::Window window,
              QObject *context, Done done);

    /// Keeps none any longer.
    void dropAll() { entries.clear(); }

protected:
    void timerEvent(QTimerEvent *event) override;

private:
    struct Waiter
    {
        QPointer<QObject> context;
        FolderListing::Window window;
        Done done;
    };
    struct Later
    {
        FolderReader folder;
        Waiter waiter;
    };
    struct UnderWay
    {
        std::shared_ptr<FolderListing> job;
        std::vector<Waiter> waiters;
        std::vector<Later> later; ///< for whom the job began too early
    };
    struct Kept
    {
        Listing listing;
        qint64 made; ///< milliseconds of a clock that never jumps, like the next
        qint64 used;
    };

    void list(FolderReader folder, const ListingShape &shape, Waiter waiter);
    static void give(const Listing &listing, const Waiter &waiter);
    void serve(const Listing &listing, Waiter waiter);
    std::vector<UnderWay>::iterator find(const FolderStamp &folder, const ListingShape &shape);
    void start(const std::shared_ptr<FolderListing> &job, Waiter waiter);
    void finish(const std::shared_ptr<FolderListing> &job);
    Listing known(const FolderStamp &folder, const ListingShape &shape);
    void keep(const Listing &listing);
    void makeRoom(qint64 bytes);
    void dropOld();

    DiskWorker &worker;
    std::vector<UnderWay> underWay;
    std::vector<Kept> entries; ///< the latest made last
    QBasicTimer timer;
};
