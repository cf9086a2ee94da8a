#include "server/OwnNames.h"

#include "config/Profile.h"
#include "net/Socket.h"
#include "server/PeerAddress.h"

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

Reached Reached::by(const Socket &connection)
{
    return { connection.localAddress(), connection.localPort() };
}

bool isOwnHost(const QString &host, const QHostAddress &address)
{
    QHostAddress called;
    if (called.setAddress(host))
        return called == address || isOwnAddress(called);
    const QString machine = QSysInfo::machineHostName().toLower();
    const QString shortName = machine.section(QLatin1Char('.'), 0, 0);
    return host == QLatin1String(localName)
        || (!machine.isEmpty()
            && (host == machine || host == shortName
                || host == shortName + QLatin1String(multicastDomain)));
}

bool isMeantForUs(const QByteArray &called, bool saidByProxy, const Reached &reached,
                  const ProfileValues &profile)
{
    // Some programs leave the port out.
    const Authority meant = Authority::of(called, reached.port);
    if (profile.names.contains(meant.host))
        return true;
    return (saidByProxy || meant.port == reached.port) && isOwnHost(meant.host, reached.address);
}

void LastName::keep(const QByteArray &called)
{
    name = called;
    end = Clock::now() + nameLasts;
}
