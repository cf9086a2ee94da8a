#pragma once

#include "server/Face.h"
#include "standard/dav/LockTable.h"
#include "standard/dav/PropertyStore.h"

#include <memory>

class StatusSink;
struct Service;

namespace standard {

/// What WebDAV remembers of one served item until its server ends.
class DavState final : public FaceState
{
public:
    /// That of `service`, which owns it; made when there is none. Ask anew in each turn of the
    /// event loop: it goes when something else is served.
    static DavState &of(Service &service);

    explicit DavState(const Service &service);

    /// Tells the user, once, that properties are kept in memory alone, when they are by now.
    void warn();

    /// Without those whose time is over. Ask once in each turn, before anything is done with them.
    LockTable &locks();

    /// Both outlive what is served now, for work that is still under way.
    const std::shared_ptr<LockTable> &sharedLocks() const { return lockTable; }
    const std::shared_ptr<PropertyStore> &properties() const { return store; }

private:
    StatusSink *sink; ///< may be null
    std::shared_ptr<LockTable> lockTable;
    std::shared_ptr<PropertyStore> store;
};

} // namespace standard
