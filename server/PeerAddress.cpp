#include "server/PeerAddress.h"

#include <QNetworkInterface>

#include <algorithm>
#include <iterator>

namespace {

constexpr int networkBits = 64; ///< of an IPv6 address

} // namespace

QHostAddress peerOf(const QHostAddress &address)
{
    bool isMapped = false;
    const quint32 plain = address.toIPv4Address(&isMapped);
    if (isMapped)
        return QHostAddress(plain);
    Q_IPV6ADDR bytes = address.toIPv6Address();
    std::fill(std::begin(bytes.c) + networkBits / 8, std::end(bytes.c), quint8(0));
    return QHostAddress(bytes);
}

QHostAddress peerOf(const QHostAddress &address, const QHostAddress &reached)
{
    const QHostAddress peer = peerOf(address);
    const bool isNeighbour = address.isLinkLocal() || peer == peerOf(reached);
    return isNeighbour && peer.protocol() == QAbstractSocket::IPv6Protocol ? address : peer;
}

bool isOwnAddress(const QHostAddress &address)
{
    const QList<QHostAddress> own = QNetworkInterface::allAddresses();
    return std::any_of(own.begin(), own.end(), [&address](const QHostAddress &each) {
        return each.isEqual(address, QHostAddress::ConvertV4MappedToIPv4);
    });
}
