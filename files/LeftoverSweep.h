#pragma once

#include "files/DiskJob.h"
#include "files/Place.h"
#include "files/TreeRemoval.h"

#include <QByteArray>

#include <chrono>
#include <memory>
#include <vector>

/// Removes the folders with a hidden upload's name that stand beside a place: unfinished copies,
/// and trees that were replaced or are half removed, of programs that were killed. Those that are
/// younger than a day or in use stay.
class LeftoverSweep final : public DiskJob
{
public:
    static constexpr std::chrono::seconds usualAge{ 24 * 60 * 60 };

    explicit LeftoverSweep(Place anyBeside, std::chrono::seconds leastAge = usualAge);

    bool run(const Budget &until) override;

private:
    void look();

    Place place;
    std::chrono::seconds age;
    bool looked = false;
    std::vector<QByteArray> names;
    std::unique_ptr<TreeRemoval> removal; ///< under way
};
