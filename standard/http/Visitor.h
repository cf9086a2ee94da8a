#pragma once

#include <QByteArray>

namespace standard {

class Exchange;

/// Whom the locks and uploads of a request count for: who has logged in, from any address; else the
/// address.
QByteArray visitorOf(const Exchange &exchange);

} // namespace standard
