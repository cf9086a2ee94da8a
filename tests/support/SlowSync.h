#pragma once

#include "files/DiskJob.h"

#include <atomic>

#include <unistd.h>

/// Waits for a disk that takes until `isThere`.
class SlowSync : public DiskJob
{
public:
    explicit SlowSync(const std::atomic<bool> &flag)
        : isThere(flag)
    {
    }
    bool run(const Budget &until) override
    {
        while (until.mayBlock() && !isThere)
            ::usleep(1000);
        return until.mayBlock();
    }
    bool isSync() const override { return true; }

private:
    const std::atomic<bool> &isThere;
};
