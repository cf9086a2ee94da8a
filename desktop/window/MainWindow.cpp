#include "desktop/window/MainWindow.h"

#include "classic/pages/BrowserPages.h"
#include "config/Profiles.h"
#include "desktop/look/LookDialog.h"
#include "desktop/look/StartUp.h"
#include "desktop/settings/SettingsDialog.h"
#include "desktop/widgets/Fields.h"
#include "desktop/widgets/Labels.h"
#include "desktop/widgets/MessageDialog.h"
#include "desktop/widgets/Prompts.h"
#include "desktop/window/AddressTable.h"
#include "desktop/window/EventHandler.h"
#include "desktop/window/Reachability.h"
#include "desktop/window/ServerItem.h"

#include <QAction>
#include <QCloseEvent>
#include <QDesktopServices>
#include <QDir>
#include <QLabel>
#include <QMenu>
#include <QScreen>
#include <QScrollArea>
#include <QSignalBlocker>
#include <QUrl>
#include <QVBoxLayout>

#include <cstring>
#include <iterator>
#include <utility>

namespace {

const QLatin1String contactAddress("https://quillon.example/");
constexpr QSize usualSize(800, 480);
constexpr QSize pictureSize(32, 32);
constexpr int longestRecentPath = 17;
constexpr qint64 bytesPerShownKB = 1000;

QIcon icon(QLatin1String name)
{
    return QIcon(QLatin1String(":/icons/") + name);
}

QString withSlash(const QString &folder)
{
    return folder.endsWith(QLatin1Char('/')) ? folder : folder + QLatin1Char('/');
}

QString shownPath(const QString &path)
{
    return QFileInfo(path).isDir() ? withSlash(path) : path;
}

QPushButton *pictureButton(const QIcon &picture, const QString &name, QWidget *parent)
{
    auto *button = new Finger<QPushButton>(parent);
    button->setIcon(picture);
    button->setIconSize(pictureSize);
    button->setAccessibleName(name);
    button->setToolTip(name);
    return button;
}

QPushButton *menuOpener(const QString &text, QMenu *menu, QWidget *parent)
{
    auto *button = new Finger<QPushButton>(parent);
    button->setText(text);
    button->setMenu(menu);
    return button;
}

} // namespace

QString recentFileLabel(const QString &path)
{
    const QString label = path.size() > longestRecentPath ? QDir(path).dirName() : path;
    return QString(label).replace(QLatin1Char('&'), QLatin1String("&&"));
}

QString trafficLimitText(const WebServer &server)
{
    const auto inKB = [](qint64 bytes) { return QString::number(bytes / bytesPerShownKB); };
    return MainWindow::tr("Max. network traffic limit")
        + QStringLiteral(": %1 KB ").arg(inKB(server.dataLimitBytes())) + MainWindow::tr("reached")
        + QLatin1Char('\n') + MainWindow::tr("Server stopped on")
        + QStringLiteral(" %1:%2.\n").arg(server.ip().toString(), QString::number(server.port))
        + MainWindow::tr("Sent bytes") + QStringLiteral(": %1 KB").arg(inKB(server.sentBytes()))
        + QLatin1Char('\n') + MainWindow::tr("Received bytes")
        + QStringLiteral(": %1 KB").arg(inKB(server.receivedBytes()));
}

MainWindow::MainWindow(Profiles *choice, const char *mode, Routes rows, AddressSource source)
    : profiles(choice)
    , events(std::make_unique<EventHandler>(this))
{
    makeTexts();
    startProfiles();
    makeActions();
    makeFileMenu();
    auto setup = std::make_shared<ServerSetup>(
        ServerSetup{ std::move(rows), events.get(), profiles->directories() });
    addresses = new AddressList(profiles, std::move(setup), std::move(source), this);
    makeButtons();
    updateRecentFileActions();
    create();
    setExpertMode(expertMode->isChecked());
    changed(addresses->getSelectedItem());
    connectList();
    setRootMode(mode);
}

MainWindow::~MainWindow()
{
    // Before the event handler and the profiles, which its servers use.
    delete addresses;
    // Pictures don't outlive the application object.
    ServerItem::playIcon = {};
    ServerItem::stopIcon = {};
}

