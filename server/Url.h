#pragma once

#include <QHostAddress>
#include <QString>

/// An address as it stands in a URL: IPv6 in brackets (RFC 3986, section 3.2.2).
QString hostPart(const QHostAddress &address);

/// Where a server is found: "scheme://host:port".
QString serverUrl(bool tls, const QHostAddress &address, int port);

/// The same as people write it: the scheme's own port is left out.
QString shortServerUrl(bool tls, const QHostAddress &address, int port);
