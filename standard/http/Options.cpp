#include "standard/http/Options.h"

#include "config/Profile.h"
#include "files/Share.h"
#include "standard/http/Patch.h"

#include <algorithm>
#include <array>

namespace standard {

namespace {

/// What a method is of use for. The rest always answers.
struct MethodUse
{
    Method method;
    bool onFile;
    bool onFolder;
    bool onMissing;
    bool onRoot; ///< on what is shared itself
    bool (*isAllowed)(const Profile &profile); ///< null: it takes no right
};

bool mayUpload(const Profile &profile)
{
    return profile.allowsUpload();
}

bool mayDelete(const Profile &profile)
{
    return profile.allowsDelete();
}

/// What is moved goes from where it was.
bool mayMove(const Profile &profile)
{
    return mayUpload(profile) && mayDelete(profile);
}

constexpr std::array<MethodUse, 13> uses{ {
    { Method::Get, true, true, false, true, nullptr },
    { Method::Head, true, true, false, true, nullptr },
    { Method::Post, true, true, true, true, mayUpload },
    { Method::Put, true, false, true, false, mayUpload },
    { Method::Patch, true, false, false, false, mayUpload },
    { Method::Delete, true, true, false, false, mayDelete },
    { Method::MkCol, false, false, true, false, mayUpload },
    { Method::Copy, true, true, false, true, mayUpload },
    { Method::Move, true, true, false, false, mayMove },
    { Method::PropFind, true, true, false, true, nullptr },
    { Method::PropPatch, true, true, false, true, mayUpload },
    { Method::Lock, true, true, true, true, mayUpload },
    { Method::Unlock, true, true, false, true, mayUpload },
} };

bool isOf(const MethodUse &use, const EntryFacts &found, bool isRoot)
{
    if (isRoot)
        return use.onRoot;
    if (!found.exists)
        return use.onMissing;
    return found.folder ? use.onFolder : use.onFile;
}

bool isAnswered(Method method, const Exchange &exchange, const EntryFacts &found)
{
    const bool isRoot = exchange.path().isEmpty();
    const Profile &profile = *exchange.service().profile;
    return std::all_of(uses.begin(), uses.end(), [&](const MethodUse &use) {
        if (use.method != method || exchange.request().isForServer)
            return true;
        return isOf(use, found, isRoot) && (!use.isAllowed || use.isAllowed(profile));
    });
}

bool speaksDav(const Routes &routes)
{
    return std::any_of(routes.rows.begin(), routes.rows.end(),
                       [](const Route &route) { return route.method == Method::PropFind; });
}

} // namespace

Field allowField(const Exchange &exchange)
{
    const Share *share = exchange.share().get();
    const EntryFacts found = share ? share->facts(exchange.path()) : EntryFacts();
    QByteArray methods;
    for (const Route &route : exchange.routes().rows) {
        if (isAnswered(route.method, exchange, found))
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
