#pragma once

#include <QByteArray>

/// Whether the program that sends this User-Agent (RFC 9110, 10.1.5) is known to need answers as
/// the RFCs say. Told by the names of its products; comments in brackets don't count.
bool needsStandardFace(const QByteArray &userAgent);
