#include "platform/Announcer.h"

#include <QByteArrayList>
#include <QDBusMetaType>
#include <QDBusObjectPath>

#include <array>

namespace {

constexpr auto avahiName = "org.freedesktop.Avahi";
constexpr auto serverInterface = "org.freedesktop.Avahi.Server";
constexpr auto groupInterface = "org.freedesktop.Avahi.EntryGroup";
constexpr auto nameIsTaken = "org.freedesktop.Avahi.CollisionError";
constexpr auto stateSignal = "StateChanged";

enum ServerState { ServerRunning = 2 };
enum GroupState { GroupEstablished = 2, GroupCollision = 3, GroupFailure = 4 };

constexpr std::array plainTypes{ "_http._tcp", "_webdav._tcp" };
constexpr std::array tlsTypes{ "_https._tcp", "_webdavs._tcp" };
static_assert(plainTypes.size() == tlsTypes.size());

constexpr int maxNameBytes = 63; ///< RFC 6763, 4.1.1
constexpr int maxTextBytes = 255; ///< of each string, RFC 6763, 6.1
constexpr int maxRenames = 100; ///< somebody takes every name

QString latin1(const char *text)
{
    return QString::fromLatin1(text);
}

/// As much of the name as may be announced, without half a character at its end.
QString shortened(const QString &name)
{
    const QByteArray bytes = name.toUtf8();
    if (bytes.size() <= maxNameBytes)
        return name;
    int end = maxNameBytes;
    while (end > 0 && (bytes.at(end) & '\xc0') == '\x80')
        --end;
    return QString::fromUtf8(bytes.left(end));
}

/// What clients are told beside the address.
QByteArrayList textOf(const Announcement &server)
{
    QByteArrayList text{ "path=/" };
    const QByteArray user = "u=" + server.user.toUtf8();
    if (!server.user.isEmpty() && user.size() <= maxTextBytes)
        text.append(user);
    return text;
}

} // namespace

Announcer::Announcer(const QDBusConnection &bus, QObject *parent)
    : QObject(parent)
    , m_bus(bus)
    , watcher(latin1(avahiName), bus, QDBusServiceWatcher::WatchForOwnerChange)
{
    qDBusRegisterMetaType<QByteArrayList>();
    connect(&watcher, &QDBusServiceWatcher::serviceOwnerChanged, this,
            [this](const QString &, const QString &, const QString &owner) { takeOwner(owner); });
    // By name, as the toolkit has no other way; from anyone, as it would wait for the bus to say
    // who Avahi is.
    m_bus.connect({}, {}, latin1(serverInterface), latin1(stateSignal), this,
                  SLOT(serverChanged(int, QString, QDBusMessage)));
    m_bus.connect({}, {}, latin1(groupInterface), latin1(stateSignal), this,
                  SLOT(groupChanged(int, QString, QDBusMessage)));

    QDBusMessage who = QDBusMessage::createMethodCall(
        QStringLiteral("org.freedesktop.DBus"), QStringLiteral("/org/freedesktop/DBus"),
        QStringLiteral("org.freedesktop.DBus"), QStringLiteral("GetNameOwner"));
    who << latin1(avahiName);
    ask(m_bus, who, this, [this](const QDBusMessage &answer) {
        if (!isRefused(answer))
            takeOwner(answer.arguments().value(0).toString());
    });
}

Announcer::~Announcer()
{
    if (!group.isEmpty())
        m_bus.send(groupCall("Free"));
}

void Announcer::announce(const Announcement &server)
{
    wanted = server;
    renames = 0;
    begin(server.nameOrDefault());
}

void Announcer::withdraw()
{
    wanted.reset();
    reset();
}

