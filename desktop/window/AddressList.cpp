#include "desktop/window/AddressList.h"

#include "config/Profiles.h"
#include "desktop/settings/ProfileDialog.h"
#include "desktop/settings/SettingsDialog.h"
#include "desktop/widgets/Fields.h"
#include "desktop/widgets/InputDialog.h"
#include "desktop/widgets/Prompts.h"
#include "desktop/window/AddressTable.h"
#include "desktop/window/EventHandler.h"
#include "desktop/window/Reachability.h"
#include "desktop/window/ServerItem.h"

#include <QLabel>
#include <QMenu>
#include <QNetworkInterface>
#include <QVBoxLayout>

#include <algorithm>
#include <chrono>
#include <utility>

using namespace std::chrono_literals;

namespace {

constexpr auto lookInterval = 5s;
constexpr QSize pictureSize(32, 32);

void stop(ServerItem *item)
{
    item->stopAll();
    item->stop();
}

} // namespace

QList<QNetworkAddressEntry> deviceAddresses()
{
    QList<QNetworkAddressEntry> usable;
    const QList<QNetworkInterface> interfaces = QNetworkInterface::allInterfaces();
    for (const QNetworkInterface &interface : interfaces) {
        const auto flags = interface.flags();
        if (!flags.testFlag(QNetworkInterface::IsUp)
            || flags.testFlag(QNetworkInterface::IsLoopBack))
            continue;
        const QList<QNetworkAddressEntry> entries = interface.addressEntries();
        std::copy_if(entries.begin(), entries.end(), std::back_inserter(usable),
                     [](const auto &entry) { return !entry.broadcast().isNull(); });
    }
    return usable;
}

AddressList::Noticed::Noticed(const Profile &global)
    : dnsEnabled(global.dnsEnabled)
    , dnsUser(global.dnsUser)
    , dnsPassword(global.dnsPassword)
    , expertMode(global.expertMode)
{
}

bool AddressList::Noticed::operator==(const Noticed &other) const
{
    return dnsEnabled == other.dnsEnabled && dnsUser == other.dnsUser
        && dnsPassword == other.dnsPassword && expertMode == other.expertMode;
}

AddressList::AddressList(Profiles *choice, std::shared_ptr<const ServerSetup> servers,
                         AddressSource source, QWidget *parent)
    : QWidget(parent)
    , profiles(choice)
    , setup(std::move(servers))
    , addresses(std::move(source))
    , saved(choice->directories().profiles + QLatin1String("list.ini"))
    , m_reachability(new Reachability(this, choice))
    , noticed(*choice->global())
{
    buildWidgets();
    buildRowMenu();
    EventHandler::addressList = this;

    connect(m_reachability, &Reachability::labelChanged, m_statusLabel, &QLabel::setText);
    connect(m_startButton, &QPushButton::clicked, this, &AddressList::startButtonPressed);
    connect(m_table, &QTableWidget::cellPressed, this, &AddressList::cellPressed);
    connect(m_table, &QTableWidget::currentCellChanged, this, [this](int row, int, int before) {
        if (row != before)
            Q_EMIT selectionChanged(getSelectedItem());
    });
    connect(&watch, &QTimer::timeout, this, &AddressList::lookForChanges);
    watch.start(lookInterval);

    setExpertMode();
    loadLocal();
}

AddressList::~AddressList()
{
    EventHandler::addressList = nullptr;
    m_table->disconnect(this);
    const QList<ServerItem *> rows = items();
    for (ServerItem *item : rows)
        removeRow(item);
    // At once, as the servers hold profiles.
    qDeleteAll(findChildren<ServerItem *>(QString(), Qt::FindDirectChildrenOnly));
}

void AddressList::buildWidgets()
{
    m_table = new AddressTable(this);
    caption = new QLabel(tr("Listen Addresses"), this);
    caption->setBuddy(m_table);
    m_startButton = new Finger<QPushButton>(this);
    m_startButton->setIconSize(pictureSize);
    m_startButton->setIcon(ServerItem::playIcon);
    m_startButton->setText(ServerItem::toStart);
    m_statusLabel = new QLabel(this);
    m_statusLabel->setWordWrap(true);
    m_statusLabel->setTextInteractionFlags(Qt::TextSelectableByMouse
                                           | Qt::TextSelectableByKeyboard);
    m_statusLabel->setText(Reachability::localText());

    auto *layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->addWidget(caption);
    layout->addWidget(m_table, 1);
    layout->addWidget(m_startButton);
    layout->addWidget(m_statusLabel);
}

