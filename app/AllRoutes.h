#pragma once

#include "server/Routes.h"

/// Everything that the programs answer. The order matters: the first row that fits is taken, and
/// the desktop client's listing is a PROPFIND too.
Routes allRoutes();
