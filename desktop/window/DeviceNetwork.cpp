#include "desktop/window/DeviceNetwork.h"

#include "desktop/Log.h"

#include <QNetworkInterface>

#include <algorithm>
#include <chrono>
#include <utility>

using namespace std::chrono_literals;

namespace {

constexpr auto rereadInterval = 5s;

} // namespace

QList<QNetworkAddressEntry> deviceAddresses()
{
    QList<QNetworkAddressEntry> usable;
    const QList<QNetworkInterface> interfaces = QNetworkInterface::allInterfaces();
    for (const QNetworkInterface &interface : interfaces) {
        const auto flags = interface.flags();
        if (!flags.testFlag(QNetworkInterface::IsUp)
            || flags.testFlag(QNetworkInterface::IsLoopBack))
            continue;
        const QList<QNetworkAddressEntry> entries = interface.addressEntries();
        std::copy_if(entries.begin(), entries.end(), std::back_inserter(usable),
                     [](const auto &entry) { return !entry.broadcast().isNull(); });
    }
    return usable;
}

DeviceNetwork::DeviceNetwork(AddressSource source)
    : now(std::move(source))
    , found(now())
{
    connect(&watch, &QTimer::timeout, this, &DeviceNetwork::lookForChanges);
    watch.start(rereadInterval);
}

bool DeviceNetwork::has(const QHostAddress &address) const
{
    return std::any_of(found.begin(), found.end(),
                       [&address](const auto &entry) { return entry.ip() == address; });
}

void DeviceNetwork::lookForChanges()
{
    const QList<QNetworkAddressEntry> before = std::exchange(found, now());
    const bool same = std::equal(found.begin(), found.end(), before.begin(), before.end(),
                                 [](const auto &a, const auto &b) { return a.ip() == b.ip(); });
    if (same)
        return;
    qCDebug(desktopLog) << "addresses:" << found.size();
    Q_EMIT changed();
}
