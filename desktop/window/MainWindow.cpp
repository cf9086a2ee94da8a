#include "desktop/window/MainWindow.h"

#include "config/Profiles.h"
#include "desktop/look/LookDialog.h"
#include "desktop/widgets/LinkLabel.h"
#include "desktop/widgets/MessageDialog.h"
#include "desktop/widgets/Prompts.h"
#include "desktop/widgets/Touch.h"
#include "desktop/window/AddressList.h"
#include "desktop/window/AddressTable.h"
#include "desktop/window/EventHandler.h"
#include "desktop/window/FileMenu.h"
#include "desktop/window/ServerRow.h"
#include "desktop/window/StartStop.h"

#include <QAction>
#include <QCloseEvent>
#include <QDesktopServices>
#include <QDir>
#include <QLabel>
#include <QMenu>
#include <QPushButton>
#include <QScreen>
#include <QScrollArea>
#include <QVBoxLayout>

#include <cstring>
#include <utility>

namespace {

const QLatin1String contactAddress("https://quillon.example/");
constexpr QSize usualSize(800, 480);
constexpr QSize pictureSize(32, 32);
constexpr int authenticationPage = 1; ///< of the settings dialog

QIcon icon(QLatin1String name)
{
    return QIcon(QLatin1String(":/icons/") + name);
}

QString shownPath(const QString &path)
{
    const bool bare = QFileInfo(path).isDir() && !path.endsWith(QLatin1Char('/'));
    return bare ? path + QLatin1Char('/') : path;
}

/// Where the search for something else to share begins.
QString folderOf(const QFileInfo &shared)
{
    if (!shared.isReadable())
        return QDir::rootPath();
    return shared.isDir() ? shared.absoluteFilePath() : shared.absolutePath();
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

QPushButton *menuOpener(const QString &text, QMenu *menu)
{
    auto *button = new Finger<QPushButton>;
    button->setText(text);
    button->setMenu(menu);
    return button;
}

QScrollArea *scrolled(QWidget *content)
{
    auto *area = new QScrollArea;
    area->setWidgetResizable(true);
    area->setFrameShape(QFrame::NoFrame);
    area->setFocusPolicy(Qt::NoFocus);
    area->setWidget(content);
    scrollByFinger(area);
    return area;
}

void setTabOrders(const QList<QWidget *> &order)
{
    for (int i = 1; i < order.size(); ++i)
        QWidget::setTabOrder(order.at(i - 1), order.at(i));
}

QHBoxLayout *rowOf(const QList<QWidget *> &widgets)
{
    auto *row = new QHBoxLayout;
    for (QWidget *widget : widgets)
        row->addWidget(widget);
    return row;
}

} // namespace

QString trafficLimitText(const WebServer &server)
{
    return MainWindow::tr("Max. network traffic limit")
        + QStringLiteral(": %1 KB ").arg(shownKB(server.dataLimitBytes()))
        + MainWindow::tr("reached") + QLatin1Char('\n') + MainWindow::tr("Server stopped on")
        + QStringLiteral(" %1:%2.\n").arg(server.ip().toString(), QString::number(server.port))
        + MainWindow::tr("Sent bytes") + QStringLiteral(": %1 KB").arg(shownKB(server.sentBytes()))
        + QLatin1Char('\n') + MainWindow::tr("Received bytes")
        + QStringLiteral(": %1 KB").arg(shownKB(server.receivedBytes()));
}

MainWindow::MainWindow(Profiles *choice, Look *lookInUse, EventHandler *sink,
                       const std::shared_ptr<const ServerSetup> &common, const char *mode,
                       AddressSource source)
    : profiles(choice)
    , look(lookInUse)
    , events(sink)
{
    events->showBoxesOver(this);
    setWindowTitle(QStringLiteral("Quillon"));
    setWindowIcon(icon(QLatin1String("MobileServer.png")));
    startProfiles();
    m_keeper = std::make_unique<RowKeeper>(profiles, common, std::move(source));
    m_reachability = std::make_unique<Reachability>(rows(), profiles);
    events->watch(rows());

    const bool rootMode = mode && std::strcmp(mode, "root") == 0;
    addresses = new AddressList(profiles, keeper(), rootMode, this);
    menu = new QMenu(this);
    fileMenu = new FileMenu(this);
    makeMenu();
    makeButtons();
    layOut();
    connectRows();
    fileMenu->showRecent(profiles->global()->recentFiles);
    setExpertMode(expertMode->isChecked());
    showCurrent(rows()->current());
    if (rootMode)
        warnOfRoot();
}

MainWindow::~MainWindow()
{
    events->watch(nullptr);
    // While what they report to is whole.
    m_reachability.reset();
    m_keeper.reset();
}

void MainWindow::startProfiles()
{
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

void MainWindow::warnOfRoot()
{
    if (profiles->global()->warningMode != Qt::Checked)
        return;
    const QString text = tr("The server run as root!") + QLatin1Char('\n')
        + tr("Use this mode only if you want to use port 1 - 1024!");
    // Queued: the window is to be seen first.
    QMetaObject::invokeMethod(
        this, [this, text] { showBox(this, QMessageBox::Warning, text); }, Qt::QueuedConnection);
}

// --- widgets ------------------------------------------------------------------------------------

QAction *MainWindow::addMenuAction(const QString &text, const char *name)
{
    QAction *action = menu->addAction(text);
    action->setObjectName(QLatin1String(name));
    return action;
}

void MainWindow::makeMenu()
{
    sizeForFingers(menu);
    reloadPublic = addMenuAction(tr("Reload public addressess"), "reloadPublic");
    reloadLocal = addMenuAction(tr("Reload local addresses"), "reloadLocal");
    settings = addMenuAction(tr("Settings"), "settings");
    const QAction *lookAction = addMenuAction(tr("Look and Feel"), "lookAndFeel");
    expertMode = addMenuAction(tr("Expert mode"), "expertMode");
    expertMode->setCheckable(true);
    expertMode->setChecked(rows()->mode()->isExpert());
    QAction *helpAction = addMenuAction(tr("Help"), "help");
    const QAction *aboutAction = addMenuAction(tr("About Quillon"), "about");
    const QAction *aboutQt = addMenuAction(tr("About Qt"), "aboutQt");

    connect(reloadPublic, &QAction::triggered, m_reachability.get(), &Reachability::loadPublic);
    connect(reloadLocal, &QAction::triggered, keeper(), &RowKeeper::loadLocal);
    connect(settings, &QAction::triggered, this, [this] { addresses->edit(profiles->global()); });
    connect(lookAction, &QAction::triggered, this, [this] { LookDialog(look, this).exec(); });
    connect(expertMode, &QAction::triggered, this, &MainWindow::setExpertMode);
    connect(helpAction, &QAction::triggered, this, &MainWindow::help);
    connect(aboutAction, &QAction::triggered, this, &MainWindow::about);
    connect(aboutQt, &QAction::triggered, this, [this] { QMessageBox::aboutQt(this); });

    helpAction->setShortcut(QKeySequence::HelpContents);
    addAction(helpAction);
}

void MainWindow::makeButtons()
{
    itemStart = pictureButton(startStopIcon(false), startStopText(false), this);
    itemSettings = pictureButton(icon(QLatin1String("preferences-system.png")),
                                 tr("Settings of the selected address"), this);
    sharedLink = new LinkLabel(this);
    statusLine = new QLabel(this);
    statusLine->setWordWrap(true);
    connect(itemSettings, &QPushButton::clicked, addresses, &AddressList::editProfile);
    connect(itemStart, &QPushButton::clicked, this, [this] {
        if (ServerRow *row = rows()->current())
            row->toggle();
    });
    connect(sharedLink, &QLabel::linkActivated, this, [this] {
        if (const ServerRow *row = rows()->current())
            QDesktopServices::openUrl(QUrl(row->url()));
    });
    connect(fileMenu, &FileMenu::chosen, this, &MainWindow::share);
}

void MainWindow::layOut()
{
    QPushButton *fileButton = menuOpener(tr("&File"), fileMenu);
    QPushButton *menuButton = menuOpener(tr("&Menu"), menu);
    QHBoxLayout *buttons = rowOf({ fileButton, itemStart, itemSettings, menuButton });
    buttons->setStretchFactor(fileButton, 1);
    buttons->setStretchFactor(menuButton, 1);
    auto *caption = new QLabel(tr("Shared Content:"));
    caption->setBuddy(sharedLink);
    QHBoxLayout *shared = rowOf({ caption, sharedLink });
    shared->setStretchFactor(sharedLink, 1);

    auto *content = new QWidget;
    auto *layout = new QVBoxLayout(content);
    layout->addLayout(buttons);
    layout->addLayout(shared);
    layout->addWidget(addresses, 1);
    layout->addWidget(statusLine);

    setCentralWidget(scrolled(content));
    setTabOrders({ fileButton, itemStart, itemSettings, menuButton, sharedLink, addresses->table(),
                   addresses->startButton(), addresses->statusLabel() });
    addresses->startButton()->setFocus();

    const QSize room = screen()->availableSize();
    fitToScreen(this, room.height() > room.width() ? usualSize.transposed() : usualSize);
}

void MainWindow::connectRows()
{
    ServerRows *servers = rows();
    const Reachability *reach = reachability();
    connect(servers, &ServerRows::currentChanged, this, &MainWindow::showCurrent);
    connect(servers, &ServerRows::dataLimit, this, &MainWindow::dataLimit);
    connect(servers, &ServerRows::publicAddressWanted, reach, &Reachability::refreshPublic);
    connect(servers->mode(), &GlobalMode::dnsWanted, reach, &Reachability::loadPublic);
    connect(keeper(), &RowKeeper::onlineChanged, this, [this](bool online) {
        if (online)
            return m_reachability->refreshPublic();
        m_reachability->noPublic();
        addresses->showNetwork();
    });
    connect(servers, &ServerRows::runningChanged, this, [this](bool running) {
        if (running)
            events->startTimer();
    });
    connect(reach, &Reachability::labelChanged, addresses->statusLabel(), &QLabel::setText);
    connect(reach, &Reachability::told, events, &EventHandler::statusmsg);
    connect(reach, &Reachability::warned, this,
            [this](const QString &text) { showBox(this, QMessageBox::Warning, text); });
    connect(reach, &Reachability::everyoneAdmitted, this, &MainWindow::askForPassword);
    connect(reach, &Reachability::pageOffered, this, &QDesktopServices::openUrl);
    connect(events, &EventHandler::statusChanged, statusLine, &QLabel::setText);
}

// --- what is shared -----------------------------------------------------------------------------

void MainWindow::share(const QString &path)
{
    if (!QFileInfo::exists(path)) {
        showBox(this, QMessageBox::Warning, missingText(path));
        return;
    }
    m_keeper->share(path);
    sharedLink->setLink(shownPath(path), {});
    showCurrent(rows()->current());
    profiles->global()->amend([&path](Profile &global) { global.addRecentFile(path); });
    fileMenu->showRecent(profiles->global()->recentFiles);
}

void MainWindow::showCurrent(ServerRow *row)
{
    itemStart->setEnabled(row);
    itemSettings->setEnabled(row);
    fileMenu->setStart(row ? folderOf(row->server()->shared()) : QDir::rootPath());
    if (!row)
        return;
    const QString action = startStopText(row->isListening());
    itemStart->setIcon(startStopIcon(row->isListening()));
    itemStart->setAccessibleName(action);
    itemStart->setToolTip(action);
    sharedLink->setLink(shownPath(row->server()->shared().absoluteFilePath()), row->url());
}

void MainWindow::dataLimit(WebServer *server)
{
    ServerRow *row = rows()->rowOf(server);
    if (!row)
        return;
    row->stop();
    if (limitBoxes.contains(server))
        return;
    limitBoxes.insert(server);
    const QMessageBox *box = showBox(this, QMessageBox::Critical, trafficLimitText(*server));
    connect(box, &QDialog::finished, this, [this, server] { limitBoxes.remove(server); });
}

void MainWindow::askForPassword(ServerRow *row)
{
    if (asksForPassword)
        return;
    asksForPassword = true;
    const QPointer<ServerRow> still(row);
    const bool wanted = askYesNo(this,
                                 tr("The shared files are accessible for everyone.")
                                     + QLatin1Char('\n') + tr("Do you want to set password?"));
    asksForPassword = false;
    if (wanted && still)
        addresses->edit(still->profile(), authenticationPage);
}

// --- menu ---------------------------------------------------------------------------------------

void MainWindow::setExpertMode(bool on)
{
    if (!addresses->askForStop(tr("Do you want to stop?"))) {
        expertMode->setChecked(rows()->mode()->isExpert());
        return;
    }
    if (rows()->isRunning())
        rows()->stopAll();
    rows()->mode()->setExpert(on);
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
    const bool rowsSaved = m_keeper->end();
    events->stopTimer();
    return profiles->endInOrder() && rowsSaved;
}

void MainWindow::showEvent(QShowEvent *event)
{
    QMainWindow::showEvent(event);
    // Nothing goes out before the window is there.
    if (!std::exchange(wasShown, true))
        QMetaObject::invokeMethod(m_reachability.get(), &Reachability::refreshPublic,
                                  Qt::QueuedConnection);
}