void MainWindow::makeTexts()
{
    setWindowTitle(QStringLiteral("Quillon"));
    setWindowIcon(icon(QLatin1String("MobileServer.png")));
    ServerItem::toStart = tr("Start");
    ServerItem::toStop = tr("Stop");
    ServerItem::playIcon = icon(QLatin1String("play.png"));
    ServerItem::stopIcon = icon(QLatin1String("stop.png"));
}

void MainWindow::startProfiles()
{
    if (profiles->lastRun() == LastRun::Aborted)
        HTML_Element_Manager::removeLeftFiles();
    for (int i = 0; i < profiles->count(); ++i) {
        const Profile *profile = profiles->at(i);
        if (!profile->isUsable())
            events->msg(
                tr("A profile is damaged or can't be read. It isn't used until its settings "
                   "are saved; the file is kept then as %1")
                    .arg(profile->fileName() + QLatin1String(".bad")),
                profile->fileName());
        if (profile->refusedPort())
            events->msg(tr("Invalid port") + QStringLiteral(": %1").arg(*profile->refusedPort()),
                        profile->fileName());
    }
}

QAction *MainWindow::addMenuAction(const QString &text, const char *name)
{
    QAction *action = menu->addAction(text);
    action->setObjectName(QLatin1String(name));
    return action;
}

void MainWindow::makeActions()
{
    menu = new QMenu(this);
    sizeForFingers(menu);
    reloadPublic = addMenuAction(tr("Reload public addressess"), "reloadPublic");
    reloadLocal = addMenuAction(tr("Reload local addresses"), "reloadLocal");
    settings = addMenuAction(tr("Settings"), "settings");
    lookAndFeel = addMenuAction(tr("Look and Feel"), "lookAndFeel");
    expertMode = addMenuAction(tr("Expert mode"), "expertMode");
    expertMode->setCheckable(true);
    expertMode->setChecked(profiles->global()->expertMode);
    QAction *helpAction = addMenuAction(tr("Help"), "help");
    QAction *aboutAction = addMenuAction(tr("About Quillon"), "about");
    QAction *aboutQtAction = addMenuAction(tr("About Qt"), "aboutQt");

    connect(settings, &QAction::triggered, this, &MainWindow::globalConfig);
    connect(lookAndFeel, &QAction::triggered, this, &MainWindow::guiConf);
    connect(expertMode, &QAction::triggered, this, &MainWindow::setExpertMode);
    connect(helpAction, &QAction::triggered, this, &MainWindow::help);
    connect(aboutAction, &QAction::triggered, this, &MainWindow::about);
    connect(aboutQtAction, &QAction::triggered, this, &MainWindow::aboutQt);

    helpAction->setShortcut(QKeySequence::HelpContents);
    addAction(helpAction);
}

void MainWindow::makeFileMenu()
{
    fileMenu = new QMenu(this);
    sizeForFingers(fileMenu);
    fileMenu->addAction(tr("Select Folder"), this, &MainWindow::browseFolder);
    fileMenu->addAction(tr("Select File"), this, &MainWindow::browseFile);
    for (QAction *&action : recentFiles) {
        action = fileMenu->addAction(QString(), this, &MainWindow::openRecentFile);
        action->setVisible(false);
    }
}

void MainWindow::makeButtons()
{
    menuButton = menuOpener(tr("&Menu"), menu, this);
    fileButton = menuOpener(tr("&File"), fileMenu, this);
    itemStart = pictureButton(ServerItem::playIcon, ServerItem::toStart, this);
    itemSettings = pictureButton(icon(QLatin1String("preferences-system.png")),
                                 tr("Settings of the selected address"), this);
    sharedLink = new LinkLabel(this);
    connect(itemStart, &QPushButton::clicked, this, &MainWindow::toggleItem);
    connect(itemSettings, &QPushButton::clicked, addresses, &AddressList::editProfile);
    connect(sharedLink, &QLabel::linkActivated, this, &MainWindow::linkActivated);
}