void AddressList::buildRowMenu()
{
    rowMenu = new QMenu(this);
    sizeForFingers(rowMenu);
    rowMenu->addAction(tr("Settings"), this, &AddressList::editProfile);
    rowMenu->addAction(tr("Change Config"), this, &AddressList::changeProfile);
    rowMenu->addAction(tr("Add new port"), this, &AddressList::addNewPort);
    rowMenu->addAction(tr("Change port"), this, &AddressList::changePort);
    rowMenu->addAction(tr("Remove"), this, &AddressList::remove);
}

// --- rows ---------------------------------------------------------------------------------------

ServerItem *AddressList::getServer(int row) const
{
    return static_cast<ServerItem *>(m_table->item(row, AddressTable::AddressColumn));
}

int AddressList::getServerCount() const
{
    return m_table->rowCount();
}

ServerItem *AddressList::getSelectedItem() const
{
    return getServer(qMax(0, m_table->currentRow()));
}

QList<ServerItem *> AddressList::items() const
{
    QList<ServerItem *> all;
    for (int row = 0; row < getServerCount(); ++row)
        all.append(getServer(row));
    return all;
}

QList<ServerItem *> AddressList::visibleItems() const
{
    QList<ServerItem *> visible;
    for (int row = 0; row < getServerCount(); ++row) {
        if (!m_table->isRowHidden(row))
            visible.append(getServer(row));
    }
    return visible;
}

QList<ServerItem *> AddressList::itemsWith(const Profile *profile) const
{
    QList<ServerItem *> users = items();
    users.erase(std::remove_if(users.begin(), users.end(),
                               [profile](const auto *item) { return item->profile() != profile; }),
                users.end());
    return users;
}

ServerItem *AddressList::itemOf(const WebServer *server) const
{
    const QList<ServerItem *> all = items();
    const auto item = std::find_if(all.begin(), all.end(), [server](const auto *candidate) {
        return candidate->server() == server;
    });
    return item == all.end() ? nullptr : *item;
}

int AddressList::addressCount() const
{
    const QList<ServerItem *> all = items();
    return int(std::count_if(all.begin(), all.end(),
                             [](const auto *item) { return !item->isAddedPort(); }));
}

bool AddressList::isExpert() const
{
    return profiles->global()->expertMode;
}

bool AddressList::isFound(const QHostAddress &address) const
{
    return std::any_of(found.begin(), found.end(),
                       [&address](const auto &entry) { return entry.ip() == address; });
}

bool AddressList::hasRow(const QHostAddress &address) const
{
    const QList<ServerItem *> all = items();
    return std::any_of(all.begin(), all.end(),
                       [&address](const auto *item) { return item->address() == address; });
}

void AddressList::loadLocal()
{
    found = addresses();
    dropVanished();
    addFound();
    if (found.isEmpty())
        m_statusLabel->setText(tr("<center><b>Network not found</b></center>"));
    else if (!isRunning())
        m_statusLabel->setText(Reachability::localText());
    if (m_table->currentRow() < 0 && getServerCount() > 0)
        m_table->setCurrentCell(0, AddressTable::AddressColumn);
}

void AddressList::dropVanished()
{
    const QList<ServerItem *> all = items();
    for (ServerItem *item : all) {
        if (isFound(item->address()))
            continue;
        if (item->isListening())
            EventHandler::eventHandler->msg(tr("The network address is gone, the server stopped"),
                                            item->getUrl());
        if (isExpert())
            saved.keep(item->state());
        else if (!item->isAddedPort())
            single = item->state();
        removeRow(item);
    }
}

void AddressList::addFound()
{
    QList<std::pair<ServerItem *, QList<SavedRow>>> fresh;
    for (const QNetworkAddressEntry &entry : std::as_const(found)) {
        if (hasRow(entry.ip()))
            continue;
        auto *item = new ServerItem(profiles, entry, setup, this);
        addItem(item);
        const QList<SavedRow> kept = saved.take(entry.ip().toString());
        if (isExpert())
            restoreRow(item, kept);
        else
            restoreAsOne(item);
        fresh.append({ item, kept });
    }
    // Behind the addresses, as they were added.
    for (const auto &[item, kept] : std::as_const(fresh))
        restoreAddedPorts(item, kept);
}

void AddressList::restoreAsOne(ServerItem *item)
{
    const ServerItem *first = getServer(0);
    if (first != item)
        item->takeState(first->state(), ServerItem::TakeSavedPort);
    else if (single)
        item->takeState(*single, ServerItem::TakeSavedPort);
    else
        item->restore(saved.settings(), 0, ServerItem::TakeSavedPort);
}

