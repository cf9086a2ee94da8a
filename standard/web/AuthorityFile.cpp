#include "standard/web/AuthorityFile.h"

#include "server/Authority.h"
#include "standard/http/Protection.h"

#include <utility>

namespace standard {

void AuthorityFile::start()
{
    const std::optional<AuthorityReply> found = authorityReply(
        exchange.path(), *exchange.service().profile, exchange.request().value("Accept-Language"));
    if (!found)
        return exchange.refuse(Status::NotFound);
    Fields fields{ { "Content-Type", found->contentType },
                   { "Content-Disposition", found->disposition },
                   { "Cache-Control", "no-cache" } };
    addPageProtection(fields);
    exchange.reply(Status::Ok, std::move(fields), found->body);
}

} // namespace standard