void MainWindow::create()
{
    auto *caption = new QLabel(tr("Shared Content:"));
    caption->setBuddy(sharedLink);
    auto *shared = new QHBoxLayout;
    shared->addWidget(caption);
    shared->addWidget(sharedLink, 1);

    auto *buttons = new QHBoxLayout;
    buttons->addWidget(fileButton, 1);
    buttons->addWidget(itemStart);
    buttons->addWidget(itemSettings);
    buttons->addWidget(menuButton, 1);

    auto *content = new QWidget;
    auto *layout = new QVBoxLayout(content);
    layout->addLayout(buttons);
    layout->addLayout(shared);
    layout->addWidget(addresses, 1);
    layout->addWidget(events->getStatusWidget());

    auto *area = new QScrollArea;
    area->setWidgetResizable(true);
    area->setFrameShape(QFrame::NoFrame);
    area->setFocusPolicy(Qt::NoFocus);
    area->setWidget(content);
    scrollByFinger(area);
    setCentralWidget(area);
    setTabOrders();
    const QSize room = screen()->availableSize();
    fitToScreen(this, room.height() > room.width() ? usualSize.transposed() : usualSize);
}

void MainWindow::setTabOrders()
{
    QWidget *const order[] = { fileButton,
                               itemStart,
                               itemSettings,
                               menuButton,
                               sharedLink,
                               addresses->table(),
                               addresses->startButton(),
                               addresses->statusLabel() };
    for (std::size_t i = 1; i < std::size(order); ++i)
        setTabOrder(order[i - 1], order[i]);
    addresses->startButton()->setFocus();
}

void MainWindow::connectList()
{
    connect(reloadPublic, &QAction::triggered, addresses->reachability(),
            &Reachability::loadPublic);
    connect(reloadLocal, &QAction::triggered, addresses, &AddressList::loadLocal);
    connect(addresses, &AddressList::selectionChanged, this, &MainWindow::changed);
    connect(addresses, &AddressList::onlineStateChanged, this, &MainWindow::onlineStateChanged);
    connect(addresses, &AddressList::dataLimit, this, &MainWindow::dataLimit);
}

void MainWindow::setRootMode(const char *mode)
{
    const bool root = mode && std::strcmp(mode, "root") == 0;
    addresses->setRootMode(root);
    if (!root || profiles->global()->warningMode != Qt::Checked)
        return;
    const QString text = tr("The server run as root!") + QLatin1Char('\n')
        + tr("Use this mode only if you want to use port 1 - 1024!");
    // Queued: the window is to be seen first.
    QMetaObject::invokeMethod(
        this, [this, text] { showBox(this, QMessageBox::Warning, text); }, Qt::QueuedConnection);
}

// --- shared content -----------------------------------------------------------------------------

void MainWindow::browseFolder()
{
    fileOrDirSelected(choosePath(this, PathKind::Folder, tr("Select Folder"), getParentDir()));
}

void MainWindow::browseFile()
{
    fileOrDirSelected(choosePath(this, PathKind::File, tr("Select File"), getParentDir()));
}

void MainWindow::openRecentFile()
{
    if (const auto *action = qobject_cast<QAction *>(sender()))
        fileOrDirSelected(action->data().toString());
}

void MainWindow::fileOrDirSelected(const QString &path)
{
    if (path.isEmpty())
        return;
    if (!QFileInfo::exists(path)) {
        showBox(this, QMessageBox::Warning, missingText(path));
        return;
    }
    addresses->setSharedContent(path);
    showShared(path);
    changed(addresses->getSelectedItem());
    setCurrentFile(path);
}

void MainWindow::setCurrentFile(const QString &path)
{
    profiles->global()->amend([&path](Profile &global) { global.addRecentFile(path); });
    updateRecentFileActions();
}

void MainWindow::updateRecentFileActions()
{
    const QStringList &paths = profiles->global()->recentFiles;
    for (std::size_t i = 0; i < recentFiles.size(); ++i) {
        const bool used = int(i) < paths.size();
        recentFiles[i]->setVisible(used);
        if (!used)
            continue;
        recentFiles[i]->setText(recentFileLabel(paths.at(int(i))));
        recentFiles[i]->setData(paths.at(int(i)));
    }
}

void MainWindow::showShared(const QString &path)
{
    const ServerItem *item = addresses->getSelectedItem();
    sharedLink->setLink(shownPath(path), item ? item->getUrl() : QString());
}

