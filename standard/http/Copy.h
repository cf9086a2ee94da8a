#pragma once

#include "standard/http/Transfer.h"

namespace standard {

/// COPY of a file, or of a folder with or without what it holds.
class Copy final : public Transfer
{
public:
    using Transfer::Transfer;

private:
    void transfer() override;
    std::vector<Change> changes() const override;
    bool isAllowed() override;
    void placed(const PlacedCopy &job) override;
};

} // namespace standard
