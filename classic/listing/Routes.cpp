#include "classic/listing/Routes.h"

#include "classic/listing/ClientListing.h"

namespace {

bool isDesktopClient(const Request &request)
{
    return request.userAgent == Request::desktopClient;
}

} // namespace

Routes listingRoutes()
{
    return { { Request::PropFind, isDesktopClient, makeResponder<ClientListing> } };
}
