#pragma once

#include "classic/http/Routes.h"

/// The listing of the desktop client. Goes in front of the WebDAV methods, one of which it asks
/// with.
Routes listingRoutes();
