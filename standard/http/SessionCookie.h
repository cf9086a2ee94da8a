#pragma once

#include "standard/http/Request.h"

#include <QByteArray>

namespace standard {

class Exchange;

/// The number of the session that a request brings along, see `LoginSessions`; empty without one.
QByteArray sessionNumber(const Exchange &exchange);

/// Has the browser bring `number` along from now on, until it ends or, of an empty one, no more
/// (RFC 6265).
Field sessionCookie(const Exchange &exchange, const QByteArray &number);

} // namespace standard
