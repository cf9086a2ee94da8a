#include "standard/http/Forwarded.h"

#include "config/Profile.h"
#include "config/ProfileText.h"
#include "server/TrustedProxy.h"
#include "standard/http/Request.h"

namespace standard {

namespace {

/// "192.0.2.1", "192.0.2.1:80", "2001:db8::1", "[2001:db8::1]:80"; null for anything else.
QHostAddress addressOf(const QByteArray &item)
{
    QByteArray text = item;
    if (text.startsWith('['))
        text = text.mid(1, text.indexOf(']') - 1);
    else if (text.count(':') == 1)
        text.truncate(text.indexOf(':'));
    return QHostAddress(QString::fromLatin1(text));
}

/// Each proxy adds the one that it heard from at the end. What stands before the first that nobody
/// trusts may be made up.
QHostAddress forwardedFor(const Request &request, const QHostAddress &peer,
                          const ProfileValues &profile)
{
    const std::vector<QByteArray> items = listItems(request.value("X-Forwarded-For"));
    QHostAddress visitor = peer;
    for (auto item = items.rbegin(); item != items.rend(); ++item) {
        const QHostAddress before = addressOf(*item);
        if (before.isNull())
            break;
        visitor = before;
        if (!isTrustedProxy(visitor, profile))
            break;
    }
    return visitor;
}

/// What the proxy itself wrote: it may have put it behind what was there.
QByteArray lastOf(const Request &request, const char *name)
{
    const std::vector<QByteArray> items = listItems(request.value(name));
    return items.empty() ? QByteArray() : items.back();
}

QByteArray authorityOf(const Request &request)
{
    const QByteArray host = lastOf(request, "X-Forwarded-Host");
    const QByteArray port = lastOf(request, "X-Forwarded-Port");
    const bool hasPort = host.lastIndexOf(':') > host.lastIndexOf(']');
    return host.isEmpty() || hasPort || port.isEmpty() ? host : host + ':' + port;
}

std::optional<bool> encryptionOf(const Request &request)
{
    const QByteArray scheme = lastOf(request, "X-Forwarded-Proto").toLower();
    return scheme == "https" || scheme == "http" ? std::optional(scheme == "https") : std::nullopt;
}

/// In our own spelling, so that it is harmless wherever it is written.
QByteArray respelled(const QByteArray &given)
{
    const std::optional<QByteArray> prefix = pathPrefixOf(given);
    const std::optional<QByteArray> decoded = prefix ? percentDecoded(*prefix) : std::nullopt;
    return decoded && !decoded->startsWith("//") ? encodedPath(*decoded) : QByteArray();
}

} // namespace

std::optional<QByteArray> Forwarded::inside(const QByteArray &path) const
{
    const QByteArray decoded = QByteArray::fromPercentEncoding(prefix);
    const bool isBelow = path.startsWith(decoded)
        && (path.size() == decoded.size() || decoded.isEmpty() || path[decoded.size()] == '/');
    return isBelow ? std::optional(path.mid(decoded.size())) : std::nullopt;
}

Forwarded takeForwarded(Request &request, const QHostAddress &peer, const ProfileValues &profile)
{
    Forwarded found;
    found.visitor = peer;
    if (!isTrustedProxy(peer, profile))
        return found;
    found.visitor = forwardedFor(request, peer, profile);
    found.authority = authorityOf(request);
    found.encrypted = encryptionOf(request);
    found.prefix = respelled(lastOf(request, "X-Forwarded-Prefix"));
    if (!found.prefix.isEmpty() || request.isForServer)
        return found;
    found.prefix = respelled(profile.pathPrefix);
    if (const std::optional<QByteArray> path = found.inside(request.target.path))
        request.target.path = *path;
    else
        found.prefix.clear();
    return found;
}

} // namespace standard
