#include "desktop/window/ServerRow.h"

#include "config/Profiles.h"
#include "desktop/Log.h"
#include "desktop/window/AcceptedFolders.h"
#include "desktop/window/WindowText.h"
#include "server/StatusSink.h"
#include "server/TlsIdentity.h"
#include "server/Url.h"

#include <QDir>

namespace {

QString missingText(const QString &path)
{
    return QLatin1Char('"') + path + QLatin1String("\" ") + ServerRow::tr("not exists!");
}

} // namespace

QString shareRefusal(const QString &path)
{
    const QFileInfo content(path);
    if (!content.exists())
        return missingText(path);
    if (!content.isFile() && !content.isDir())
        return ServerRow::tr("This is neither a file nor a folder: %1").arg(path);
    if (!content.isReadable() || (content.isDir() && !content.isExecutable()))
        return ServerRow::tr("This can't be read: %1").arg(path);
    return {};
}

ServerRow::ServerRow(const Profiles *choice, const QNetworkAddressEntry &address,
                     std::shared_ptr<const ServerSetup> common, QObject *parent)
    : QObject(parent)
    , profiles(choice)
    , setup(std::move(common))
    , m_server(new WebServer(address, choice->global(), setup, this))
{
}

ServerRow::ServerRow(const ServerRow *first, QObject *parent)
    : QObject(parent)
    , profiles(first->profiles)
    , setup(first->setup)
    , m_server(new WebServer(first->m_server, this))
    , addedPort(true)
{
}

QString ServerRow::url() const
{
    return shortServerUrl(profile()->usesTls(), address(), m_server->port);
}

StartDoubt ServerRow::doubt() const
{
    const qint64 limit = m_server->dataLimitBytes();
    if (limit > 0 && trafficBytes() >= limit)
        return StartDoubt::LimitReached;
    if (!former.isEmpty() && profile()->admitsEveryone())
        return StartDoubt::LoginIsOff;
    const QString path = m_server->shared().absoluteFilePath();
    if (profile()->opensHome(path) && !isAcceptedFolder(path))
        return StartDoubt::HomeIsOpen;
    return StartDoubt::None;
}

void ServerRow::settle(StartDoubt doubt)
{
    switch (doubt) {
    case StartDoubt::HomeIsOpen:
        return acceptFolder(m_server->shared().absoluteFilePath());
    case StartDoubt::LoginIsOff:
        former.clear();
        return Q_EMIT stateChanged();
    case StartDoubt::LimitReached:
        m_server->init();
        return Q_EMIT changed();
    case StartDoubt::None:
        break;
    }
}

ServerRow::Refusal ServerRow::tryStart()
{
    Refusal refusal = profileRefusal();
    if (!refusal.title.isEmpty())
        return refusal;
    share(missing); // it may be back
    if (!missing.isEmpty())
        return { shareRefusal(missing), tr("Choose what to share.") };
    if (!m_server->start()) {
        qCDebug(desktopLog) << "not started:" << url() << m_server->errorString();
        return { tr("Unable to start the server"),
                 QStringLiteral("%1\n%2:%3")
                     .arg(m_server->errorString(), address().toString(),
                          QString::number(m_server->port)) };
    }
    Q_EMIT reachChanged();
    return {};
}

void ServerRow::start()
{
    const Refusal refusal = tryStart();
    if (!refusal.title.isEmpty())
        return tell(refusal);
    const QString path = m_server->shared().filePath();
    if (!QFileInfo::exists(path))
        setup->sink->msg(missingText(path), tr("Choose what to share."));
}

