#include "standard/web/Routes.h"

#include "standard/web/OpenUploads.h"
#include "standard/web/Tus.h"
#include "standard/web/UploadMethods.h"

namespace standard {

Routes withUploads(Routes routes)
{
    routes.rows.push_back({ Method::Options, makeHandler<UploadOptions>, tusPath });
    routes.rows.push_back({ Method::Post, makeHandler<UploadCreation>, tusPath });
    routes.rows.push_back({ Method::Head, makeHandler<UploadStatus>, tusPath });
    routes.rows.push_back({ Method::Patch, makeHandler<UploadAppend>, tusPath });
    routes.rows.push_back({ Method::Delete, makeHandler<UploadRemoval>, tusPath });
    routes.uploads = std::make_shared<OpenUploads>();
    return routes;
}

} // namespace standard
