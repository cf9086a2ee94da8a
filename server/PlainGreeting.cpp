#include "server/PlainGreeting.h"

#include "config/Profile.h"
#include "server/Authority.h"
#include "server/OwnNames.h"
#include "server/UsualLines.h"

#include <QList>

#include <algorithm>

namespace {

/// The value of the first field of this name in lower case.
QByteArray fieldOf(const QList<QByteArray> &lines, const QByteArray &name)
{
    for (const QByteArray &line : lines) {
        const int colon = int(line.indexOf(':'));
        if (colon > 0 && line.left(colon).toLower() == name)
            return line.mid(colon + 1).trimmed();
    }
    return {};
}

/// Whether it is written as a host with or without a port, and means nothing else in a URL.
bool isAuthority(const QByteArray &host)
{
    const auto fits = [](char c) {
        return (c >= '0' && c <= '9') || (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z')
            || QByteArray("-.:[]").contains(c);
    };
    return !host.isEmpty() && std::all_of(host.begin(), host.end(), fits);
}

/// Whether it can stand in a line of ours as it came.
bool isTarget(const QByteArray &text)
{
    return text.startsWith('/')
        && std::all_of(text.begin(), text.end(), [](char c) { return c > ' ' && c < '\x7f'; });
}

/// `lines` are further ones of its head.
QByteArray reply(const QByteArray &status, const QByteArray &lines, const QByteArray &body)
{
    return "HTTP/1.1 " + status + "\r\n" + usualLines() + lines + "Content-Length: "
        + QByteArray::number(body.size()) + "\r\nConnection: close\r\n\r\n" + body;
}

/// Whether it calls this server by a name of somebody else's, which counts when the profile is
/// strict. One without a name is no browser's.
bool isMisdirected(const QByteArray &host, const Reached &reached, const Profile &profile)
{
    return profile.isStrict() && !host.isEmpty() && !isMeantForUs(host, false, reached, profile);
}

} // namespace

QByteArray answerToPlain(const QByteArray &head, const Reached &reached, const Profile &profile)
{
    const QList<QByteArray> lines = head.split('\n');
    const QList<QByteArray> first = lines.constFirst().trimmed().split(' ');
    const bool isKnown = first.size() == 3 && (first[0] == "GET" || first[0] == "HEAD")
        && isTarget(first[1]) && first[2].startsWith("HTTP/1.");
    if (!isKnown)
        return {};
    const QByteArray languages = fieldOf(lines.mid(1), "accept-language");
    const auto found = authorityReply(first[1].mid(1), profile, languages);
    if (!found && profile.faceMode == FaceClassic)
        return {};
    const QByteArray host = fieldOf(lines.mid(1), "host");
    if (isMisdirected(host, reached, profile))
        return reply("421 Misdirected Request", {}, {});
    if (found) {
        const QByteArray whole =
            reply("200 OK",
                  "Content-Type: " + found->contentType + "\r\nContent-Disposition: "
                      + found->disposition + "\r\n" + authorityProtection,
                  found->body);
        return first[0] == "GET" ? whole : whole.chopped(found->body.size());
    }
    if (!isAuthority(host))
        return {};
    // Not for good: encryption may be switched off again.
    return reply("307 Temporary Redirect", "Location: https://" + host + first[1] + "\r\n", {});
}
