#include "classic/pages/Routes.h"

#include "classic/listing/ClientListing.h"
#include "classic/pages/BrowserPages.h"

namespace {

Responder *makeBrowserPages(Profile *profile, Request *request)
{
    return new BrowserPages(profile, request);
}

Responder *makeClientListing(Profile * /*profile*/, Request *request)
{
    return new ClientListing(request);
}

/// The desktop client; WebDAV clients ask with the same method.
bool isDesktopClient(const Request &request)
{
    return request.userAgent == "mc";
}

} // namespace

Routes pageRoutes()
{
    return {
        { Request::Get, nullptr, "SD", makeBrowserPages, ReplyCall::Shared },
        { Request::Post, nullptr, "SD", makeBrowserPages, ReplyCall::Shared },
        { Request::PropFind, isDesktopClient, "MF", makeClientListing,
          ReplyCall::SharedAndProfile },
    };
}
