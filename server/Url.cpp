#include "server/Url.h"

#include "config/Profile.h"

namespace {

QString withoutPort(bool tls, const QHostAddress &address)
{
    return (tls ? QLatin1String("https://") : QLatin1String("http://")) + hostPart(address);
}

} // namespace

QString hostPart(const QHostAddress &address)
{
    const bool bracketed = address.protocol() == QAbstractSocket::IPv6Protocol;
    return bracketed ? QLatin1Char('[') + address.toString() + QLatin1Char(']')
                     : address.toString();
}

QString serverUrl(bool tls, const QHostAddress &address, int port)
{
    return withoutPort(tls, address) + QLatin1Char(':') + QString::number(port);
}

QString shortServerUrl(bool tls, const QHostAddress &address, int port)
{
    const bool schemesOwn = port == (tls ? httpsPort : httpPort);
    return schemesOwn ? withoutPort(tls, address) : serverUrl(tls, address, port);
}
