#include "platform/Notifier.h"

#include "platform/BusCall.h"

#include <chrono>
#include <utility>

namespace {

using namespace std::chrono_literals;

constexpr auto pauseTime = 1s;
constexpr int maxTexts = 5; ///< of a title in one notification
constexpr auto serviceName = "org.freedesktop.Notifications";
constexpr auto markup = "body-markup"; ///< of the capabilities: texts may hold elements
constexpr int usualTime = -1; ///< how long it stays is left to the desktop

QDBusMessage callTo(const char *method)
{
    return QDBusMessage::createMethodCall(
        QString::fromLatin1(serviceName), QStringLiteral("/org/freedesktop/Notifications"),
        QString::fromLatin1(serviceName), QString::fromLatin1(method));
}

} // namespace

Notifier::Notifier(const QDBusConnection &bus, QObject *parent)
    : QObject(parent)
    , m_bus(bus)
    , watcher(QString::fromLatin1(serviceName), bus, QDBusServiceWatcher::WatchForUnregistration)
{
    pause.setSingleShot(true);
    pause.setInterval(pauseTime);
    connect(&pause, &QTimer::timeout, this, &Notifier::showNext);
    connect(&watcher, &QDBusServiceWatcher::serviceUnregistered, this, [this] {
        service = Service::Unknown;
        shown.clear();
    });
}

void Notifier::show(const QString &title, const QString &text)
{
    QStringList &texts = waiting[title];
    texts.append(text);
    if (texts.size() > maxTexts)
        texts.removeFirst();
    if (!pause.isActive())
        showNext();
}

/// Shows what has come together, once it is known what the service can show.
void Notifier::showNext()
{
    if (waiting.isEmpty() || service == Service::Asked)
        return;
    pause.start();
    if (service == Service::Known)
        showWaiting();
    else
        askWhatItCan();
}

void Notifier::askWhatItCan()
{
    service = Service::Asked;
    ask(m_bus, callTo("GetCapabilities"), this, [this](const QDBusMessage &answer) {
        if (isRefused(answer))
            return giveUp();
        service = Service::Known;
        readsMarkup =
            answer.arguments().value(0).toStringList().contains(QString::fromLatin1(markup));
        showWaiting();
    });
}

void Notifier::showWaiting()
{
    const QMap<QString, QString> texts = takeWaiting();
    for (auto at = texts.begin(); at != texts.end(); ++at)
        notify(at.key(), at.value());
}

/// The texts of each title as one.
QMap<QString, QString> Notifier::takeWaiting()
{
    QMap<QString, QString> texts;
    const auto all = std::exchange(waiting, {});
    for (auto at = all.begin(); at != all.end(); ++at)
        texts.insert(at.key(), at.value().join(QLatin1Char('\n')));
    return texts;
}

void Notifier::notify(const QString &title, const QString &text)
{
    QDBusMessage call = callTo("Notify");
    call << QStringLiteral("Quillon") << shown.value(title) << QStringLiteral("quillon") << title
         << (readsMarkup ? text.toHtmlEscaped() : text) << QStringList()
         << QVariantMap{ { QStringLiteral("desktop-entry"),
                           QStringLiteral("example.quillon.Quillon") } }
         << usualTime;
    ask(m_bus, call, this, [this, title, text](const QDBusMessage &answer) {
        if (isRefused(answer)) {
            Q_EMIT notShown(title, text);
            return;
        }
        shown.insert(title, answer.arguments().value(0).toUInt());
    });
}

void Notifier::giveUp()
{
    service = Service::Unknown;
    const QMap<QString, QString> texts = takeWaiting();
    for (auto at = texts.begin(); at != texts.end(); ++at)
        Q_EMIT notShown(at.key(), at.value());
}
