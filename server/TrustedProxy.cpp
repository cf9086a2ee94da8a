#include "server/TrustedProxy.h"

#include "config/Profile.h"

#include <QHostAddress>

#include <algorithm>

bool isTrustedProxy(const QHostAddress &address, const ProfileValues &profile)
{
    return std::any_of(profile.trustedProxies.begin(), profile.trustedProxies.end(),
                       [&address](const QString &named) {
                           return address.isEqual(QHostAddress(named),
                                                  QHostAddress::ConvertV4MappedToIPv4);
                       });
}
