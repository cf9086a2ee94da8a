#pragma once

#include <QByteArray>

namespace standard {

class Exchange;

/// Whether `authority`, the host and port of a URL, means this server: it is what the request, or
/// a trusted proxy, calls it, or an address of this machine with the server's port.
bool isOwnName(const QByteArray &authority, const Exchange &exchange);

} // namespace standard