/// That of a row whose profile or keys can't be used.
ServerRow::Refusal ServerRow::profileRefusal() const
{
    if (profile()->fileState() == Profile::FileState::TextUnreadable)
        return { unreadableText(), profile()->fileInTheWay() };
    if (!profile()->isUsable())
        return { tr("The profile can't be used until its settings are saved"),
                 profile()->fileName() };
    if (!profile()->usesTls() || m_server->isTlsReady())
        return {};
    QString problem;
    // They may have come since they were looked for.
    if (TlsIdentity::load(*profile(), &problem))
        m_server->profileEdited(profile());
    if (problem.isEmpty())
        return {};
    return { tr("Unable to start the server"), problem, true };
}

void ServerRow::tell(const Refusal &refusal)
{
    if (refusal.forKeys)
        Q_EMIT keysRefused(refusal.text);
    else
        setup->sink->msg(refusal.title, refusal.text);
}

/// With another profile a server goes on only where it could start.
void ServerRow::stopRefused()
{
    const Refusal refusal = isListening() ? profileRefusal() : Refusal();
    if (refusal.title.isEmpty())
        return;
    stop();
    tell(refusal);
}

bool ServerRow::isTransferring() const
{
    return isListening() && pace.moves(m_server->visits());
}

void ServerRow::stop()
{
    m_server->stopAll();
    Q_EMIT reachChanged();
}

void ServerRow::setPort(int port)
{
    if (port == m_server->port || !isPort(port))
        return;
    m_server->port = quint16(port);
    Q_EMIT changed();
    Q_EMIT stateChanged();
    if (!isListening())
        return;
    m_server->stop();
    Q_EMIT reachChanged();
    start();
}

void ServerRow::share(const QString &path)
{
    if (!shareRefusal(path).isEmpty())
        return;
    m_server->setShared(path);
    missing.clear();
    Q_EMIT stateChanged();
}

/// Gives why it can't be shared.
QString ServerRow::restoreContent(const QString &path)
{
    QString refusal = shareRefusal(path);
    share(refusal.isEmpty() ? path : QDir::homePath());
    if (!refusal.isEmpty())
        missing = path;
    return refusal;
}

void ServerRow::useProfile(Profile *profile)
{
    former.clear();
    m_server->setProfile(profile);
    stopRefused();
    Q_EMIT reachChanged();
    Q_EMIT stateChanged();
}

void ServerRow::useFormerProfile()
{
    if (Profile *known = profiles->find(former))
        useProfile(known);
}

void ServerRow::followRename(const QString &from, const QString &to)
{
    if (former == from)
        former = to;
    Q_EMIT changed();
}

void ServerRow::profileChanged(int oldPort, const QString &portRefusal)
{
    // In expert mode ports are set per row. In simple mode there is no other way to change one.
    const bool follows =
        profiles->global()->expertMode ? !isListening() && m_server->port == oldPort : !addedPort;
    const bool moves = follows && profile()->port != oldPort;
    if (moves && portRefusal.isEmpty())
        setPort(profile()->port);
    else if (moves)
        setup->sink->msg(portRefusal, url());
    stopRefused();
    Q_EMIT changed();
}

SavedRow ServerRow::state() const
{
    SavedRow row;
    row.port = m_server->port;
    row.file = missing.isEmpty() ? m_server->shared().absoluteFilePath() : missing;
    row.profile = profile()->name;
    row.formerProfile = former;
    row.running = isListening();
    row.sent = m_server->sentBytes();
    row.received = m_server->receivedBytes();
    row.address = address().toString();
    row.addedPort = addedPort;
    return row;
}

QString ServerRow::takeState(const SavedRow &saved)
{
    Profile *named = saved.profile.isEmpty() ? nullptr : profiles->find(saved.profile);
    if (named)
        m_server->setProfile(named);
    former = saved.formerProfile;
    QString refusal = restoreContent(saved.file.isEmpty() ? QDir::homePath() : saved.file);
    setPort(saved.port > 0 ? saved.port : profiles->global()->port);
    m_server->stopAll(); // a limit that was reached before is not told again
    m_server->addSentBytes(saved.sent);
    m_server->addReceivedBytes(saved.received);
    Q_EMIT changed();
    return refusal;
}
