#pragma once

#include "server/Responders.h"

/// The WebDAV methods. They answer every request of their methods, so rows with conditions of
/// their own go in front of these.
ResponderRows davRows();
