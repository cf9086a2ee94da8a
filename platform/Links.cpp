#include "platform/Links.h"

#include <QFile>
#include <QNetworkInterface>

#include <algorithm>
#include <array>
#include <tuple>

namespace {

// Interface types of the kernel (linux/if_arp.h).
constexpr int etherType = 1;
constexpr int pointToPointType = 512; ///< of dial-up and of some VPNs
constexpr int rawIpType = 519; ///< of modems
constexpr int noHeaderType = 65534; ///< of tunnels, and of modems too

constexpr uint routeIsUp = 1; ///< RTF_UP
constexpr uint routeRejects = 0x200; ///< RTF_REJECT

QByteArray contentOf(const QString &path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

/// Where the values that count stand in a line of a routing table, all in hexadecimal but for the
/// metric of IPv4.
struct RouteColumns
{
    int name;
    int destination;
    int prefix; ///< its length, or the mask: 0 means all
    int flags;
    int metric;
    int metricBase;
    int count;
};

constexpr RouteColumns ipv4Columns{ 0, 1, 7, 3, 6, 10, 11 };
constexpr RouteColumns ipv6Columns{ 9, 0, 1, 8, 5, 16, 10 };

bool isZero(const QByteArray &digits)
{
    return !digits.isEmpty()
        && std::all_of(digits.begin(), digits.end(), [](char c) { return c == '0'; });
}

void addDefaultRoutes(const QByteArray &table, const RouteColumns &at,
                      QMap<QString, quint32> *metrics)
{
    const QList<QByteArray> lines = table.split('\n');
    for (const QByteArray &line : lines) {
        const QList<QByteArray> words = line.simplified().split(' ');
        if (words.size() < at.count || !isZero(words[at.destination]) || !isZero(words[at.prefix]))
            continue;
        bool isNumber = false;
        const uint flags = words[at.flags].toUInt(nullptr, 16);
        const quint32 metric = words[at.metric].toUInt(&isNumber, at.metricBase);
        if (!isNumber || !(flags & routeIsUp) || (flags & routeRejects))
            continue;
        const QString name = QString::fromLocal8Bit(words[at.name]);
        metrics->insert(name, std::min(metric, metrics->value(name, metric)));
    }
}

int orderOf(LinkKind kind)
{
    constexpr std::array order{ LinkKind::Cable, LinkKind::Wireless, LinkKind::Unknown,
                                LinkKind::Vpn,   LinkKind::Mobile,   LinkKind::Container };
    return int(std::find(order.begin(), order.end(), kind) - order.begin());
}

/// The less, the better.
auto rankOf(const LinkedAddress &address)
{
    const Link &link = address.link;
    return std::make_tuple(!address.isReachable(), !link.defaultRoute,
                           link.defaultRoute.value_or(0), orderOf(link.kind));
}

} // namespace

bool LinkedAddress::isReachable() const
{
    if (!link.carries || ip.isLinkLocal())
        return false;
    const bool keepsOut = link.kind == LinkKind::Container || link.kind == LinkKind::Mobile;
    return !keepsOut || link.defaultRoute.has_value();
}

QList<LinkedAddress> bestFirst(QList<LinkedAddress> addresses)
{
    std::stable_sort(
        addresses.begin(), addresses.end(),
        [](const LinkedAddress &a, const LinkedAddress &b) { return rankOf(a) < rankOf(b); });
    return addresses;
}

QMap<QString, quint32> defaultRoutes(const QByteArray &route, const QByteArray &ipv6Route)
{
    QMap<QString, quint32> metrics;
    addDefaultRoutes(route, ipv4Columns, &metrics);
    // By IPv4 people get the address; the other table counts where that one says nothing.
    QMap<QString, quint32> others;
    addDefaultRoutes(ipv6Route, ipv6Columns, &others);
    for (auto at = others.begin(); at != others.end(); ++at) {
        if (!metrics.contains(at.key()))
            metrics.insert(at.key(), at.value());
    }
    return metrics;
}

LinkKind linkKind(const QString &folder)
{
    const auto has = [&folder](const char *name) {
        return QFile::exists(folder + QLatin1Char('/') + QLatin1String(name));
    };
    if (has("wireless") || has("phy80211"))
        return LinkKind::Wireless;
    if (has("bridge"))
        return LinkKind::Container;
    if (has("tun_flags"))
        return LinkKind::Vpn;
    // What stands for a piece of hardware has it as its device.
    const bool isHardware = has("device");
    switch (contentOf(folder + QLatin1String("/type")).trimmed().toInt()) {
    case etherType:
        return isHardware ? LinkKind::Cable : LinkKind::Container;
    case rawIpType:
        return LinkKind::Mobile;
    case pointToPointType:
    case noHeaderType:
        return isHardware ? LinkKind::Mobile : LinkKind::Vpn;
    default:
        return LinkKind::Unknown;
    }
}

QList<LinkedAddress> linked(const QList<QHostAddress> &addresses)
{
    const auto routes = defaultRoutes(contentOf(QStringLiteral("/proc/net/route")),
                                      contentOf(QStringLiteral("/proc/net/ipv6_route")));
    const QList<QNetworkInterface> interfaces = QNetworkInterface::allInterfaces();
    const auto linkOf = [&](const QHostAddress &ip) {
        for (const QNetworkInterface &interface : interfaces) {
            const QList<QNetworkAddressEntry> entries = interface.addressEntries();
            if (std::none_of(entries.begin(), entries.end(),
                             [&ip](const auto &entry) { return entry.ip() == ip; }))
                continue;
            const QString name = interface.name();
            Link link{ linkKind(QLatin1String("/sys/class/net/") + name),
                       interface.flags().testFlag(QNetworkInterface::IsRunning) };
            if (const auto route = routes.constFind(name); route != routes.constEnd())
                link.defaultRoute = *route;
            return link;
        }
        return Link();
    };
    QList<LinkedAddress> all;
    for (const QHostAddress &ip : addresses)
        all.append({ ip, linkOf(ip) });
    return all;
}
