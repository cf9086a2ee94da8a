#include "server/OwnNames.h"

#include "config/Profile.h"
#include "net/Socket.h"
#include "server/PeerAddress.h"

#include <QHostAddress>
#include <QSysInfo>
#include <QUrl>

namespace {

constexpr auto localName = "localhost";
constexpr std::chrono::seconds nameLasts(1);
constexpr auto multicastDomain = ".local"; ///< RFC 6762

} // namespace

Authority Authority::of(const QByteArray &text, int usualPort)
{
    QUrl url;
    url.setAuthority(QString::fromUtf8(text));
    return { url.host(QUrl::FullyEncoded), url.port(usualPort) };
}

bool isOwnHost(const QString &host, const Socket &connection)
{
    QHostAddress address;
    if (address.setAddress(host))
        return address == connection.localAddress() || isOwnAddress(address);
    const QString machine = QSysInfo::machineHostName().toLower();
    const QString shortName = machine.section(QLatin1Char('.'), 0, 0);
    return host == QLatin1String(localName)
        || (!machine.isEmpty()
            && (host == machine || host == shortName
                || host == shortName + QLatin1String(multicastDomain)));
}

bool isMeantForUs(const QByteArray &called, bool saidByProxy, const Socket &connection,
                  const ProfileValues &profile)
{
    const int port = connection.localPort();
    // Some programs leave the port out.
    const Authority meant = Authority::of(called, port);
    if (profile.names.contains(meant.host))
        return true;
    return (saidByProxy || meant.port == port) && isOwnHost(meant.host, connection);
}

void LastName::keep(const QByteArray &called)
{
    name = called;
    end = Clock::now() + nameLasts;
}
