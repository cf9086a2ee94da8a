#pragma once

#include "standard/http/Routes.h"

namespace standard {

/// `routes` with resumable uploads, and those of many small files at once.
Routes withUploads(Routes routes);

/// `routes` with a DELETE that can be taken back.
Routes withUndo(Routes routes);

/// `routes` with a text that visitors share.
Routes withPad(Routes routes);

/// `routes` with archives of folders.
Routes withArchives(Routes routes);

/// `routes` with previews of pictures.
Routes withPreviews(Routes routes);

/// `routes` with what pages need to know of their visitors.
Routes withVisitors(Routes routes);

/// `routes` with uploads by forms. To be added behind other routes for POST to folders.
Routes withForms(Routes routes);

/// `routes` with a page where browsers log in, and out.
Routes withLogins(Routes routes);

/// `routes` with the files of the web application, as far as it was built in.
Routes withApp(Routes routes);

/// `routes` with what visitors need to come to trust the server.
Routes withAuthority(Routes routes);

/// `routes` with all of these.
Routes withWeb(Routes routes);

} // namespace standard
