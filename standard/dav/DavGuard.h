#pragma once

#include "standard/http/Guard.h"

namespace standard {

/// Keeps the locks of others, and the conditions of the If header (RFC 4918, sections 7 and 10.4).
class DavGuard final : public Guard
{
public:
    std::optional<Refusal> refusal(const Exchange &exchange,
                                   const std::vector<Change> &changes) override;

    /// Locks stay behind and end (RFC 4918, section 7.5); properties go along.
    std::shared_ptr<GuardedTree> tree(const Exchange &exchange) override;
};

} // namespace standard
