#pragma once

#include "standard/http/Routes.h"

namespace standard {

/// `routes` with resumable uploads.
Routes withUploads(Routes routes);

} // namespace standard
