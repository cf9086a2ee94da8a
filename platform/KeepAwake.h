#pragma once

#include <QDBusConnection>
#include <QDBusUnixFileDescriptor>
#include <QObject>
#include <QString>
#include <QTimer>

/// Keeps the system from going to sleep by itself while that is needed, by way of login1. Where
/// there is no such service, or it doesn't let us, nothing happens. Nothing in it waits. Lives in
/// the event loop of its owner; sleep is free again with its end, however that comes about.
class KeepAwake : public QObject
{
    Q_OBJECT
public:
    /// `reason` is what the system shows whoever asks why it doesn't sleep.
    explicit KeepAwake(QString reason, QDBusConnection bus = QDBusConnection::systemBus(),
                       QObject *parent = nullptr);

    /// May be called for every transfer that begins or ends. What was needed is held for a moment
    /// more, less than a second: a system that nobody uses might go to sleep between two files.
    void setNeeded(bool needed);

private:
    void hold();
    void release();

    const QString m_reason;
    const QDBusConnection m_bus;
    QTimer lingering; ///< runs while it is held and not needed
    bool isAsked = false; ///< since it was last released
    quint64 turn = 0; ///< counts releases: answers to earlier questions come too late
    QDBusUnixFileDescriptor lock; ///< keeps the system awake while it is open
};
