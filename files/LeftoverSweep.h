#pragma once

#include "files/DiskJob.h"
#include "files/FolderReader.h"
#include "files/Place.h"
#include "files/TreeRemoval.h"

#include <chrono>
#include <memory>
#include <optional>

/// Removes what has a hidden upload's name beside a place: files and copies that were being made,
/// and trees that were replaced or are half removed, by programs that were killed. What is younger
/// than `hiddenUploadLife`, in use or locked in a way that can't be told stays.
class LeftoverSweep final : public DiskJob
{
public:
    /// Of what is of `leastAge`.
    LeftoverSweep(Place anyBeside, std::chrono::seconds leastAge);

    /// One that is due; null when this program has swept there within the hour.
    static std::shared_ptr<LeftoverSweep> ifDue(const Place &anyBeside);

    bool run(const Budget &until) override;
    void abandon() override;

private:
    void begin();
    void step(const Budget &until);
    void take(const FolderReader::Item &item);

    const Place place;
    const std::chrono::seconds age;
    bool begun = false;
    std::optional<FolderReader> reader; ///< until all was read
    std::unique_ptr<TreeRemoval> removal; ///< under way
};
