#include "standard/http/OwnNames.h"

#include "config/Profile.h"
#include "net/Socket.h"
#include "server/PeerAddress.h"
#include "standard/http/Exchange.h"

#include <QHostAddress>
#include <QSysInfo>
#include <QUrl>

namespace standard {

namespace {

constexpr auto localName = "localhost";
constexpr auto multicastDomain = ".local"; ///< RFC 6762

/// A host, without the brackets of IPv6, and a port.
struct Authority
{
    QString host;
    int port = 0;
};

/// The port may be left out.
Authority parsed(const QByteArray &text, int usualPort)
{
    QUrl url;
    url.setAuthority(QString::fromUtf8(text));
    return { url.host(QUrl::FullyEncoded), url.port(usualPort) };
}

bool isOwnHost(const QString &host, const Exchange &exchange)
{
    QHostAddress address;
    if (address.setAddress(host))
        return address == exchange.channel().connection().localAddress() || isOwnAddress(address);
    const QString machine = QSysInfo::machineHostName().toLower();
    const QString shortName = machine.section(QLatin1Char('.'), 0, 0);
    return host == QLatin1String(localName)
        || (!machine.isEmpty()
            && (host == machine || host == shortName
                || host == shortName + QLatin1String(multicastDomain)));
}

bool isNamedByProfile(const QString &host, const Exchange &exchange)
{
    return exchange.service().profile->names.contains(host);
}

} // namespace

std::optional<QByteArray> calledName(const Exchange &exchange)
{
    const Request &request = exchange.request();
    if (!request.outside.authority.isEmpty())
        return request.outside.authority;
    if (!request.target.authority.isEmpty())
        return request.target.authority;
    return request.field("Host");
}

bool isMeantForUs(const QByteArray &called, const Exchange &exchange)
{
    const int port = exchange.channel().connection().localPort();
    // Some programs leave the port out.
    const Authority meant = parsed(called, port);
    if (isNamedByProfile(meant.host, exchange))
        return true;
    const bool isForwarded = !exchange.request().outside.authority.isEmpty();
    return (isForwarded || meant.port == port) && isOwnHost(meant.host, exchange);
}

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
    return isNamedByProfile(meant.host, exchange)
        || (meant.port == exchange.channel().connection().localPort()
            && isOwnHost(meant.host, exchange));
}

} // namespace standard
