#pragma once

#include "standard/http/Transfer.h"

#include <memory>

namespace standard {

class CopiedSource;

/// MOVE: a rename within a file system, in one step where a file takes the place of a file. To
/// another one it is a copy, and what was copied goes once that is on the disk.
class Move final : public Transfer
{
public:
    using Transfer::Transfer;

private:
    void transfer() override;
    std::vector<Change> changes() const override;
    bool isAllowed() override;
    bool isRespelled() const override;
    int rename(const Place &from);
    void placed(const PlacedCopy &job) override;
    void answerRemoval();

    std::shared_ptr<CopiedSource> removal; ///< when it is moved to another file system
};

} // namespace standard