QString MainWindow::getParentDir() const
{
    const ServerItem *item = addresses->getSelectedItem();
    const QFileInfo shared(item ? item->server()->shared.filePath() : QString());
    if (!shared.isReadable())
        return QDir::rootPath();
    return shared.isDir() ? shared.absoluteFilePath() : shared.absolutePath();
}

void MainWindow::linkActivated(const QString &link)
{
    Q_UNUSED(link)
    if (const ServerItem *item = addresses->getSelectedItem())
        QDesktopServices::openUrl(QUrl(item->getUrl()));
}

// --- the selected item --------------------------------------------------------------------------

void MainWindow::changed(ServerItem *item)
{
    itemStart->setEnabled(item);
    itemSettings->setEnabled(item);
    if (!item)
        return;
    const bool listening = item->isListening();
    const QString action = listening ? ServerItem::toStop : ServerItem::toStart;
    itemStart->setIcon(listening ? ServerItem::stopIcon : ServerItem::playIcon);
    itemStart->setAccessibleName(action);
    itemStart->setToolTip(action);
    showShared(item->server()->shared.absoluteFilePath());
}

void MainWindow::toggleItem()
{
    if (ServerItem *item = addresses->getSelectedItem())
        addresses->toggle(item);
}

void MainWindow::onlineStateChanged(bool online)
{
    addresses->setOnlineState(online);
}

void MainWindow::dataLimit(WebServer *server)
{
    ServerItem *item = addresses->itemOf(server);
    if (!item)
        return;
    item->stopAll();
    item->stop();
    if (limitBoxes.contains(server))
        return;
    limitBoxes.insert(server);
    const QMessageBox *box = showBox(this, QMessageBox::Critical, trafficLimitText(*server));
    connect(box, &QDialog::finished, this, [this, server] { limitBoxes.remove(server); });
}

// --- menu ---------------------------------------------------------------------------------------

void MainWindow::globalConfig()
{
    addresses->edit(profiles->global());
}

void MainWindow::guiConf()
{
    LookDialog(this).exec();
}

void MainWindow::setExpertMode(bool on)
{
    Profile *global = profiles->global();
    if (!addresses->askForStop(tr("Do you want to stop?"))) {
        const QSignalBlocker quiet(expertMode);
        expertMode->setChecked(global->expertMode);
        return;
    }
    if (addresses->isRunning())
        addresses->stopServers();
    if (global->expertMode != on)
        global->amend([on](Profile &profile) { profile.expertMode = on; });
    addresses->profileEdited(global);
    settings->setText(on ? tr("Global Default Settings") : tr("Settings"));
    reloadPublic->setVisible(on);
    reloadLocal->setVisible(on);
    // In simple mode the large button does for all.
    itemStart->setVisible(on);
}

void MainWindow::help()
{
    MessageDialog::help(profiles->directories().language, QStringLiteral("index"), this);
}

void MainWindow::about()
{
    const QString text = QLatin1String("Quillon\n") + tr("Version") + QLatin1String(": ")
        + QLatin1String(QUILLON_VERSION) + QLatin1Char('\n') + contactAddress;
    QMessageBox *box = showBox(this, QMessageBox::Information, text);
    box->setWindowTitle(tr("About Quillon"));
}

void MainWindow::aboutQt()
{
    QMessageBox::aboutQt(this);
}

// --- the end ------------------------------------------------------------------------------------

void MainWindow::closeEvent(QCloseEvent *event)
{
    if (ended)
        return;
    if (!addresses->askForStop(tr("Do you want to exit?"))) {
        event->ignore();
        return;
    }
    if (!endInOrder())
        warn(this,
             tr("Can't save the settings") + QLatin1Char('\n') + profiles->directories().profiles);
    event->accept();
}

bool MainWindow::endInOrder()
{
    ended = true;
    const bool rowsSaved = addresses->end();
    events->stopTimer();
    BrowserPages::previews.clear();
    return profiles->endInOrder() && rowsSaved;
}

void MainWindow::showEvent(QShowEvent *event)
{
    QMainWindow::showEvent(event);
    if (std::exchange(wasShown, true))
        return;
    // Nothing goes out before the window is there.
    QMetaObject::invokeMethod(addresses->reachability(), &Reachability::refreshPublic,
                              Qt::QueuedConnection);
}