/// Avahi runs as `owner` from now on, or, when that is empty, no more. By that name nothing is
/// ever started.
void Announcer::takeOwner(const QString &owner)
{
    if (owner == avahi)
        return;
    avahi = owner;
    group.clear();
    ++attempt;
    if (avahi.isEmpty())
        return;
    const QDBusMessage call = QDBusMessage::createMethodCall(
        avahi, QStringLiteral("/"), latin1(serverInterface), QStringLiteral("EntryGroupNew"));
    ask(m_bus, call, this, [this, owner](const QDBusMessage &answer) {
        if (owner != avahi)
            return;
        if (isRefused(answer))
            return giveUp(answer.errorMessage());
        group = qvariant_cast<QDBusObjectPath>(answer.arguments().value(0)).path();
        if (wanted)
            announce(*wanted);
    });
}

/// Announces what is wanted by this name, as soon as there is a group for it.
void Announcer::begin(const QString &name)
{
    reset();
    tried = shortened(name);
    if (wanted && !group.isEmpty())
        addType(0);
}

/// Adds the types from `index` on, one after the other, and then publishes them.
void Announcer::addType(std::size_t index)
{
    const auto &types = wanted->isTls ? tlsTypes : plainTypes;
    if (index == types.size())
        return commit();
    constexpr uint noFlags = 0;
    const QString usual; // of this machine: the domain, and the host's name
    QDBusMessage call = groupCall("AddService");
    call << wanted->interface << int(wanted->ipVersion) << noFlags << tried
         << latin1(types.at(index)) << usual << usual << QVariant::fromValue(wanted->port)
         << QVariant::fromValue(textOf(*wanted));
    askAvahi(call, [this, index](const QDBusMessage &answer) {
        if (isRefused(answer))
            return handleRefusal(answer);
        addType(index + 1);
    });
}

void Announcer::commit()
{
    askAvahi(groupCall("Commit"), [this](const QDBusMessage &answer) {
        if (isRefused(answer))
            handleRefusal(answer);
    });
}

/// The name is another's: Avahi makes the next one of it ("Share #2").
void Announcer::rename()
{
    reset();
    if (++renames > maxRenames)
        return giveUp(QStringLiteral("all names are taken"));
    QDBusMessage call =
        QDBusMessage::createMethodCall(avahi, QStringLiteral("/"), latin1(serverInterface),
                                       QStringLiteral("GetAlternativeServiceName"));
    call << tried;
    askAvahi(call, [this](const QDBusMessage &answer) {
        if (isRefused(answer))
            return giveUp(answer.errorMessage());
        begin(answer.arguments().value(0).toString());
    });
}

/// Names that were taken on this machine are told of at once, those of others by `groupChanged`.
void Announcer::handleRefusal(const QDBusMessage &answer)
{
    if (answer.errorName() == QLatin1String(nameIsTaken))
        return rename();
    giveUp(answer.errorMessage());
}

void Announcer::giveUp(const QString &reason)
{
    reset();
    if (wanted)
        Q_EMIT refused(reason);
}

/// Takes back what is announced or about to be.
void Announcer::reset()
{
    ++attempt;
    if (!group.isEmpty())
        m_bus.send(groupCall("Reset"));
}

/// The machine has got its name, perhaps another one, to which the entries are to lead.
void Announcer::serverChanged(int state, const QString & /*error*/, const QDBusMessage &message)
{
    if (wanted && message.service() == avahi && state == ServerRunning)
        begin(tried);
}

void Announcer::groupChanged(int state, const QString &error, const QDBusMessage &message)
{
    if (!wanted || message.service() != avahi || message.path() != group)
        return;
    switch (state) {
    case GroupEstablished:
        Q_EMIT announced(tried);
        break;
    case GroupCollision:
        rename();
        break;
    case GroupFailure:
        giveUp(error);
        break;
    default:
        break;
    }
}

QDBusMessage Announcer::groupCall(const char *method) const
{
    return QDBusMessage::createMethodCall(avahi, group, latin1(groupInterface), latin1(method));
}

/// `answered` is called unless the attempt is over by then.
void Announcer::askAvahi(const QDBusMessage &call, const Answered &answered)
{
    ask(m_bus, call, this, [this, answered, asked = attempt](const QDBusMessage &answer) {
        if (asked == attempt)
            answered(answer);
    });
}
