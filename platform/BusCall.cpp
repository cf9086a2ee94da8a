#include "platform/BusCall.h"

#include <QDBusError>
#include <QDBusPendingCallWatcher>

#include <utility>

void ask(const QDBusConnection &bus, const QDBusMessage &call, QObject *asker, Answered answered)
{
    const QDBusPendingCall pending = bus.isConnected()
        ? bus.asyncCall(call)
        : QDBusPendingCall::fromError(QDBusError(QDBusError::NoServer, QStringLiteral("no bus")));
    auto *watcher = new QDBusPendingCallWatcher(pending, asker);
    QObject::connect(watcher, &QDBusPendingCallWatcher::finished, asker,
                     [answered = std::move(answered)](QDBusPendingCallWatcher *finished) {
                         finished->deleteLater();
                         answered(finished->reply());
                     });
}
