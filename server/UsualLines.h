#pragma once

#include <QByteArray>

/// The lines that tell of ourselves in the head of a reply (RFC 9110, sections 6.6.1 and 10.2.4):
/// Date, with the time now, and Server, each ended by CR LF.
const QByteArray &usualLines();
