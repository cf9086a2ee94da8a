#pragma once

#include "files/FileDescriptor.h"

#include <QObject>
#include <QPointer>
#include <QSocketNotifier>

#include <array>
#include <atomic>
#include <condition_variable>
#include <cstddef>
#include <deque>
#include <functional>
#include <memory>
#include <mutex>
#include <thread>
#include <unordered_map>
#include <vector>

class DiskJob;

/// Runs jobs for the event loop that it lives in: a moment at once, what takes longer on threads
/// of its own, which take turns among all jobs. Those that wait for the disk have further threads.
/// One serves a whole program, made after the application object; its end cancels every job and
/// waits until the threads have let go.
class DiskWorker : public QObject
{
public:
    using Done = std::function<void()>;

    explicit DiskWorker(QObject *parent = nullptr);
    ~DiskWorker() override;

    /// Begins with `job` now. `done` is called once in this thread when the job is finished: before
    /// `run` returns if that was at once, so let it be the caller's last step. It is not called
    /// after the job was cancelled or `context` is gone; the job itself goes on without `context`,
    /// which may be null. A job is run anew only after it is finished.
    void run(std::shared_ptr<DiskJob> job, QObject *context, Done done);

    /// The same on a thread from the beginning, so that the caller can go on with something else.
    void runAside(std::shared_ptr<DiskJob> job, QObject *context, Done done);

private:
    Q_DISABLE_COPY_MOVE(DiskWorker)

    /// Of the event loop alone; it also keeps the job alive for the threads.
    struct Task
    {
        std::shared_ptr<DiskJob> job;
        QPointer<QObject> context;
        Done done;
    };

    void finish(const Task &task);
    void enqueue(Task task);
    void startThreads();
    bool startThread();
    std::size_t laneFor(const DiskJob &job) const;
    void work(std::size_t lane);
    DiskJob *takeWaiting(std::size_t lane);
    void putBack(DiskJob *job, bool finishedNow);
    void deliver();

    std::unordered_map<DiskJob *, Task> tasks;
    FileDescriptor bell; ///< rung by the threads when jobs are finished
    std::unique_ptr<QSocketNotifier> listener;
    std::vector<std::thread> threads;
    std::atomic<std::size_t> threadCount{ 0 }; ///< of them

    std::mutex mutex; ///< guards what follows
    // By lane: for work, and for the disk.
    std::array<std::deque<DiskJob *>, 2> waiting;
    std::array<std::condition_variable, 2> wake;
    std::vector<DiskJob *> finished;
    bool stopping = false;
};
