#include "server/CrossSite.h"

#include <algorithm>
#include <array>

namespace {

/// Of pages; programs and the extensions of browsers have schemes of their own.
struct PageScheme
{
    const char *name;
    const char *port; ///< that may be left out
    bool reachesEncrypted; ///< a page of our own may have it where this server encrypts
};

constexpr std::array pageSchemes{
    PageScheme{ "http", ":80", false },
    PageScheme{ "https", ":443", true },
    PageScheme{ "file", "", false },
};

QByteArray withoutUsualPort(QByteArray authority, const QByteArray &port)
{
    authority = authority.toLower();
    if (!port.isEmpty() && authority.endsWith(port))
        authority.chop(port.size());
    return authority;
}

/// Whether a page has this origin (RFC 6454, section 7) that did not come from `host`.
bool isOfOtherPage(const QByteArray &origin, const QByteArray &host, bool encrypted)
{
    const int end = int(origin.indexOf("://"));
    // "null" is that of pages which nobody may know.
    if (end < 0)
        return origin.toLower() != host.toLower();
    const QByteArray scheme = origin.left(end).toLower();
    const auto *row =
        std::find_if(pageSchemes.begin(), pageSchemes.end(),
                     [&scheme](const PageScheme &each) { return scheme == each.name; });
    if (row == pageSchemes.end())
        return false;
    return (encrypted && !row->reachesEncrypted)
        || withoutUsualPort(origin.mid(end + 3), row->port) != withoutUsualPort(host, row->port);
}

} // namespace

bool isCrossSite(const QByteArray &fetchSite, const QByteArray &origin, const QByteArray &host,
                 bool encrypted)
{
    // Browsers don't let pages write these lines. A proxy may have changed the Host, but what the
    // browser itself calls its own site is.
    if (fetchSite == "same-origin" || fetchSite == "none")
        return false;
    if (fetchSite == "cross-site" || fetchSite == "same-site")
        return true;
    return !origin.isEmpty() && isOfOtherPage(origin, host, encrypted);
}
