#pragma once

#include <QByteArray>
#include <QHostAddress>

#include <optional>

struct ProfileValues;

namespace standard {

struct Request;

/// How a request left its visitor, before the proxies in front of this server had it. Only the
/// word of those counts that the profile names: anybody can write such lines.
struct Forwarded
{
    QHostAddress visitor; ///< the nearest address that is no trusted proxy's
    QByteArray authority; ///< host and port that the visitor called; empty when that isn't told
    std::optional<bool> encrypted; ///< as it left the visitor; none when that isn't told
    QByteArray prefix; ///< begins all paths outside; percent-encoded, without a "/" at its end

    /// A path of outside as it is called here, both decoded. Of the prefix alone nothing is left.
    /// None when it doesn't begin with the prefix, and so belongs to somebody else.
    std::optional<QByteArray> inside(const QByteArray &path) const;
};

/// Reads X-Forwarded-For, -Host, -Port, -Proto and -Prefix of what `peer` sends. A prefix in
/// these lines was taken off by the proxy; the profile's was left on, and is taken off the
/// request's target here.
Forwarded takeForwarded(Request &request, const QHostAddress &peer, const ProfileValues &profile);

} // namespace standard
