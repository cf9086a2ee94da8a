#pragma once

#include <QByteArray>

namespace standard {

class Exchange;

/// Whom the locks of a request count for: who has logged in, from any address; else the address.
QByteArray visitorOf(const Exchange &exchange);

/// Whom its uploads are counted for: the same, but addresses that are counted as one with the
/// connections, too.
QByteArray peerNameOf(const Exchange &exchange);

} // namespace standard
