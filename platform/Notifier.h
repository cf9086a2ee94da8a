#pragma once

#include <QDBusConnection>
#include <QDBusServiceWatcher>
#include <QHash>
#include <QMap>
#include <QObject>
#include <QString>
#include <QStringList>
#include <QTimer>

/// Shows notifications of the desktop. Nothing in it waits; the desktop's service is started when
/// there is something to show. Lives in the event loop of its owner.
class Notifier : public QObject
{
    Q_OBJECT
public:
    explicit Notifier(const QDBusConnection &bus = QDBusConnection::sessionBus(),
                      QObject *parent = nullptr);

    /// Shows `text`, which is plain, instead of what was last shown with the same `title`. No more
    /// often than once a second: of what comes faster, the last few of each title are shown as one.
    void show(const QString &title, const QString &text);

Q_SIGNALS:
    /// This could not be shown, for want of a service or because it refused.
    void notShown(const QString &title, const QString &text);

private:
    enum class Service { Unknown, Asked, Known };

    void showNext();
    void askWhatItCan();
    void notify(const QString &title, const QString &text);
    void showWaiting();
    void giveUp();
    QMap<QString, QString> takeWaiting();

    QDBusConnection m_bus;
    QDBusServiceWatcher watcher;
    QTimer pause;
    QMap<QString, QStringList> waiting; ///< texts by title
    QHash<QString, uint> shown; ///< numbers by title
    Service service = Service::Unknown;
    bool readsMarkup = false;
};
