#pragma once

#include <QHostAddress>
#include <QString>

/// An address as it stands in a URL: IPv6 in brackets (RFC 3986, section 3.2.2).
inline QString hostPart(const QHostAddress &address)
{
    const bool bracketed = address.protocol() == QAbstractSocket::IPv6Protocol;
    return bracketed ? QLatin1Char('[') + address.toString() + QLatin1Char(']')
                     : address.toString();
}
