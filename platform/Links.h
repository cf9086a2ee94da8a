#pragma once

#include <QByteArray>
#include <QHostAddress>
#include <QList>
#include <QMap>
#include <QString>

#include <optional>

/// What a network interface is to the people who use it.
enum class LinkKind { Unknown, Cable, Wireless, Mobile, Vpn, Container };

/// What the system says of a network interface.
struct Link
{
    LinkKind kind = LinkKind::Unknown;
    bool carries = true; ///< it is connected to something
    std::optional<quint32> defaultRoute = {}; ///< its metric, when what has no other way goes here
};

/// An address of this computer, and how it is reached.
struct LinkedAddress
{
    QHostAddress ip;
    Link link;

    /// Whether other devices are likely to reach it. Nobody does without a connection; containers
    /// and networks of mobile phones keep others out, and self-assigned addresses (RFC 3927) come
    /// up where there is no network.
    bool isReachable() const;
};

/// The same addresses, those first that others reach best: by the default route, then cable and
/// Wi-Fi, then the rest. What stands equal keeps its order.
QList<LinkedAddress> bestFirst(QList<LinkedAddress> addresses);

/// The metrics of the default routes by the names of their interfaces, out of the content of
/// /proc/net/route and /proc/net/ipv6_route. Lines that are no routes are passed over.
QMap<QString, quint32> defaultRoutes(const QByteArray &route, const QByteArray &ipv6Route);

/// What kind of interface `folder` describes, one of /sys/class/net.
LinkKind linkKind(const QString &folder);

/// Where the system has these addresses now. Of one that it does not have nothing is known.
QList<LinkedAddress> linked(const QList<QHostAddress> &addresses);
