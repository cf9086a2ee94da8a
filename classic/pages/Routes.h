#pragma once

#include "server/Routes.h"

/// What the browser file manager answers. Goes in front of the base rows.
Routes pageRoutes();
