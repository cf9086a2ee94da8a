#pragma once

#include <QByteArray>

#include <optional>

namespace standard {

class Exchange;

/// What the visitor calls this server, host and port: as a trusted proxy says, else as the request
/// does. None in requests that don't say it (HTTP/1.0).
std::optional<QByteArray> calledName(const Exchange &exchange);

/// Whether the request was encrypted when it left its visitor, as far as that is known.
bool isEncrypted(const Exchange &exchange);

/// Whether `called` is a name or address of ours, see `::isMeantForUs`.
bool isMeantForUs(const QByteArray &called, const Exchange &exchange);

/// Whether `authority`, the host and port of a URL, means this server: it is what the request, or
/// a trusted proxy, calls it, or a name or address of ours.
bool isOwnName(const QByteArray &authority, const Exchange &exchange);

} // namespace standard
