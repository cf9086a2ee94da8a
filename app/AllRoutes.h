#pragma once

#include "classic/http/Routes.h"

/// Everything that the classic face answers. The order matters: the first route that fits is taken,
/// and the desktop client's listing is a PROPFIND too.
Routes allRoutes();
