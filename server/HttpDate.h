#pragma once

#include <QByteArray>
#include <QtGlobal>

#include <optional>

/// A time as HTTP writes it: "Sun, 06 Nov 1994 08:49:37 GMT" (RFC 9110, section 5.6.7).
QByteArray httpDate(qint64 secondsSinceEpoch);

/// Reads that form and the two obsolete ones. Seconds since 1970-01-01 UTC; none when it is no
/// date.
std::optional<qint64> parseHttpDate(const QByteArray &text);
