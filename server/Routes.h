#pragma once

#include "server/Request.h"

#include <vector>

class Profile;
class Responder;

/// Which operation of a responder answers the request.
enum class ReplyCall { Plain, Shared, SharedAndProfile };

/// Says who answers a method. `server/` picks the first row that fits, so it needs to include no
/// responder of another folder.
struct Route
{
    Request::Method method;
    bool (*applies)(const Request &request); ///< null: every request of the method
    const char *name; ///< object name; a kept responder of this name is used again
    Responder *(*make)(Profile *profile, Request *request);
    ReplyCall call;
};

using Routes = std::vector<Route>;

/// What the server core answers by itself: GET and POST with plain files.
/// Rows of other folders go in front of these.
Routes fileRoutes();
