#include "files/DiskWorker.h"

#include "files/DiskJob.h"

#include <QTimer>

#include <algorithm>
#include <exception>
#include <utility>

#include <sys/eventfd.h>

namespace {

constexpr std::size_t maxThreads = 2; ///< of each lane
constexpr std::size_t lanes = 2;
constexpr std::chrono::milliseconds retryInterval{ 100 }; ///< when there was no memory for a thread

std::size_t laneOf(const DiskJob &job)
{
    return job.isSync() ? 1 : 0;
}

} // namespace

DiskWorker::DiskWorker(QObject *parent)
    : QObject(parent)
    , bell(::eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK))
    , listener(std::make_unique<QSocketNotifier>(bell.get(), QSocketNotifier::Read))
{
    connect(listener.get(), &QSocketNotifier::activated, this, [this] { deliver(); });
}

DiskWorker::~DiskWorker()
{
    for (const auto &entry : tasks)
        entry.first->cancel();
    {
        const std::lock_guard<std::mutex> lock(mutex);
        stopping = true;
    }
    for (std::condition_variable &each : wake)
        each.notify_all();
    for (std::thread &thread : threads)
        thread.join();
}

void DiskWorker::run(std::shared_ptr<DiskJob> job, QObject *context, Done done)
{
    Task task{ std::move(job), context, context ? std::move(done) : nullptr };
    if (task.job->run(Budget::ofLoop(task.job->cancelFlag())))
        return finish(task);
    enqueue(std::move(task));
}

void DiskWorker::runAside(std::shared_ptr<DiskJob> job, QObject *context, Done done)
{
    enqueue({ std::move(job), context, context ? std::move(done) : nullptr });
}

void DiskWorker::finish(const Task &task)
{
    if (std::shared_ptr<DiskJob> rest = task.job->rest())
        runAside(std::move(rest), nullptr, {});
    if (task.done && task.context && !task.job->isCancelled())
        task.done();
}

void DiskWorker::enqueue(Task task)
{
    DiskJob *job = task.job.get();
    tasks.emplace(job, std::move(task));
    startThreads();
    const std::size_t lane = laneFor(*job);
    {
        const std::lock_guard<std::mutex> lock(mutex);
        waiting[lane].push_back(job);
    }
    wake[lane].notify_one();
}

/// Without memory for more, those that there are do the work.
void DiskWorker::startThreads()
{
    while (threads.size() < lanes * std::min(maxThreads, tasks.size()) && startThread()) { }
    if (threads.empty() && !tasks.empty())
        QTimer::singleShot(retryInterval, this, &DiskWorker::startThreads);
}

bool DiskWorker::startThread()
{
    try {
        threads.emplace_back(&DiskWorker::work, this, threads.size() % lanes);
    } catch (const std::exception &) {
        return false;
    }
    threadCount = threads.size();
    return true;
}

/// The first thread is that of the first lane, the second that of the second.
std::size_t DiskWorker::laneFor(const DiskJob &job) const
{
    const std::size_t lane = laneOf(job);
    return lane < threadCount ? lane : 0;
}

void DiskWorker::work(std::size_t lane)
{
    while (DiskJob *job = takeWaiting(lane)) {
        const bool ended = !job->isCancelled() && job->run(Budget::ofWorker(job->cancelFlag()));
        const bool cancelled = job->isCancelled();
        if (cancelled)
            job->abandon();
        putBack(job, ended || cancelled);
    }
}

/// The job that waits longest; null at the end of the program.
DiskJob *DiskWorker::takeWaiting(std::size_t lane)
{
    std::unique_lock<std::mutex> lock(mutex);
    auto &mine = waiting[lane];
    wake[lane].wait(lock, [this, &mine] { return stopping || !mine.empty(); });
    if (stopping)
        return nullptr;
    DiskJob *job = mine.front();
    mine.pop_front();
    return job;
}

/// Behind all others, so that a long job keeps none of them waiting.
void DiskWorker::putBack(DiskJob *job, bool finishedNow)
{
    const std::lock_guard<std::mutex> lock(mutex);
    if (!finishedNow) {
        const std::size_t lane = laneFor(*job);
        waiting[lane].push_back(job);
        wake[lane].notify_one();
        return;
    }
    finished.push_back(job);
    ::eventfd_write(bell.get(), 1);
}

void DiskWorker::deliver()
{
    std::vector<DiskJob *> ended;
    eventfd_t rings = 0;
    ::eventfd_read(bell.get(), &rings);
    {
        const std::lock_guard<std::mutex> lock(mutex);
        ended.swap(finished);
    }
    for (DiskJob *job : ended) {
        const auto found = tasks.find(job);
        // Out of the table first: what is done next may run the job anew.
        const Task task = std::move(found->second);
        tasks.erase(found);
        finish(task);
    }
}
