#pragma once

#include "standard/http/Routes.h"

namespace standard {

/// `routes` with the methods of WebDAV, and its locks kept by all of them.
Routes withDav(Routes routes);

} // namespace standard
