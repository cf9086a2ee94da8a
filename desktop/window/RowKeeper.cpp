#include "desktop/window/RowKeeper.h"

#include "config/Profiles.h"
#include "desktop/window/ServerRow.h"
#include "server/StatusSink.h"

#include <algorithm>
#include <utility>

RowKeeper::RowKeeper(Profiles *choice, const std::shared_ptr<const ServerSetup> &common,
                     AddressSource source)
    : profiles(choice)
    , sink(common->sink)
    , network(std::move(source))
    , saved(choice->directories().profiles + QLatin1String("list.ini"))
    , m_rows(choice, common)
{
    connect(&network, &DeviceNetwork::changed, this, [this] {
        followNetwork();
        Q_EMIT onlineChanged(hasNetwork());
    });
    followNetwork();
}

void RowKeeper::share(const QString &path, ServerRow *row)
{
    if (m_rows.mode()->isExpert()) {
        if (ServerRow *one = row ? row : m_rows.current())
            one->share(path);
        return;
    }
    if (m_rows.all().isEmpty()) {
        single = SavedRow::read(saved.settings(), 0);
        single->file = path;
    }
    const QList<ServerRow *> shown = m_rows.shownRows();
    for (ServerRow *each : shown)
        each->share(path);
}

// --- the network --------------------------------------------------------------------------------

void RowKeeper::loadLocal()
{
    network.look();
    followNetwork();
}

void RowKeeper::followNetwork()
{
    dropVanished();
    addFound();
    Q_EMIT loaded();
    if (m_rows.currentIndex() < 0 && !m_rows.all().isEmpty())
        m_rows.setCurrent(0);
}

void RowKeeper::dropVanished()
{
    const QList<ServerRow *> before = m_rows.all();
    for (ServerRow *row : before) {
        if (network.has(row->address()))
            continue;
        if (row->isListening())
            sink->msg(ServerRows::tr("The network address is gone, the server stopped"),
                      row->url());
        if (m_rows.mode()->isExpert())
            saved.keep(row->state());
        else if (!row->isAddedPort())
            single = row->state();
        m_rows.remove(row);
    }
}

void RowKeeper::addFound()
{
    const QList<ServerRow *> &all = m_rows.all();
    QList<std::pair<ServerRow *, QList<SavedRow>>> fresh;
    for (const QNetworkAddressEntry &entry : network.addresses()) {
        const bool hasRow = std::any_of(all.begin(), all.end(), [&entry](const ServerRow *row) {
            return row->address() == entry.ip();
        });
        if (hasRow)
            continue;
        ServerRow *row = m_rows.add(entry);
        const QList<SavedRow> kept = saved.take(entry.ip().toString());
        row->takeState(savedStateOf(row, kept));
        fresh.append({ row, kept });
    }
    // Behind the addresses, as they were added.
    for (const auto &[row, kept] : std::as_const(fresh))
        restoreAddedPorts(row, kept);
}

// --- what is saved ------------------------------------------------------------------------------

/// What a new row of an address takes over: its own earlier state in expert mode, that of all rows
/// in simple mode.
SavedRow RowKeeper::savedStateOf(const ServerRow *row, const QList<SavedRow> &kept)
{
    const QList<ServerRow *> &all = m_rows.all();
    if (!m_rows.mode()->isExpert()) {
        if (all.constFirst() != row)
            return all.constFirst()->state();
        return single ? *single : fromFile(0);
    }
    const auto own = std::find_if(kept.begin(), kept.end(),
                                  [](const SavedRow &each) { return !each.addedPort; });
    if (own != kept.end())
        return *own;
    const auto before = std::count_if(all.begin(), all.end() - 1,
                                      [](const ServerRow *each) { return !each->isAddedPort(); });
    return fromFile(saved.indexOf(int(before)));
}

SavedRow RowKeeper::fromFile(int group)
{
    SavedRow row = SavedRow::read(saved.settings(), group);
    // In expert mode every row starts out on the global profile, whatever it ran with.
    if (m_rows.mode()->isExpert())
        row.profile = profiles->global()->name;
    if (row.portDamaged)
        sink->msg(ServerRows::tr("Invalid port"), saved.settings()->fileName());
    return row;
}

void RowKeeper::restoreAddedPorts(const ServerRow *first, const QList<SavedRow> &kept)
{
    for (const SavedRow &row : kept) {
        if (row.addedPort)
            m_rows.addPort(first)->takeState(row);
    }
    if (!kept.isEmpty())
        return;
    const QList<int> groups = saved.addedPorts(first->address().toString());
    for (const int group : groups)
        m_rows.addPort(first)->takeState(fromFile(group));
}

// --- the end ------------------------------------------------------------------------------------

bool RowKeeper::end()
{
    m_rows.stopAll();
    saveRows();
    m_rows.letAllGo();
    network.stop();
    return saved.flush();
}

void RowKeeper::saveRows()
{
    const QList<ServerRow *> &all = m_rows.all();
    if (m_rows.mode()->isExpert()) {
        int group = 0;
        for (const ServerRow *row : all)
            row->state().write(saved.settings(), group++);
        saved.writeRest(group);
    } else if (!all.isEmpty()) {
        all.constFirst()->state().write(saved.settings(), 0);
    } else if (single) {
        single->write(saved.settings(), 0);
    }
}
