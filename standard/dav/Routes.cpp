#include "standard/dav/Routes.h"

#include "standard/dav/DavGuard.h"
#include "standard/dav/LockMethods.h"
#include "standard/dav/PropFind.h"
#include "standard/dav/PropPatch.h"

namespace standard {

Routes withDav(Routes routes)
{
    routes.rows.push_back({ Method::PropFind, makeHandler<PropFind> });
    routes.rows.push_back({ Method::PropPatch, makeHandler<PropPatch> });
    routes.rows.push_back({ Method::Lock, makeHandler<LockMethod> });
    routes.rows.push_back({ Method::Unlock, makeHandler<UnlockMethod> });
    routes.guard = std::make_shared<DavGuard>();
    return routes;
}

} // namespace standard
