#pragma once

#include "files/Place.h"
#include "standard/http/Transfer.h"

namespace standard {

class PlacedCopy;

/// MOVE: a rename within a file system, in one step where a file takes the place of a file.
class Move final : public Transfer
{
public:
    using Transfer::Transfer;

private:
    void transfer() override;
    std::vector<Change> changes() const override;
    bool isAllowed() override;
    int rename(const Place &from, const Place &to);
    int replaceTree(const Place &from, const Place &to);
    void moveAcross();
    void removeSource(const PlacedCopy &job);
    void finish();
};

} // namespace standard
