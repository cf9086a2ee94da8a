#pragma once

#include <atomic>
#include <chrono>
#include <cstddef>
#include <memory>

/// How long a job may go on now. Given by whoever runs it; a value for one call.
class Budget
{
public:
    using Clock = std::chrono::steady_clock;

    /// In the event loop: a moment, and nothing that waits for the disk to take data.
    static Budget ofLoop(const std::atomic<bool> &cancelled);

    /// On a worker thread, which may wait; after a while other jobs get their turn.
    static Budget ofWorker(const std::atomic<bool> &cancelled);

    Budget(const std::atomic<bool> &cancelled, Clock::duration time, bool waiting)
        : stop(cancelled)
        , deadline(Clock::now() + time)
        , mayWait(waiting)
    {
    }

    /// Whether the job is to pause now. To be asked after every step that takes microseconds.
    bool isUsedUp() const { return isCancelled() || Clock::now() >= deadline; }

    bool isCancelled() const { return stop.load(std::memory_order_relaxed); }

    /// Whether the job may make calls that wait for the disk to write.
    bool mayBlock() const { return mayWait; }

private:
    const std::atomic<bool> &stop;
    Clock::time_point deadline;
    bool mayWait;
};

/// What a job could not do is told of this many names; the rest is like them.
constexpr std::size_t maxToldFailures = 100;

/// Work on the disk that may take long, done in slices by a `DiskWorker`. Shared by the worker and
/// whoever waits for it; only `cancel` may be called while it runs.
class DiskJob
{
public:
    DiskJob() = default;
    DiskJob(const DiskJob &) = delete;
    DiskJob &operator=(const DiskJob &) = delete;
    virtual ~DiskJob() = default;

    /// Goes on with the work until the budget is used up, at least one step. True once there is
    /// nothing left to do, done or failed.
    virtual bool run(const Budget &until) = 0;

    /// Whether its next step only waits until the disk has written: that takes long on a slow one,
    /// and work that reads need not wait for it.
    virtual bool isSync() const { return false; }

    /// Frees what a cancelled job holds. Called on a worker's thread, where it keeps nobody
    /// waiting.
    virtual void abandon() { }

    /// What is to be done when it is finished and nobody waits any more; null for nothing.
    virtual std::shared_ptr<DiskJob> rest() { return {}; }

    /// Ends the work at its next step; what was begun is left or undone as the job documents.
    /// For any thread.
    void cancel() { cancelled.store(true, std::memory_order_relaxed); }
    const std::atomic<bool> &cancelFlag() const { return cancelled; }
    bool isCancelled() const { return cancelled.load(std::memory_order_relaxed); }

private:
    std::atomic<bool> cancelled{ false };
};