void AddressList::restoreRow(ServerItem *item, const QList<SavedRow> &kept)
{
    const auto own =
        std::find_if(kept.begin(), kept.end(), [](const SavedRow &row) { return !row.addedPort; });
    if (own != kept.end())
        item->takeState(*own, ServerItem::TakeSavedPort);
    else
        item->restore(saved.settings(), saved.indexOf(addressCount() - 1),
                      ServerItem::TakeSavedPort);
}

void AddressList::restoreAddedPorts(const ServerItem *first, const QList<SavedRow> &kept)
{
    for (const SavedRow &row : kept) {
        if (row.addedPort)
            addPort(first)->takeState(row, ServerItem::TakeSavedPort);
    }
    if (!kept.isEmpty())
        return;
    const QList<int> groups = saved.addedPorts(first->address().toString());
    for (const int group : groups) {
        ServerItem *item = addPort(first);
        item->setPort(SavedRow::read(saved.settings(), group).port);
        item->restore(saved.settings(), group, ServerItem::KeepPort);
    }
}

ServerItem *AddressList::addPort(const ServerItem *first)
{
    auto *item = new ServerItem(first, this);
    item->setAddedPort();
    addItem(item);
    return item;
}

void AddressList::addItem(ServerItem *item)
{
    const int row = getServerCount();
    m_table->insertRow(row);
    m_table->setItem(row, AddressTable::AddressColumn, item);
    m_table->setItem(row, AddressTable::ConfigColumn, item->profileCell());
    m_table->setItem(row, AddressTable::StatusColumn, item->statusCell());
    item->init(this);
    hideAddedPorts();
}

void AddressList::removeRow(ServerItem *item)
{
    disconnect(item, nullptr, this, nullptr);
    stop(item);
    const int row = item->row();
    for (int column = 0; column < AddressTable::ColumnCount; ++column)
        m_table->takeItem(row, column);
    m_table->removeRow(row);
    // Later: a menu, dialog or signal of the item may be what brought us here.
    item->deleteLater();
    setStartButton(isRunning());
}

void AddressList::hideAddedPorts()
{
    for (int row = 0; row < getServerCount(); ++row)
        m_table->setRowHidden(row, !isExpert() && getServer(row)->isAddedPort());
}

void AddressList::setSharedContent(const QString &path)
{
    if (isExpert()) {
        if (ServerItem *item = getSelectedItem())
            item->setShared(path);
        return;
    }
    if (getServerCount() == 0) {
        single = SavedRow::read(saved.settings(), 0);
        single->file = path;
    }
    const QList<ServerItem *> all = visibleItems();
    for (ServerItem *item : all)
        item->setShared(path);
}

bool AddressList::end()
{
    stopServers();
    saveRows();
    const QList<ServerItem *> all = items();
    for (ServerItem *item : all)
        removeRow(item);
    qDeleteAll(findChildren<ServerItem *>(QString(), Qt::FindDirectChildrenOnly));
    watch.stop();
    return saved.flush();
}

void AddressList::saveRows()
{
    const QList<ServerItem *> all = items();
    if (isExpert()) {
        int index = 0;
        for (const ServerItem *item : all)
            item->save(saved.settings(), index++);
        saved.writeRest(index);
    } else if (!all.isEmpty()) {
        all.constFirst()->save(saved.settings(), 0);
    } else if (single) {
        single->write(saved.settings(), 0);
    }
}

// --- start and stop -----------------------------------------------------------------------------

bool AddressList::isRunning() const
{
    const QList<ServerItem *> all = items();
    return std::any_of(all.begin(), all.end(),
                       [](const auto *item) { return item->isListening(); });
}

void AddressList::startButtonPressed()
{
    if (isRunning()) {
        stopServers();
        return;
    }
    const QList<ServerItem *> all = visibleItems();
    for (ServerItem *item : all)
        item->start();
    if (isRunning())
        m_reachability->refreshPublic();
}

void AddressList::toggle(ServerItem *item)
{
    if (item->isListening())
        stop(item);
    else
        item->start();
}

void AddressList::stopServers()
{
    const QList<ServerItem *> all = items();
    for (ServerItem *item : all)
        stop(item);
}

void AddressList::setStartButton(bool running)
{
    m_startButton->setIcon(running ? ServerItem::stopIcon : ServerItem::playIcon);
    m_startButton->setText(running ? ServerItem::toStop : ServerItem::toStart);
    if (!running) {
        m_statusLabel->clear();
        return;
    }
    QString text = tr("<center>Accessible on local network");
    const QList<ServerItem *> all = visibleItems();
    for (const ServerItem *item : all)
        text += QLatin1String("<br>") + item->getUrl();
    m_statusLabel->setText(text + QLatin1String("</center>"));
}

