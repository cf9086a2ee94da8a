#include "desktop/window/RowKeeper.h"

#include "config/Profiles.h"
#include "desktop/window/ServerRow.h"
#include "server/Service.h"

#include <algorithm>
#include <utility>

namespace {

std::shared_ptr<const ServerSetup> reportingTo(StatusSink *sink, const ServerSetup &common)
{
    auto setup = std::make_shared<ServerSetup>(common);
    setup->sink = sink;
    return setup;
}

} // namespace

RowKeeper::RowKeeper(Profiles *choice, const std::shared_ptr<const ServerSetup> &common,
                     AddressSource source)
    : profiles(choice)
    , sink(common->sink)
    , warnings(sink, [this](const QString &text) { Q_EMIT told(text); })
    , network(std::move(source))
    , saved(choice->directories().profiles + QLatin1String("list.ini"))
    , m_rows(choice, reportingTo(&warnings, *common))
{
    if (!saved.damagedFile().isEmpty())
        sink->msg(ServerRows::tr("What was shared at which address could not be read; the rows "
                                 "begin anew, and none starts by itself. The file is kept as %1")
                      .arg(saved.damagedFile()),
                  saved.fileName());
    removed = saved.removed();
    connect(&network, &DeviceNetwork::changed, this, [this] {
        followNetwork();
        Q_EMIT onlineChanged(hasNetwork());
    });
    connect(&renewal, &CertificateRenewal::failed, this, &RowKeeper::told);
    followChanges();
    followNetwork();
    hasBegun = true;
}

void RowKeeper::followChanges()
{
    saveTimer.setSingleShot(true);
    connect(&saveTimer, &QTimer::timeout, this, &RowKeeper::saveNow);
    connect(&m_rows, &ServerRows::rowRemoved, this, &RowKeeper::saveSoon);
    // One mode writes less of them than the other reads.
    connect(m_rows.mode(), &GlobalMode::modeChanged, this, &RowKeeper::saveSoon);
    connect(&m_rows, &ServerRows::rowAdded, this, [this](const ServerRow *row) {
        connect(row, &ServerRow::stateChanged, this, &RowKeeper::saveSoon);
        saveSoon();
    });
    connect(&m_rows, &ServerRows::allStopped, this, [this] {
        saved.forgetRunning();
        if (single)
            single->running = false;
    });
}

void RowKeeper::share(const QString &path, ServerRow *row)
{
    if (m_rows.mode()->isExpert()) {
        if (ServerRow *one = row ? row : m_rows.current())
            one->share(path);
        return;
    }
    if (m_rows.all().isEmpty()) {
        if (!single)
            single = saved.next();
        single->file = path;
        saveSoon();
    }
    const QList<ServerRow *> shown = m_rows.shownRows();
    for (ServerRow *each : shown)
        each->share(path);
}

// --- the network --------------------------------------------------------------------------------

void RowKeeper::remove(ServerRow *row)
{
    // The address goes with its own row, not with a further port.
    if (!row->isAddedPort()) {
        removed.append(row->address().toString());
        SavedRow &state = removedStates[removed.constLast()] = row->state();
        state.running = false;
        state.restsAlone = true;
    }
    m_rows.remove(row);
}

void RowKeeper::loadLocal()
{
    removed.clear();
    network.look();
    followNetwork();
    saveSoon();
}

void RowKeeper::followNetwork()
{
    const auto noting = warnings.unasked();
    const bool running = m_rows.isRunning();
    isFollowing = true;
    resumed.clear();
    joining.clear();
    dropVanished();
    addFound();
    isFollowing = false;
    // In simple mode the rows run or rest together.
    if (running || (!m_rows.mode()->isExpert() && !resumed.isEmpty()))
        resumed += joining;
    for (ServerRow *row : std::as_const(resumed))
        startUnasked(row);
    Q_EMIT loaded();
    if (m_rows.currentIndex() < 0 && !m_rows.all().isEmpty())
        m_rows.setCurrent(0);
}

void RowKeeper::dropVanished()
{
    const bool running = m_rows.isRunning();
    const QList<ServerRow *> before = m_rows.all();
    for (ServerRow *row : before) {
        if (network.has(row->address()))
            continue;
        if (row->isListening())
            Q_EMIT told(ServerRows::tr("The network address is gone, the server waits for it: %1")
                            .arg(row->url()));
        SavedRow state = row->state();
        state.restsAlone = running && !state.running;
        saved.keep(state);
        if (!m_rows.mode()->isExpert() && !row->isAddedPort()) {
            // They may go one after the other.
            const bool lastRan = m_rows.all().size() == 1 && single && single->running;
            state.running = running || lastRan;
            single = state;
        }
        m_rows.remove(row);
    }
}

void RowKeeper::addFound()
{
    const QList<ServerRow *> &all = m_rows.all();
    QList<std::pair<ServerRow *, QList<SavedRow>>> found;
    for (const QNetworkAddressEntry &entry : network.addresses()) {
        const bool hasRow = std::any_of(all.begin(), all.end(), [&entry](const ServerRow *row) {
            return row->address() == entry.ip();
        });
        if (hasRow || removed.contains(entry.ip().toString()))
            continue;
        ServerRow *row = m_rows.add(entry);
        QList<SavedRow> kept = saved.takeKept(entry.ip().toString());
        if (kept.isEmpty() && removedStates.contains(entry.ip().toString()))
            kept = { removedStates.take(entry.ip().toString()) };
        restore(row, savedStateOf(row, kept));
        found.append({ row, kept });
    }
    // Behind the addresses, as they were added.
    for (const auto &[row, kept] : std::as_const(found))
        restoreAddedPorts(row, kept);
}

