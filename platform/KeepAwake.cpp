#include "platform/KeepAwake.h"

#include "platform/BusCall.h"

#include <chrono>
#include <utility>

namespace {

using namespace std::chrono_literals;

constexpr auto lingerTime = 750ms;

} // namespace

KeepAwake::KeepAwake(QString reason, QDBusConnection bus, QObject *parent)
    : QObject(parent)
    , m_reason(std::move(reason))
    , m_bus(std::move(bus))
{
    lingering.setSingleShot(true);
    lingering.setInterval(lingerTime);
    connect(&lingering, &QTimer::timeout, this, &KeepAwake::release);
}

void KeepAwake::setNeeded(bool needed)
{
    if (!needed) {
        if (isAsked && !lingering.isActive())
            lingering.start();
        return;
    }
    lingering.stop();
    if (!isAsked)
        hold();
}

void KeepAwake::hold()
{
    isAsked = true;
    QDBusMessage call = QDBusMessage::createMethodCall(
        QStringLiteral("org.freedesktop.login1"), QStringLiteral("/org/freedesktop/login1"),
        QStringLiteral("org.freedesktop.login1.Manager"), QStringLiteral("Inhibit"));
    call << QStringLiteral("sleep:idle") << QStringLiteral("Quillon") << m_reason
         << QStringLiteral("block");
    call.setAutoStartService(false);
    ask(m_bus, call, this, [this, asked = turn](const QDBusMessage &answer) {
        if (asked == turn && !isRefused(answer))
            lock = qvariant_cast<QDBusUnixFileDescriptor>(answer.arguments().value(0));
    });
}

void KeepAwake::release()
{
    isAsked = false;
    ++turn;
    lock = {};
}
