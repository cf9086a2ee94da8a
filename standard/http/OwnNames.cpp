#include "standard/http/OwnNames.h"

#include "config/Profile.h"
#include "net/Socket.h"
#include "standard/http/Exchange.h"

#include <QHostAddress>
#include <QNetworkInterface>
#include <QUrl>

namespace standard {

namespace {

constexpr auto localName = "localhost";

/// A host, without the brackets of IPv6, and a port.
struct Authority
{
    QString host;
    int port = 0;
};

/// The port may be left out: it is that of the scheme then.
Authority parsed(const QByteArray &text, int usualPort)
{
    QUrl url;
    url.setAuthority(QString::fromUtf8(text));
    return { url.host(), url.port(usualPort) };
}

bool isOwnAddress(const QHostAddress &address, const Exchange &exchange)
{
    return address == exchange.channel().connection().localAddress()
        || QNetworkInterface::allAddresses().contains(address);
}

} // namespace

bool isOwnName(const QByteArray &authority, const Exchange &exchange)
{
    const Request &request = exchange.request();
    const bool encrypted =
        request.outside.encrypted.value_or(exchange.channel().connection().isEncrypted());
    const int usualPort = encrypted ? httpsPort : httpPort;
    const Authority meant = parsed(authority, usualPort);
    if (meant.host.isEmpty())
        return false;
    const bool isAbsolute = !request.target.authority.isEmpty();
    const QByteArray asked = isAbsolute ? request.target.authority : request.value("Host");
    for (const QByteArray &name : { request.outside.authority, asked }) {
        const Authority called = parsed(name, usualPort);
        if (meant.host == called.host && meant.port == called.port)
            return true;
    }
    if (meant.port != exchange.channel().connection().localPort())
        return false;
    QHostAddress address;
    return meant.host == QLatin1String(localName)
        || (address.setAddress(meant.host) && isOwnAddress(address, exchange));
}

} // namespace standard
