#include "standard/web/AppFileReply.h"

#include "files/Path.h"
#include "standard/http/AppFiles.h"
#include "standard/http/Conditions.h"
#include "standard/http/ContentType.h"
#include "standard/http/Exchange.h"
#include "standard/http/Protection.h"

#include <utility>

namespace standard {

void AppFileReply::start()
{
    const Request &request = exchange.request();
    const QByteArray name = pathBelow(exchange.path(), appPath);
    const std::optional<AppFile> file = appFile(name, request.value("Accept-Encoding"));
    if (!file)
        return exchange.refuse(Status::NotFound);
    const QByteArray tag =
        '"' + name + (file->encoding.isEmpty() ? "" : '.' + file->encoding) + '"';
    Fields fields{ { "ETag", tag },
                   { "Cache-Control", "public, max-age=31536000, immutable" },
                   { "Vary", "Accept-Encoding" } };
    const Verdict verdict = judge(request, { true, tag });
    if (verdict == Verdict::NotModified)
        return exchange.reply(Status::NotModified, std::move(fields));
    if (verdict == Verdict::Failed)
        return exchange.refuse(Status::PreconditionFailed);
    fields.push_back({ "Content-Type", contentType(name) });
    if (!file->encoding.isEmpty())
        fields.push_back({ "Content-Encoding", file->encoding });
    addPageProtection(fields);
    exchange.reply(Status::Ok, std::move(fields), file->content);
}

} // namespace standard
