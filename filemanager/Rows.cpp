#include "filemanager/Rows.h"

#include "filemanager/ShareDir.h"

namespace {

Response *makeShareDir(Configuration *profile, HTTP_Request *request)
{
    return new ShareDir(profile, request);
}

} // namespace

ResponderRows fileManagerRows()
{
    return {
        { HTTP_Request::Get, nullptr, "SD", makeShareDir, ReplyCall::Shared },
        { HTTP_Request::Post, nullptr, "SD", makeShareDir, ReplyCall::Shared },
    };
}
