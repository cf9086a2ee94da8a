#pragma once

#include "standard/http/Resource.h"

class TreeRemoval;

namespace standard {

/// DELETE of a file, a link, or a folder with all it holds.
class Delete : public ResourceHandler
{
public:
    using ResourceHandler::ResourceHandler;

    void start() final;

protected:
    /// What stands there, which may be removed.
    virtual void remove(Place target);

private:
    bool isAllowed(const EntryFacts &found);
    void answer(const TreeRemoval &removal);
};

} // namespace standard
