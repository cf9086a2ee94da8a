#include "classic/pages/Routes.h"

#include "classic/listing/ClientListing.h"
#include "classic/pages/BrowserPages.h"

namespace {

/// The desktop client; WebDAV clients ask with the same method.
bool isDesktopClient(const Request &request)
{
    return request.userAgent == "mc";
}

} // namespace

Routes pageRoutes()
{
    return {
        { Request::Get, nullptr, makeResponder<BrowserPages> },
        { Request::Post, nullptr, makeResponder<BrowserPages> },
        { Request::PropFind, isDesktopClient, makeResponder<ClientListing> },
    };
}
