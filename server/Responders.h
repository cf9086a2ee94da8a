#pragma once

#include "server/HTTP_Request.h"

#include <vector>

class Configuration;
class Response;

/// Which operation of a responder answers the request.
enum class ReplyCall { Plain, Shared, SharedAndProfile };

/// Says who answers a method. `server/` picks the first row that fits, so it needs to include no
/// responder of another folder.
struct ResponderRow
{
    HTTP_Request::Method method;
    bool (*applies)(const HTTP_Request &request); ///< null: every request of the method
    const char *name; ///< object name; a kept responder of this name is used again
    Response *(*make)(Configuration *profile, HTTP_Request *request);
    ReplyCall call;
};

using ResponderRows = std::vector<ResponderRow>;

/// What the server core answers by itself: GET and POST with plain files.
/// Rows of other folders go in front of these.
ResponderRows baseRows();
