#pragma once

#include "files/DiskJob.h"

#include <functional>
#include <utility>

/// One call that may take the disk a while, as when it frees a large file. What it holds is let go
/// on the same thread.
class DiskStep final : public DiskJob
{
public:
    explicit DiskStep(std::function<void()> step)
        : call(std::move(step))
    {
    }

    bool run(const Budget &until) override
    {
        if (!until.mayBlock())
            return false;
        std::exchange(call, nullptr)();
        return true;
    }

    void abandon() override { call = nullptr; }

private:
    std::function<void()> call;
};
