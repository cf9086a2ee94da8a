#pragma once

#include "classic/http/Routes.h"

/// What the browser file manager answers. Goes in front of `fileRoutes`.
Routes pageRoutes();