void AddressList::changed(ServerItem *item)
{
    setStartButton(isRunning());
    if (item == getSelectedItem())
        Q_EMIT selectionChanged(item);
}

bool AddressList::askForStop(const QString &question)
{
    const QList<ServerItem *> all = items();
    const bool asks = std::any_of(all.begin(), all.end(), [](const auto *item) {
        return item->isListening() && item->profile()->warningMode == Qt::Checked;
    });
    return !asks || askYesNo(window(), tr("The server is running.") + QLatin1Char('\n') + question);
}

qint64 AddressList::totalTraffic() const
{
    qint64 total = 0;
    const QList<ServerItem *> all = items();
    for (const ServerItem *item : all)
        total += item->server()->sentBytes() + item->server()->receivedBytes();
    return total;
}

void AddressList::updateListening()
{
    const QList<ServerItem *> all = items();
    for (ServerItem *item : all) {
        if (item->isListening())
            item->update();
    }
}

// --- the expert's row menu ----------------------------------------------------------------------

void AddressList::cellPressed(int row, int column)
{
    ServerItem *item = getServer(row);
    if (!isExpert() || !item)
        return;
    if (column == AddressTable::StatusColumn)
        toggle(item);
    else
        m_table->popup(rowMenu, row, column);
}

void AddressList::editProfile()
{
    if (ServerItem *item = getSelectedItem())
        edit(item->profile());
}

void AddressList::edit(Profile *profile, int page)
{
    SettingsDialog::edit(profile, { profile == profiles->global(), rootMode }, this, window(),
                         page);
}

void AddressList::changeProfile()
{
    const QPointer<ServerItem> item = getSelectedItem();
    if (!item)
        return;
    ProfileDialog(profiles, item, window()).exec();
    if (item)
        changed(item);
}

std::optional<int> AddressList::askPort(const QString &title, const ServerItem *item)
{
    const auto text = InputDialog::ask(title, QString::number(item->server()->port), window());
    if (!text)
        return {};
    const int port = text->trimmed().toInt();
    if (isPort(port))
        return port;
    showBox(window(), QMessageBox::Warning, tr("Invalid port"));
    return {};
}

void AddressList::addNewPort()
{
    const QPointer<ServerItem> item = getSelectedItem();
    const auto port = item ? askPort(tr("New port"), item) : std::nullopt;
    if (port && item)
        addPort(item)->setPort(*port);
}

void AddressList::changePort()
{
    const QPointer<ServerItem> item = getSelectedItem();
    const auto port = item ? askPort(tr("Port"), item) : std::nullopt;
    if (port && item)
        item->setPort(*port);
}

void AddressList::remove()
{
    if (ServerItem *item = getSelectedItem())
        removeRow(item);
}

// --- profiles -----------------------------------------------------------------------------------

void AddressList::setExpertMode()
{
    caption->setVisible(isExpert());
    m_table->setExpert(isExpert());
    hideAddedPorts();
}

void AddressList::profileEdited(Profile *profile)
{
    Profile *live = profiles->original(profile);
    if (!live)
        return;
    const bool ssl = live->usesTls();
    store(live, profile);
    noticeGlobal();
    ServerItem *selected = getSelectedItem();
    if (live->usesTls() != ssl && selected)
        changed(selected);
}

void AddressList::store(Profile *live, Profile *edited)
{
    if (live == edited)
        return;
    const QList<ServerItem *> users = itemsWith(live);
    if (users.isEmpty()) {
        live->apply(edited);
        live->save();
        return;
    }
    // Servers compare the copy with the live profile, which the first item overwrites.
    for (const ServerItem *item : users.mid(1))
        item->server()->profileEdited(edited);
    for (ServerItem *item : users)
        item->profileEdited(edited);
}

void AddressList::noticeGlobal()
{
    const Noticed now(*profiles->global());
    if (now == noticed)
        return;
    noticed = now;
    setExpertMode();
    if (profiles->global()->usesDns())
        m_reachability->loadPublic();
}

// --- the network
// -----------------------------------------------------------------------------------

void AddressList::lookForChanges()
{
    const QList<QNetworkAddressEntry> now = addresses();
    const bool same = std::equal(now.begin(), now.end(), found.begin(), found.end(),
                                 [](const auto &a, const auto &b) { return a.ip() == b.ip(); });
    if (!same)
        Q_EMIT onlineStateChanged(!now.isEmpty());
}

void AddressList::setOnlineState(bool online)
{
    loadLocal();
    if (!online) {
        m_reachability->noPublic();
        m_statusLabel->setText(tr("<center><b>Network not found</b></center>"));
        return;
    }
    m_reachability->refreshPublic();
}
