#pragma once

#include "platform/Announcement.h"
#include "platform/BusCall.h"

#include <QDBusConnection>
#include <QDBusServiceWatcher>
#include <QObject>
#include <QString>
#include <QVariantList>

#include <cstddef>
#include <optional>

/// Has one server found in the network by DNS-SD (RFC 6763), as a web and a WebDAV server, while it
/// exists and Avahi runs; Avahi may come and go, and is never started. Nothing in it waits. Lives
/// in the event loop of its owner.
class Announcer : public QObject
{
    Q_OBJECT
public:
    explicit Announcer(const QDBusConnection &bus = QDBusConnection::systemBus(),
                       QObject *parent = nullptr);
    ~Announcer() override;

    /// Announces this server instead of what was announced before.
    void announce(const Announcement &server);

    void withdraw();

Q_SIGNALS:
    /// It can be found from now on. `name` is another than the chosen one when that is taken.
    void announced(const QString &name);

    /// Avahi does not take it, and why. It is tried again when Avahi is started anew.
    void refused(const QString &reason);

private Q_SLOTS:
    void serverChanged(int state, const QString &error, const QDBusMessage &message);
    void groupChanged(int state, const QString &error, const QDBusMessage &message);

private:
    void takeOwner(const QString &owner);
    void begin(const QString &name);
    void addType(std::size_t index);
    void commit();
    void rename();
    void handleRefusal(const QDBusMessage &answer);
    void giveUp(const QString &reason);
    void reset();
    QDBusMessage groupCall(const char *method) const;
    void askAvahi(const QDBusMessage &call, const Answered &answered);

    QDBusConnection m_bus;
    QDBusServiceWatcher watcher;
    QString avahi; ///< its name on the bus for this run of it; empty while it doesn't run
    QString group; ///< the path of the object that our types belong to; empty until it is known
    std::optional<Announcement> wanted;
    QString tried; ///< the name
    int renames = 0;
    quint64 attempt = 0; ///< answers to earlier ones come too late
};
