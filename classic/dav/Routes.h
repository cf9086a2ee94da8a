#pragma once

#include "classic/http/Routes.h"

/// The WebDAV methods. They answer every request of their methods, so routes with conditions of
/// their own go in front of these.
Routes davRoutes();
