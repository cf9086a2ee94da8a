#include "app/AllFaces.h"

#include "classic/dav/Routes.h"
#include "classic/http/ClassicFace.h"
#include "classic/listing/Routes.h"
#include "classic/pages/Routes.h"
#include "server/FaceChoice.h"
#include "standard/dav/Routes.h"
#include "standard/http/StandardFace.h"
#include "standard/web/Routes.h"

#include <utility>

namespace {

/// The order matters: the first route that fits is taken, and the desktop client's listing is a
/// PROPFIND too.
Routes classicRoutes()
{
    Routes routes;
    for (const Routes &room : { pageRoutes(), listingRoutes(), davRoutes(), fileRoutes() })
        routes.insert(routes.end(), room.begin(), room.end());
    return routes;
}

} // namespace

FaceMaker allFaces()
{
    const standard::Routes routes = standard::withWeb(standard::withDav(standard::fileRoutes()));
    return chosenFaces(classicFaces(classicRoutes()), standard::standardFaces(routes));
}
