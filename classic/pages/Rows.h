#pragma once

#include "server/Responders.h"

/// What the browser file manager answers. Goes in front of the base rows.
ResponderRows fileManagerRows();
