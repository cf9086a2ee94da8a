#include "server/MemoryTrim.h"

#include "files/DiskJob.h"
#include "files/DiskWorker.h"

#include <QTimerEvent>

#include <memory>
#include <utility>

#include <malloc.h>

namespace {

constexpr int interval = 1000; ///< milliseconds
constexpr int times = 8; ///< listings are kept for seconds after their last use

class TrimJob final : public DiskJob
{
public:
    bool run(const Budget &until) override
    {
        if (!until.mayBlock())
            return false;
        ::malloc_trim(0);
        return true;
    }
};

} // namespace

MemoryTrim::MemoryTrim(DiskWorker &worker, QObject *parent)
    : QObject(parent)
    , disk(worker)
{
}

void MemoryTrim::trimSoon()
{
    timesLeft = times;
    if (!timer.isActive())
        timer.start(interval, this);
}

void MemoryTrim::makeRoom()
{
    inShortage = true;
    Q_EMIT roomNeeded();
    trimSoon();
}

void MemoryTrim::endShortage()
{
    if (std::exchange(inShortage, false))
        Q_EMIT shortageOver();
}

void MemoryTrim::timerEvent(QTimerEvent *event)
{
    if (event->timerId() != timer.timerId())
        return;
    if (--timesLeft == 0)
        timer.stop();
    disk.run(std::make_shared<TrimJob>(), nullptr, {});
}
