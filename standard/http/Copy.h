#pragma once

#include "server/Places.h"
#include "standard/http/Transfer.h"

#include <memory>

namespace standard {

class PlacedCopy;

/// COPY of a file, or of a folder with or without what it holds.
class Copy final : public Transfer, private PassTaker
{
public:
    using Transfer::Transfer;
    ~Copy() override;

    void ended() override;

private:
    void transfer() override;
    std::vector<Change> changes() const override;
    bool isAllowed() override;
    void take(Pass given) override;
    void answer(const PlacedCopy &job);

    bool waits = false;
};

} // namespace standard
