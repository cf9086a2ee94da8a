#include "app/AllRoutes.h"

#include "classic/dav/Routes.h"
#include "classic/pages/Routes.h"

Routes allRoutes()
{
    Routes rows;
    for (const Routes &room : { pageRoutes(), davRoutes(), fileRoutes() })
        rows.insert(rows.end(), room.begin(), room.end());
    return rows;
}
