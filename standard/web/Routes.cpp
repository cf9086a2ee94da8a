#include "standard/web/Routes.h"

#include "files/FileSums.h"
#include "server/Authority.h"
#include "standard/http/AppFiles.h"
#include "standard/http/LoginPage.h"
#include "standard/web/AppFileReply.h"
#include "standard/web/Archive.h"
#include "standard/web/AuthorityFile.h"
#include "standard/web/FormUpload.h"
#include "standard/web/LoginMethods.h"
#include "standard/web/OpenUploads.h"
#include "standard/web/PadMethods.h"
#include "standard/web/PreviewReply.h"
#include "standard/web/RemovedEntries.h"
#include "standard/web/Tus.h"
#include "standard/web/UndoMethods.h"
#include "standard/web/UploadBundle.h"
#include "standard/web/UploadMethods.h"
#include "standard/web/VisitorReply.h"

#include <utility>

namespace standard {

Routes withUploads(Routes routes)
{
    routes.rows.push_back({ Method::Options, makeHandler<UploadOptions>, tusPath });
    routes.rows.push_back({ Method::Post, makeHandler<UploadCreation>, tusPath });
    routes.rows.push_back({ Method::Head, makeHandler<UploadStatus>, tusPath });
    routes.rows.push_back({ Method::Patch, makeHandler<UploadAppend>, tusPath });
    routes.rows.push_back({ Method::Delete, makeHandler<UploadRemoval>, tusPath });
    routes.rows.push_back({ Method::Post, makeHandler<UploadBundle>, bundlePath });
    routes.uploads = std::make_shared<OpenUploads>();
    return routes;
}

Routes withUndo(Routes routes)
{
    for (Route &route : routes.rows) {
        if (route.method == Method::Delete && !route.below)
            route.make = makeHandler<UndoableDelete>;
    }
    routes.rows.push_back({ Method::Post, makeHandler<Undo>, undoPath });
    routes.removed = std::make_shared<RemovedEntries>();
    return routes;
}

Routes withPad(Routes routes)
{
    routes.rows.push_back({ Method::Get, makeHandler<PadReading>, padPath });
    routes.rows.push_back({ Method::Head, makeHandler<PadReading>, padPath });
    routes.rows.push_back({ Method::Put, makeHandler<PadWriting>, padPath });
    return routes;
}

/// In front of the folders that they are of.
Routes withArchives(Routes routes)
{
    for (const Method method : { Method::Get, Method::Head, Method::Post })
        routes.rows.insert(routes.rows.begin(),
                           { method, makeHandler<Archive>, nullptr, false, Archive::parameter });
    routes.sums = std::make_shared<FileSums>();
    return routes;
}

/// In front of the files that they are of.
Routes withPreviews(Routes routes)
{
    for (const Method method : { Method::Get, Method::Head })
        routes.rows.insert(
            routes.rows.begin(),
            { method, makeHandler<PreviewReply>, nullptr, false, PreviewReply::parameter });
    return routes;
}

Routes withVisitors(Routes routes)
{
    for (const Method method : { Method::Get, Method::Head })
        routes.rows.push_back({ method, makeHandler<VisitorReply>, visitorPath });
    return routes;
}

Routes withForms(Routes routes)
{
    routes.rows.push_back({ Method::Post, makeHandler<FormUpload> });
    return routes;
}

Routes withLogins(Routes routes)
{
    routes.rows.push_back({ Method::Get, makeHandler<LoginForm>, loginPath, true });
    routes.rows.push_back({ Method::Head, makeHandler<LoginForm>, loginPath, true });
    routes.rows.push_back({ Method::Post, makeHandler<LogIn>, loginPath, true });
    routes.rows.push_back({ Method::Post, makeHandler<LogOut>, logOutPath, true });
    return routes;
}

Routes withApp(Routes routes)
{
    for (const Method method : { Method::Get, Method::Head })
        routes.rows.push_back({ method, makeHandler<AppFileReply>, appPath, true });
    return routes;
}

Routes withAuthority(Routes routes)
{
    for (const char *path : { authorityPath, authorityPagePath }) {
        for (const Method method : { Method::Get, Method::Head })
            routes.rows.push_back({ method, makeHandler<AuthorityFile>, path, true });
    }
    return routes;
}

Routes withWeb(Routes routes)
{
    for (const auto with : { withUploads, withArchives, withPreviews, withUndo, withPad,
                             withVisitors, withLogins, withAuthority, withApp, withForms })
        routes = with(std::move(routes));
    return routes;
}

} // namespace standard
