#include "server/PlainGreeting.h"

#include "config/Profile.h"
#include "server/Authority.h"

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

QByteArray reply(const QByteArray &head, const QByteArray &body)
{
    return "HTTP/1.1 " + head + "\r\nContent-Length: " + QByteArray::number(body.size())
        + "\r\nConnection: close\r\n\r\n" + body;
}

} // namespace

QByteArray answerToPlain(const QByteArray &head, const Profile &profile)
{
    const QList<QByteArray> lines = head.split('\n');
    const QList<QByteArray> first = lines.constFirst().trimmed().split(' ');
    const bool isKnown = first.size() == 3 && (first[0] == "GET" || first[0] == "HEAD")
        && isTarget(first[1]) && first[2].startsWith("HTTP/1.");
    if (!isKnown)
        return {};
    const QByteArray languages = fieldOf(lines.mid(1), "accept-language");
    if (const auto found = authorityReply(first[1].mid(1), profile, languages)) {
        return reply("200 OK\r\nContent-Type: " + found->contentType + "\r\nContent-Disposition: "
                         + found->disposition + "\r\nX-Content-Type-Options: nosniff",
                     first[0] == "GET" ? found->body : QByteArray());
    }
    const QByteArray host = fieldOf(lines.mid(1), "host");
    if (profile.faceMode == FaceClassic || !isAuthority(host))
        return {};
    // Not for good: encryption may be switched off again.
    return reply("307 Temporary Redirect\r\nLocation: https://" + host + first[1], {});
}
