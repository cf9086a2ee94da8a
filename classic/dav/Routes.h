#pragma once

#include "server/Routes.h"

/// The WebDAV methods. They answer every request of their methods, so rows with conditions of
/// their own go in front of these.
Routes davRoutes();
