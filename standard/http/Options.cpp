#include "standard/http/Options.h"

#include "files/Share.h"
#include "standard/http/MethodUse.h"
#include "standard/http/Patch.h"
#include "standard/http/Reserved.h"

#include <algorithm>

namespace standard {

namespace {

bool isAnswered(Method method, const Exchange &exchange, const EntryFacts &found)
{
    const MethodUse *use = useOf(method);
    if (!use || exchange.request().isForServer)
        return true;
    const Access &access = exchange.access();
    return use->fits(found, exchange.path() == access.home)
        && use->isPermitted(access, exchange.path(), found);
}

/// Nothing of what the visitor must not know.
EntryFacts knownFacts(const Exchange &exchange)
{
    const QByteArray &path = exchange.path();
    const bool isKnown =
        exchange.access().may(Right::See, path) || exchange.access().may(Right::Read, path);
    return exchange.share() && isKnown ? exchange.share()->facts(path) : EntryFacts();
}

bool speaksDav(const Routes &routes)
{
    return std::any_of(routes.rows.begin(), routes.rows.end(),
                       [](const Route &route) { return route.method == Method::PropFind; });
}

} // namespace

Field allowField(const Exchange &exchange)
{
    const EntryFacts found = knownFacts(exchange);
    QByteArray methods;
    for (const Route &route : exchange.routes().rows) {
        if (!route.parameter && isFor(route, exchange.path())
            && (route.below || isAnswered(route.method, exchange, found)))
            methods += (methods.isEmpty() ? "" : ", ") + nameOf(route.method);
    }
    return { "Allow", methods };
}

/// Some mounts are for reading alone without class 2, and some editors look for the last field.
void Options::start()
{
    Fields fields{ allowField(exchange) };
    if (speaksDav(exchange.routes())) {
        fields.push_back({ "DAV", "1, 2, 3, sabredav-partialupdate" });
        fields.push_back({ "MS-Author-Via", "DAV" });
    }
    fields.push_back({ "Accept-Ranges", "bytes" });
    fields.push_back({ "Accept-Patch", Patch::contentType });
    exchange.reply(Status::Ok, std::move(fields));
}

} // namespace standard
