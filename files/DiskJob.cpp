#include "files/DiskJob.h"

using namespace std::chrono_literals;

namespace {

constexpr auto loopTime = 1ms;
constexpr auto workerTime = 50ms;

} // namespace

Budget Budget::ofLoop(const std::atomic<bool> &cancelled)
{
    return { cancelled, loopTime, false };
}

Budget Budget::ofWorker(const std::atomic<bool> &cancelled)
{
    return { cancelled, workerTime, true };
}
