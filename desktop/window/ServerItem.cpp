#include "desktop/window/ServerItem.h"

#include "config/Profiles.h"
#include "desktop/window/AddressList.h"
#include "desktop/window/EventHandler.h"
#include "server/Url.h"

#include <QDir>

#include <utility>

QString ServerItem::toStart;
QString ServerItem::toStop;
QIcon ServerItem::playIcon;
QIcon ServerItem::stopIcon;

namespace {

constexpr qint64 bytesPerShownKB = 1000;

std::unique_ptr<QTableWidgetItem> makeCell()
{
    auto cell = std::make_unique<QTableWidgetItem>();
    cell->setFlags(Qt::ItemIsSelectable | Qt::ItemIsEnabled);
    return cell;
}

void reportMissing(const QString &path, const QString &advice)
{
    EventHandler::eventHandler->msg(missingText(path), advice);
}

} // namespace

QString missingText(const QString &path)
{
    return QLatin1Char('"') + path + QLatin1String("\" ") + ServerItem::tr("not exists!");
}

ServerItem::ServerItem(Profiles *choice, const QNetworkAddressEntry &address,
                       std::shared_ptr<const ServerSetup> setup, QObject *parent)
    : QObject(parent)
    , profiles(choice)
    , m_server(new WebServer(address, choice->global(), std::move(setup), this))
    , m_profileCell(makeCell())
    , m_statusCell(makeCell())
{
    setFlags(Qt::ItemIsSelectable | Qt::ItemIsEnabled);
}

ServerItem::ServerItem(const ServerItem *other, QObject *parent)
    : QObject(parent)
    , profiles(other->profiles)
    , m_server(new WebServer(other->m_server, this))
    , m_profileCell(makeCell())
    , m_statusCell(makeCell())
{
    setFlags(Qt::ItemIsSelectable | Qt::ItemIsEnabled);
}

ServerItem::~ServerItem() = default;

void ServerItem::init(AddressList *list)
{
    profileEdited(profile());
    connect(this, &ServerItem::changed, list, &AddressList::changed);
    connect(m_server, &WebServer::dataLimit, list, &AddressList::dataLimit);
}

void ServerItem::start()
{
    if (!profile()->isUsable()) {
        EventHandler::eventHandler->msg(
            tr("The profile can't be used until its settings are saved"), profile()->fileName());
        return;
    }
    if (m_server->start()) {
        EventHandler::eventHandler->startTimer();
        Q_EMIT changed(this);
        update();
        if (!QFileInfo::exists(m_server->shared.filePath()))
            reportMissing(m_server->shared.filePath(), tr("Choose what to share."));
        return;
    }
    EventHandler::eventHandler->msg(
        tr("Unable to start the server"),
        QStringLiteral("%1\n%2:%3")
            .arg(m_server->errorString(), address().toString(), QString::number(m_server->port)));
}

void ServerItem::stop()
{
    m_server->stop();
    update();
    Q_EMIT changed(this);
}

void ServerItem::stopAll()
{
    m_server->stopAll();
}

void ServerItem::setPort(int port)
{
    if (port == m_server->port || !isPort(port))
        return;
    m_server->port = quint16(port);
    if (!isListening()) {
        update();
        return;
    }
    stop();
    start();
}

void ServerItem::update()
{
    setText(QStringLiteral("%1:%2").arg(address().toString(), QString::number(m_server->port)));
    m_profileCell->setText(profile()->name);
    m_profileCell->setToolTip(profile()->name.toHtmlEscaped());
    const qint64 bytes = m_server->sentBytes() + m_server->receivedBytes();
    m_statusCell->setText(QStringLiteral("%1 %2KB").arg(isListening() ? toStop : toStart,
                                                        QString::number(bytes / bytesPerShownKB)));
    m_statusCell->setIcon(isListening() ? stopIcon : playIcon);
}

void ServerItem::setShared(const QString &path)
{
    m_server->setShared(path);
    if (m_server->shared != QFileInfo(path))
        reportMissing(path, tr("Shared now: %1").arg(m_server->shared.absoluteFilePath()));
}

QString ServerItem::getUrl() const
{
    return shortServerUrl(profile()->usesTls(), address(), m_server->port);
}

void ServerItem::useProfile(Profile *profile)
{
    m_server->setProfile(profile);
    update();
}

void ServerItem::profileEdited(Profile *profile)
{
    m_server->profileEdited(profile);
    takePortOf(profile);
    if (profile != this->profile()) {
        this->profile()->apply(profile);
        // When that fails, the settings dialog says so: it saves once more as it closes.
        this->profile()->save();
    }
    update();
}

/// In expert mode ports are set per row, so that a listening server keeps its own.
void ServerItem::takePortOf(const Profile *profile)
{
    if (!isListening() || !profiles->global()->expertMode)
        setPort(profile->port);
}

SavedRow ServerItem::state() const
{
    SavedRow row;
    row.port = m_server->port;
    row.file = m_server->shared.absoluteFilePath();
    row.profile = profile()->name;
    row.address = address().toString();
    row.addedPort = addedPort;
    return row;
}

void ServerItem::takeState(const SavedRow &row, RestoreMode mode)
{
    Profile *saved = row.profile.isEmpty() ? nullptr : profiles->find(row.profile);
    if (saved)
        m_server->setProfile(saved);
    setShared(row.file.isEmpty() ? QDir::homePath() : row.file);
    if (mode != KeepPort)
        setPort(row.port > 0 ? row.port : profiles->global()->port);
    update();
}

void ServerItem::save(QSettings *settings, int index) const
{
    state().write(settings, index);
}

void ServerItem::restore(QSettings *settings, int index, RestoreMode mode)
{
    SavedRow row = SavedRow::read(settings, index);
    // In expert mode every row starts out on the global profile, whatever it ran with.
    const Profile *global = profiles->global();
    if (global->expertMode)
        row.profile = global->name;
    if (row.portDamaged && mode != KeepPort)
        EventHandler::eventHandler->msg(tr("Invalid port"), settings->fileName());
    takeState(row, mode);
}
