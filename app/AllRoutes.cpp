#include "app/AllRoutes.h"

#include "classic/dav/Routes.h"
#include "classic/listing/Routes.h"
#include "classic/pages/Routes.h"

Routes allRoutes()
{
    Routes routes;
    for (const Routes &room : { pageRoutes(), listingRoutes(), davRoutes(), fileRoutes() })
        routes.insert(routes.end(), room.begin(), room.end());
    return routes;
}
