#include "desktop/window/ServerRows.h"

#include "config/Profiles.h"
#include "desktop/window/ServerRow.h"
#include "server/StatusSink.h"

#include <QPointer>

#include <algorithm>
#include <utility>

namespace {

template <typename Test> QList<ServerRow *> filtered(const QList<ServerRow *> &rows, Test test)
{
    QList<ServerRow *> chosen;
    std::copy_if(rows.begin(), rows.end(), std::back_inserter(chosen), test);
    return chosen;
}

bool isListening(const ServerRow *row)
{
    return row->isListening();
}

/// Rows may go while the user is asked; a no holds for those that follow too.
void startInTurn(ServerRows *rows, const QList<QPointer<ServerRow>> &turn)
{
    for (const QPointer<ServerRow> &row : turn) {
        if (!rows->start(row))
            return;
    }
}

} // namespace

ServerRows::ServerRows(Profiles *choice, std::shared_ptr<const ServerSetup> common)
    : profiles(choice)
    , setup(std::move(common))
    , m_mode(choice)
{
}

ServerRows::~ServerRows()
{
    letAllGo();
}

void ServerRows::letAllGo()
{
    while (!rows.isEmpty())
        remove(rows.constLast());
    // Rows removed before are children still.
    qDeleteAll(findChildren<ServerRow *>(QString(), Qt::FindDirectChildrenOnly));
}

// --- rows ---------------------------------------------------------------------------------------

ServerRow *ServerRows::rowOf(const WebServer *server) const
{
    return filtered(rows, [server](const ServerRow *row) { return row->server() == server; })
        .value(0, nullptr);
}

bool ServerRows::isShown(const ServerRow *row) const
{
    return m_mode.isExpert() || !row->isAddedPort();
}

QList<ServerRow *> ServerRows::shownRows() const
{
    return filtered(rows, [this](const ServerRow *row) { return isShown(row); });
}

void ServerRows::setCurrent(int index)
{
    if (std::exchange(m_current, index) != index)
        Q_EMIT currentChanged(current());
}

void ServerRows::append(ServerRow *row)
{
    rows.append(row);
    connect(row, &ServerRow::reachChanged, this, [this, row] { tellReach(row); });
    connect(row, &ServerRow::stateChanged, this, &ServerRows::askAnew);
    connect(row, &ServerRow::keysRefused, this,
            [this, row](const QString &reason) { Q_EMIT keysRefused(row, reason); });
    connect(row->server(), &WebServer::dataLimit, this, &ServerRows::dataLimit);
    Q_EMIT rowAdded(row);
}

void ServerRows::tellReach(ServerRow *row)
{
    Q_EMIT runningChanged(isRunning());
    if (row == current())
        Q_EMIT currentChanged(row);
}

ServerRow *ServerRows::add(const QNetworkAddressEntry &address)
{
    auto *row = new ServerRow(profiles, address, setup, this);
    append(row);
    return row;
}

ServerRow *ServerRows::addPort(const ServerRow *first)
{
    auto *row = new ServerRow(first, this);
    append(row);
    return row;
}

QString ServerRows::portRefusal(const QHostAddress &address, int port,
                                const ServerRow *except) const
{
    if (!isPort(port))
        return tr("Invalid port") + QLatin1Char('\n') + tr("A port is a number from 1 to 65535.");
    const bool taken = std::any_of(rows.begin(), rows.end(), [&](const ServerRow *row) {
        return row != except && row->address() == address && row->server()->port == port;
    });
    return taken ? tr("Another row has the port %1 already.").arg(port) : QString();
}

void ServerRows::remove(ServerRow *row)
{
    disconnect(row, nullptr, this, nullptr);
    row->stop();
    const int index = int(rows.indexOf(row));
    const bool wasCurrent = row == current();
    rows.removeAt(index);
    if (index < m_current || m_current == rows.size())
        --m_current;
    // Later: a menu, dialog or signal of the row may be what brought us here.
    row->deleteLater();
    Q_EMIT rowRemoved(index);
    Q_EMIT runningChanged(isRunning());
    if (wasCurrent)
        Q_EMIT currentChanged(current());
}

// --- start and stop -----------------------------------------------------------------------------

bool ServerRows::isRunning() const
{
    return std::any_of(rows.begin(), rows.end(), isListening);
}

bool ServerRows::start(const QPointer<ServerRow> &row)
{
    // A row may go, or be started, while the user thinks.
    while (row && rows.contains(row.data()) && !row->isListening()) {
        const StartDoubt doubt = row->doubt();
        if (doubt == StartDoubt::None) {
            row->start();
            return true;
        }
        const StartAnswer answer = ask ? ask(row, doubt) : StartAnswer::No;
        if (answer == StartAnswer::No)
            return false;
        if (answer == StartAnswer::Yes && row)
            row->settle(doubt);
    }
    return true;
}

void ServerRows::startOrStop()
{
    if (isRunning())
        stopAll();
    else
        startShown();
}

void ServerRows::startShown()
{
    const QList<ServerRow *> shown = shownRows();
    if (shown.isEmpty())
        setup->sink->msg(tr("There is no address to serve at"), tr("Connect to a network first."));
    startInTurn(this, { shown.begin(), shown.end() });
    if (isRunning())
        Q_EMIT publicAddressWanted();
}

void ServerRows::stopAll()
{
    const QList<ServerRow *> all = rows;
    for (ServerRow *row : all)
        row->stop();
    Q_EMIT allStopped();
}

qint64 ServerRows::totalTraffic() const
{
    qint64 total = 0;
    for (const ServerRow *row : rows)
        total += row->server()->sentBytes() + row->server()->receivedBytes();
    return total;
}

void ServerRows::updateListening()
{
    const QList<ServerRow *> listening = filtered(rows, isListening);
    for (ServerRow *row : listening)
        Q_EMIT row->changed();
}

// --- profiles -----------------------------------------------------------------------------------

void ServerRows::profileEdited(Profile *edited)
{
    Profile *live = profiles->original(edited);
    if (!live)
        return;
    const bool tls = live->usesTls();
    const int port = live->port;
    const QList<ServerRow *> users =
        filtered(rows, [live](const ServerRow *row) { return row->profile() == live; });
    // Servers compare the copy with the live profile, so all must have seen it before.
    for (const ServerRow *row : users)
        row->server()->profileEdited(edited);
    if (live != edited) {
        live->apply(edited);
        // When that fails, the settings dialog says so: it saves once more as it closes.
        live->save();
    }
    for (ServerRow *row : users)
        row->profileChanged(port, portRefusal(row->address(), live->port, row));
    m_mode.look();
    if (live->usesTls() != tls && current())
        tellReach(current());
    askAnew();
}

/// What was to be asked before the start is asked now; meanwhile the row rests.
void ServerRows::askAnew()
{
    const QList<ServerRow *> asking = filtered(rows, [](const ServerRow *row) {
        return row->isListening() && row->doubt() != StartDoubt::None;
    });
    for (ServerRow *row : asking) {
        row->stop();
        doubtful.append(row);
    }
    // Queued: the other rows may be given the same, and one answer is for all of them.
    if (!asking.isEmpty())
        QMetaObject::invokeMethod(
            this, [this] { startInTurn(this, std::exchange(doubtful, {})); }, Qt::QueuedConnection);
}