// --- what is saved ------------------------------------------------------------------------------

/// What a new row of an address takes over: its own earlier state in expert mode, that of all rows
/// in simple mode. Whether it ran, and its count, are its own in both.
SavedRow RowKeeper::savedStateOf(const ServerRow *row, const QList<SavedRow> &kept)
{
    const auto own = std::find_if(kept.begin(), kept.end(),
                                  [](const SavedRow &each) { return !each.addedPort; });
    const bool isBack = own != kept.end();
    SavedRow itsOwn = isBack ? *own : saved.takeNext();
    if (!m_rows.mode()->isExpert()) {
        SavedRow state = stateOfAll(row, itsOwn);
        state.running = isBack ? itsOwn.running : state.running;
        state.restsAlone = itsOwn.restsAlone;
        state.sent = itsOwn.sent;
        state.received = itsOwn.received;
        return state;
    }
    if (!isBack)
        return fromFile(itsOwn);
    itsOwn.restsAlone = !itsOwn.running; // each one is started by its user
    return itsOwn;
}

/// What the rows share in simple mode, for `newest`, whose own is `itsOwn`.
SavedRow RowKeeper::stateOfAll(const ServerRow *newest, const SavedRow &itsOwn)
{
    const ServerRow *first = m_rows.all().constFirst();
    if (first != newest)
        return first->state();
    return single ? *std::exchange(single, std::nullopt) : fromFile(itsOwn);
}

/// How `row`, as it was read, is to go on.
SavedRow RowKeeper::fromFile(SavedRow row)
{
    if (row.portDamaged)
        sink->msg(ServerRows::tr("Invalid port"), saved.fileName());
    if (!m_rows.mode()->isExpert())
        return row;
    // In expert mode every row starts out on the global profile, whatever it ran with.
    const Profile *former = profiles->find(row.profile);
    if (former && (!former->isUsable() || !former->admitsEveryone()))
        row.formerProfile = former->name;
    row.profile = profiles->global()->name;
    return row;
}

void RowKeeper::restore(ServerRow *row, const SavedRow &state)
{
    takeOver(row, state);
    if (state.running)
        resumed.append(row);
    else if (!state.restsAlone && !row->isAddedPort())
        joining.append(row);
}

/// Content that is gone gets a box at the start alone: a network comes at any time.
void RowKeeper::takeOver(ServerRow *row, const SavedRow &state)
{
    const QString refusal = row->takeState(state);
    if (refusal.isEmpty())
        return;
    if (hasBegun)
        return Q_EMIT told(refusal);
    const QString shared = row->server()->shared().absoluteFilePath();
    sink->msg(refusal, ServerRow::tr("Shared now: %1").arg(shared));
}

/// Nobody may be there to answer: a row with doubts or failures stays stopped.
void RowKeeper::startUnasked(ServerRow *row)
{
    if (row->doubt() != StartDoubt::None)
        return Q_EMIT told(ServerRows::tr("Press Start to serve at %1").arg(row->url()));
    const ServerRow::Refusal refusal = row->tryStart();
    if (!refusal.title.isEmpty())
        Q_EMIT told(refusal.title + QLatin1String(": ") + refusal.text);
    else
        Q_EMIT told(
            ServerRows::tr("The network address is there, the server runs: %1").arg(row->url()));
}

void RowKeeper::restoreAddedPorts(const ServerRow *first, const QList<SavedRow> &kept)
{
    for (const SavedRow &row : kept) {
        if (row.addedPort)
            restore(m_rows.addPort(first), row);
    }
    if (!kept.isEmpty())
        return;
    const QList<SavedRow> ports = saved.takeAddedPorts(first->address().toString());
    for (const SavedRow &row : ports)
        takeOver(m_rows.addPort(first), fromFile(row));
}

void RowKeeper::followRename(const QString &from, const QString &to)
{
    saved.renameProfile(from, to);
    if (single)
        single->renameProfile(from, to);
    const QList<ServerRow *> &all = m_rows.all();
    for (ServerRow *row : all)
        row->followRename(from, to);
    saveSoon();
}

// --- the end ------------------------------------------------------------------------------------

void RowKeeper::saveSoon()
{
    if (!isFollowing)
        saveTimer.start(0);
}

void RowKeeper::saveNow()
{
    saveRows();
    if (saved.flush() || std::exchange(saveFailed, true))
        return;
    sink->msg(ServerRows::tr("Can't save the settings"), saved.fileName());
}

bool RowKeeper::end()
{
    isFollowing = true;
    saveTimer.stop();
    m_rows.stopAll();
    saveRows();
    m_rows.letAllGo();
    network.stop();
    return saved.flush();
}

void RowKeeper::saveRows()
{
    saved.setRemoved(removed);
    const QList<ServerRow *> &all = m_rows.all();
    if (m_rows.mode()->isExpert()) {
        int group = 0;
        for (const ServerRow *row : all)
            saved.write(row->state(), group++);
        saved.writeRest(group);
    } else if (!all.isEmpty()) {
        saved.write(all.constFirst()->state(), 0);
    } else if (single) {
        saved.write(*single, 0);
    }
}
