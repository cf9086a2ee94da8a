#include "classic/pages/Rows.h"

#include "classic/listing/Mfind.h"
#include "classic/pages/ShareDir.h"

namespace {

Response *makeShareDir(Configuration *profile, HTTP_Request *request)
{
    return new ShareDir(profile, request);
}

Response *makeMfind(Configuration * /*profile*/, HTTP_Request *request)
{
    return new Mfind(request);
}

/// The desktop client; WebDAV clients ask with the same method.
bool isDesktopClient(const HTTP_Request &request)
{
    return request.userAgent == "mc";
}

} // namespace

ResponderRows fileManagerRows()
{
    return {
        { HTTP_Request::Get, nullptr, "SD", makeShareDir, ReplyCall::Shared },
        { HTTP_Request::Post, nullptr, "SD", makeShareDir, ReplyCall::Shared },
        { HTTP_Request::PropFind, isDesktopClient, "MF", makeMfind, ReplyCall::SharedAndProfile },
    };
}
