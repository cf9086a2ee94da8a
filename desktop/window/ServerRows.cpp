#include "desktop/window/ServerRows.h"

#include "config/Profiles.h"
#include "desktop/window/ServerRow.h"
#include "server/StatusSink.h"

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

} // namespace

ServerRows::ServerRows(Profiles *choice, std::shared_ptr<const ServerSetup> common,
                       AddressSource source)
    : profiles(choice)
    , setup(std::move(common))
    , network(std::move(source))
    , saved(choice->directories().profiles + QLatin1String("list.ini"))
    , noticed(globalNow())
{
    connect(&network, &DeviceNetwork::changed, this, [this] {
        followNetwork();
        Q_EMIT onlineChanged(hasNetwork());
    });
    followNetwork();
}

ServerRows::~ServerRows()
{
    letAllGo();
}

/// At once, as the servers hold profiles; rows removed before are children still.
void ServerRows::letAllGo()
{
    while (!rows.isEmpty())
        remove(rows.constLast());
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
    return isExpert() || !row->isAddedPort();
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
    connect(row->server(), &WebServer::dataLimit, this, &ServerRows::dataLimit);
    Q_EMIT rowAdded(row);
}

void ServerRows::tellReach(ServerRow *row)
{
    Q_EMIT runningChanged(isRunning());
    if (row == current())
        Q_EMIT currentChanged(row);
}

ServerRow *ServerRows::addPort(const ServerRow *first)
{
    auto *row = new ServerRow(first, this);
    append(row);
    return row;
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

void ServerRows::share(const QString &path)
{
    if (isExpert()) {
        if (ServerRow *row = current())
            row->share(path);
        return;
    }
    if (rows.isEmpty()) {
        single = SavedRow::read(saved.settings(), 0);
        single->file = path;
    }
    const QList<ServerRow *> shown = shownRows();
    for (ServerRow *row : shown)
        row->share(path);
}

// --- the network --------------------------------------------------------------------------------

void ServerRows::loadLocal()
{
    network.look();
    followNetwork();
}

void ServerRows::followNetwork()
{
    dropVanished();
    addFound();
    Q_EMIT loaded();
    if (m_current < 0 && !rows.isEmpty())
        setCurrent(0);
}

void ServerRows::dropVanished()
{
    const QList<ServerRow *> vanished =
        filtered(rows, [this](const ServerRow *row) { return !network.has(row->address()); });
    for (ServerRow *row : vanished) {
        if (row->isListening())
            setup->sink->msg(tr("The network address is gone, the server stopped"), row->url());
        if (isExpert())
            saved.keep(row->state());
        else if (!row->isAddedPort())
            single = row->state();
        remove(row);
    }
}

void ServerRows::addFound()
{
    QList<std::pair<ServerRow *, QList<SavedRow>>> fresh;
    for (const QNetworkAddressEntry &entry : network.addresses()) {
        const bool hasRow = std::any_of(rows.begin(), rows.end(), [&entry](const ServerRow *row) {
            return row->address() == entry.ip();
        });
        if (hasRow)
            continue;
        auto *row = new ServerRow(profiles, entry, setup, this);
        append(row);
        const QList<SavedRow> kept = saved.take(entry.ip().toString());
        row->takeState(savedStateOf(row, kept));
        fresh.append({ row, kept });
    }
    // Behind the addresses, as they were added.
    for (const auto &[row, kept] : std::as_const(fresh))
        restoreAddedPorts(row, kept);
}

/// What a new row of an address takes over: its own earlier state in expert mode, that of all rows
/// in simple mode.
SavedRow ServerRows::savedStateOf(const ServerRow *row, const QList<SavedRow> &kept)
{
    if (!isExpert()) {
        if (rows.constFirst() != row)
            return rows.constFirst()->state();
        return single ? *single : fromFile(0);
    }
    const auto own = std::find_if(kept.begin(), kept.end(),
                                  [](const SavedRow &each) { return !each.addedPort; });
    if (own != kept.end())
        return *own;
    const auto before = std::count_if(rows.begin(), rows.end() - 1,
                                      [](const ServerRow *each) { return !each->isAddedPort(); });
    return fromFile(saved.indexOf(int(before)));
}

SavedRow ServerRows::fromFile(int group)
{
    SavedRow row = SavedRow::read(saved.settings(), group);
    // In expert mode every row starts out on the global profile, whatever it ran with.
    if (isExpert())
        row.profile = profiles->global()->name;
    if (row.portDamaged)
        setup->sink->msg(tr("Invalid port"), saved.settings()->fileName());
    return row;
}

void ServerRows::restoreAddedPorts(const ServerRow *first, const QList<SavedRow> &kept)
{
    for (const SavedRow &row : kept) {
        if (row.addedPort)
            addPort(first)->takeState(row);
    }
    if (!kept.isEmpty())
        return;
    const QList<int> groups = saved.addedPorts(first->address().toString());
    for (const int group : groups)
        addPort(first)->takeState(fromFile(group));
}

bool ServerRows::end()
{
    stopAll();
    saveRows();
    letAllGo();
    network.stop();
    return saved.flush();
}

void ServerRows::saveRows()
{
    if (isExpert()) {
        int group = 0;
        for (const ServerRow *row : std::as_const(rows))
            row->state().write(saved.settings(), group++);
        saved.writeRest(group);
    } else if (!rows.isEmpty()) {
        rows.constFirst()->state().write(saved.settings(), 0);
    } else if (single) {
        single->write(saved.settings(), 0);
    }
}

// --- start and stop -----------------------------------------------------------------------------

bool ServerRows::isRunning() const
{
    return std::any_of(rows.begin(), rows.end(), isListening);
}

void ServerRows::startOrStop()
{
    if (isRunning())
        return stopAll();
    const QList<ServerRow *> shown = shownRows();
    for (ServerRow *row : shown)
        row->start();
    if (isRunning())
        Q_EMIT publicAddressWanted();
}

void ServerRows::stopAll()
{
    const QList<ServerRow *> all = rows;
    for (ServerRow *row : all)
        row->stop();
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

bool ServerRows::isExpert() const
{
    return profiles->global()->expertMode;
}

void ServerRows::setExpert(bool on)
{
    if (isExpert() == on)
        return;
    profiles->global()->amend([on](Profile &global) { global.expertMode = on; });
    noticeGlobal();
}

void ServerRows::profileEdited(Profile *edited)
{
    Profile *live = profiles->original(edited);
    if (!live)
        return;
    const bool tls = live->usesTls();
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
        row->profileChanged();
    noticeGlobal();
    if (live->usesTls() != tls && current())
        tellReach(current());
}

ServerRows::Noticed ServerRows::globalNow() const
{
    const Profile *global = profiles->global();
    return { global->dnsEnabled, global->dnsUser, global->dnsPassword, global->expertMode };
}

void ServerRows::noticeGlobal()
{
    const Noticed before = std::exchange(noticed, globalNow());
    if (noticed == before)
        return;
    Q_EMIT modeChanged();
    if (profiles->global()->usesDns())
        Q_EMIT dnsWanted();
}
