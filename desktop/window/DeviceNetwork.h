#pragma once

#include <QList>
#include <QNetworkAddressEntry>
#include <QObject>
#include <QTimer>

#include <functional>

/// The addresses that a server can be reached at now.
using AddressSource = std::function<QList<QNetworkAddressEntry>()>;

/// Those of the device's network interfaces that are up, loopback ones aside; only addresses with
/// a broadcast address count.
QList<QNetworkAddressEntry> deviceAddresses();

/// The addresses of the device as of the last look, and a look from time to time. A part of the
/// keeper of the rows.
class DeviceNetwork : public QObject
{
    Q_OBJECT
public:
    /// Looks at once.
    explicit DeviceNetwork(AddressSource source);

    const QList<QNetworkAddressEntry> &addresses() const { return found; }
    bool has(const QHostAddress &address) const;

    void look() { found = now(); }

    /// Looks, and tells when an address came or went.
    void lookForChanges();
    void stop() { watch.stop(); }

Q_SIGNALS:
    void changed();

private:
    AddressSource now;
    QList<QNetworkAddressEntry> found;
    QTimer watch;
};
