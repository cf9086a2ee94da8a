#pragma once

#include <QByteArray>

#include <optional>

namespace standard {

class Exchange;

/// What the visitor calls this server, host and port: as a trusted proxy says, else as the request
/// does. None in requests that don't say it (HTTP/1.0).
std::optional<QByteArray> calledName(const Exchange &exchange);

/// Whether `called`, what the visitor calls this server, is a name of the machine or the profile,
/// or an address of the machine. A browser that was led here by another name is about to be
/// tricked: the page that has this name could read whatever the browser gets. Ports count unless a
/// proxy or the profile named the host.
bool isMeantForUs(const QByteArray &called, const Exchange &exchange);

/// Whether `authority`, the host and port of a URL, means this server: it is what the request, or
/// a trusted proxy, calls it, or a name or address as above.
bool isOwnName(const QByteArray &authority, const Exchange &exchange);

} // namespace standard
