#include "desktop/window/MainWindow.h"

#include "config/Profiles.h"
#include "desktop/widgets/LinkLabel.h"
#include "desktop/widgets/Prompts.h"
#include "desktop/widgets/Touch.h"
#include "desktop/window/Activity.h"
#include "desktop/window/AddressHero.h"
#include "desktop/window/AddressList.h"
#include "desktop/window/AddressTable.h"
#include "desktop/window/DesktopIntegration.h"
#include "desktop/window/EventHandler.h"
#include "desktop/window/MainMenu.h"
#include "desktop/window/PermissionButton.h"
#include "desktop/window/RowPanel.h"
#include "desktop/window/ServerRow.h"
#include "desktop/window/StartQuestions.h"
#include "desktop/window/WindowText.h"

#include <QApplication>
#include <QClipboard>
#include <QCloseEvent>
#include <QDesktopServices>
#include <QDir>
#include <QDropEvent>
#include <QLabel>
#include <QMimeData>
#include <QPushButton>
#include <QScrollArea>
#include <QSessionManager>
#include <QSettings>
#include <QUrl>
#include <QVBoxLayout>

#include <algorithm>
#include <chrono>
#include <utility>

using namespace std::chrono_literals;

namespace {

constexpr QSize windowSize(800, 480);
constexpr auto restTime = 500ms; ///< after a move
const QLatin1String geometryKey("geometry");
constexpr int authenticationPage = 1; ///< of the settings dialog

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

/// The path of the file or folder; empty when there are several, or one that is elsewhere.
QString droppedPath(const QMimeData *dropped)
{
    const QList<QUrl> urls = dropped->urls();
    const bool isOne = urls.size() == 1 && urls.constFirst().isLocalFile();
    // A "file" may name another computer, too.
    const bool isHere = isOne && urls.constFirst().host().isEmpty();
    return isHere ? QDir::cleanPath(urls.constFirst().toLocalFile()) : QString();
}

/// That of the current row, or else of the first one that runs; empty when none does.
QString runningAddress(const ServerRows &rows)
{
    QList<ServerRow *> all = rows.shownRows();
    all.prepend(rows.current());
    const auto running = std::find_if(all.constBegin(), all.constEnd(), [](const ServerRow *row) {
        return row && row->isListening();
    });
    return running == all.constEnd() ? QString() : (*running)->url();
}

void setTabOrders(const QList<QWidget *> &order)
{
    for (int i = 1; i < order.size(); ++i)
        QWidget::setTabOrder(order.at(i - 1), order.at(i));
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
                       const std::shared_ptr<const ServerSetup> &common, bool rootMode,
                       AddressSource source, Announce announce)
    : profiles(choice)
    , events(sink)
{
    events->showBoxesOver(this);
    setWindowTitle(QStringLiteral("Quillon"));
    setWindowIcon(QIcon(QStringLiteral(":/icons/MobileServer.png")));
    startProfiles();
    m_keeper = std::make_unique<RowKeeper>(profiles, common, std::move(source));
    m_reachability = std::make_unique<Reachability>(rows(), profiles);
    activity = std::make_unique<Activity>(rows(), common);
    integration = std::make_unique<DesktopIntegration>(rows(), events, std::move(announce), this);
    events->watch(rows());

    addresses = new AddressList(profiles, keeper(), rootMode, this);
    menu = new MainMenu(lookInUse, profiles->directories().language, this);
    panel = new RowPanel(profiles, keeper(), menu, this);
    new StartQuestions(rows(), panel, this);
    statusLine = new QLabel(this);
    statusLine->setWordWrap(true);
    layOut();
    connectRows();
    connectReachability();
    connectMenus();
    connectTray();
    setExpertMode(rows()->mode()->isExpert());
    if (rootMode)
        warnOfRoot();
}

MainWindow::~MainWindow()
{
    events->watch(nullptr);
    // While what they report to is whole.
    integration.reset();
    activity.reset();
    m_reachability.reset();
    m_keeper.reset();
}

void MainWindow::startProfiles()
{
    for (int i = 0; i < profiles->count(); ++i) {
        const Profile *profile = profiles->at(i);
        if (profile->fileState() == Profile::FileState::TextUnreadable)
            events->msg(unreadableText(), profile->fileInTheWay());
        else if (!profile->isUsable())
            events->msg(
                tr("A profile can't be read: its password and users are gone, and nothing is "
                   "served with it until you have looked at its settings and saved them. If you "
                   "changed the file on purpose, delete %1 and start again. Saving keeps the file "
                   "as %2")
                    .arg(profile->fileName() + QLatin1String(".sum"),
                         profile->fileName() + QLatin1String(".bad")),
                profile->fileName());
        if (const QString file = profile->textSetAside(); !file.isEmpty())
            events->msg(tr("Some values of a profile could not be read. The defaults are used "
                           "for them; the file is kept as %1")
                            .arg(file + QLatin1String(".bad")),
                        file);
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

void MainWindow::layOut()
{
    auto *content = new QWidget;
    auto *layout = new QVBoxLayout(content);
    layout->addWidget(panel);
    layout->addWidget(addresses, 1);
    layout->addWidget(statusLine);

    setCentralWidget(scrolled(content));
    setAcceptDrops(true);
    QList<QWidget *> tabOrder = panel->tabOrder();
    tabOrder += { addresses->table(), addresses->startButton(), addresses->permissionButton() };
    tabOrder += addresses->hero()->tabOrder();
    tabOrder += { addresses->statusLabel(), addresses->switchLink() };
    setTabOrders(tabOrder);
    addresses->startButton()->setFocus();

    fitToScreen(this, windowSize);
    restoreGeometry(QSettings().value(geometryKey).toByteArray());
    geometryTimer.setSingleShot(true);
    connect(&geometryTimer, &QTimer::timeout, this, &MainWindow::saveGeometryNow);
}

void MainWindow::connectRows()
{
    ServerRows *servers = rows();
    const Reachability *reach = reachability();
    connect(servers, &ServerRows::dataLimit, this, &MainWindow::dataLimit);
    connect(servers, &ServerRows::publicAddressWanted, reach, &Reachability::refreshPublic);
    connect(servers->mode(), &GlobalMode::dnsWanted, reach, &Reachability::loadPublic);
    connect(keeper(), &RowKeeper::onlineChanged, this, [this](bool online) {
        if (online)
            return m_reachability->followNetwork();
        m_reachability->noPublic();
        addresses->showNetwork();
    });
    connect(keeper(), &RowKeeper::told, events, &EventHandler::note);
    connect(servers, &ServerRows::runningChanged, this, [this](bool running) {
        if (running)
            events->startTimer();
    });
    connect(events, &EventHandler::statusChanged, statusLine, &QLabel::setText);
}

void MainWindow::connectReachability()
{
    const Reachability *reach = reachability();
    connect(reach, &Reachability::labelChanged, addresses, &AddressList::showReach);
    connect(reach, &Reachability::told, events, &EventHandler::statusmsg);
    connect(reach, &Reachability::noted, events, &EventHandler::note);
    connect(reach, &Reachability::warned, this,
            [this](const QString &text) { showBox(this, QMessageBox::Warning, text); });
    connect(reach, &Reachability::everyoneAdmitted, this, &MainWindow::askForPassword);
    connect(reach, &Reachability::pageOffered, this, &QDesktopServices::openUrl);
}

void MainWindow::connectMenus()
{
    connect(menu, &MainMenu::publicReloadWanted, reachability(), &Reachability::loadPublic);
    connect(menu, &MainMenu::localReloadWanted, keeper(), &RowKeeper::loadLocal);
    connect(menu, &MainMenu::addressWanted, this, &MainWindow::copyAddress);
    connect(menu, &MainMenu::activityWanted, this, [this] { activity->show(this); });
    connect(events, &EventHandler::deedsDone, activity.get(), &Activity::note);
    connect(events, &EventHandler::noted, activity.get(), &Activity::addNote);
    connect(addresses->hero(), &AddressHero::copyWanted, this, &MainWindow::copy);
    connect(menu, &MainMenu::settingsWanted, this, [this] { addresses->edit(profiles->global()); });
    connect(menu, &MainMenu::expertModeWanted, this, &MainWindow::setExpertMode);
    connect(panel, &RowPanel::settingsWanted, addresses, &AddressList::editProfile);
}

void MainWindow::connectTray()
{
    const TrayIcon *tray = integration->tray();
    connect(tray, &TrayIcon::windowWanted, this, [this] { call({}); });
    connect(tray, &TrayIcon::startStopWanted, addresses, &AddressList::startOrStop);
    connect(tray, &TrayIcon::addressWanted, this, &MainWindow::copyAddress);
    connect(tray, &TrayIcon::quitWanted, this, &MainWindow::quit);
    connect(menu, &MainMenu::quitWanted, this, &MainWindow::quit);
}

void MainWindow::quit()
{
    const Life before = std::exchange(life, Life::Quitting);
    const bool isClosed = close();
    life = before;
    if (isClosed && before == Life::InTray)
        QApplication::quit();
}

void MainWindow::copyAddress()
{
    const QLabel *label = addresses->statusLabel();
    // Where there are several, the user may have marked the one that he wants.
    const bool isMarked = label->hasFocus() && label->hasSelectedText();
    const QString address = isMarked ? label->selectedText() : runningAddress(*rows());
    if (address.isEmpty())
        return events->statusmsg(tr("No server is running, so there is no address to copy."));
    copy(address);
}

void MainWindow::copy(const QString &address)
{
    QApplication::clipboard()->setText(address);
    events->statusmsg(tr("Copied: %1").arg(address.toHtmlEscaped()));
}

// --- what the servers say -----------------------------------------------------------------------

void MainWindow::dataLimit(WebServer *server)
{
    ServerRow *row = rows()->rowOf(server);
    if (!row)
        return;
    row->stop();
    if (limitBoxes.contains(server))
        return;
    if (integration->notices()->tell(Notices::limitTitle(), trafficLimitText(*server)))
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

// --- the mode -----------------------------------------------------------------------------------

void MainWindow::setExpertMode(bool on)
{
    if (!addresses->askForStop(tr("Do you want to stop?"))) {
        menu->showMode(rows()->mode()->isExpert());
        return;
    }
    if (rows()->isRunning())
        rows()->stopAll();
    rows()->mode()->setExpert(on);
    menu->showMode(on);
    panel->showMode(on);
}

// --- what is dropped on the window --------------------------------------------------------------

void MainWindow::dragEnterEvent(QDragEnterEvent *event)
{
    if (!event->mimeData()->hasUrls())
        return;
    // Whoever lets it be dragged must not take it for moved.
    event->setDropAction(Qt::CopyAction);
    event->accept();
}

void MainWindow::dropEvent(QDropEvent *event)
{
    event->setDropAction(Qt::CopyAction);
    event->accept();
    if (const QString path = droppedPath(event->mimeData()); !path.isEmpty())
        panel->share(path);
    else
        showBox(this, QMessageBox::Warning, tr("Drop one file or folder of this computer."));
}

// --- the end ------------------------------------------------------------------------------------

void MainWindow::closeEvent(QCloseEvent *event)
{
    if (ended)
        return;
    if (life != Life::Quitting && event->spontaneous() && integration->goesOnInTray()) {
        // Its boxes would be the last windows, and end the program with them.
        QApplication::setQuitOnLastWindowClosed(false);
        life = Life::InTray;
        event->ignore();
        return hide();
    }
    if (!addresses->askForStop(tr("Do you want to exit?"))) {
        event->ignore();
        return;
    }
    if (!endInOrder())
        warn(this,
             tr("Can't save the settings") + QLatin1Char('\n') + profiles->directories().profiles);
    event->accept();
    if (life == Life::InTray)
        QApplication::quit();
}

bool MainWindow::endInOrder()
{
    if (std::exchange(ended, true))
        return true;
    saveGeometryNow();
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

void MainWindow::moveEvent(QMoveEvent *event)
{
    QMainWindow::moveEvent(event);
    geometryTimer.start(restTime);
}

void MainWindow::resizeEvent(QResizeEvent *event)
{
    QMainWindow::resizeEvent(event);
    geometryTimer.start(restTime);
}

void MainWindow::saveGeometryNow()
{
    if (wasShown)
        QSettings().setValue(geometryKey, saveGeometry());
}

void MainWindow::call(const StartRequest &request)
{
    const bool isUnsafe = !wasShown && keeper()->beganAnew();
    setWindowState(windowState() & ~Qt::WindowMinimized);
    show();
    raise();
    activateWindow();
    if (!request.path.isEmpty() && !panel->share(request.path))
        return;
    // Queued: it may ask, and who calls is not to wait for the answer.
    if (request.startsRows && !isUnsafe)
        QMetaObject::invokeMethod(rows(), &ServerRows::startShown, Qt::QueuedConnection);
}

void endWithTheSession(QApplication *app, MainWindow *window)
{
#if QT_VERSION < QT_VERSION_CHECK(6, 0, 0)
    QApplication::setFallbackSessionManagementEnabled(false);
#endif
    // Nobody may be there to answer a question, and there is little time. Direct: the session goes
    // on as soon as the signal is through.
    QObject::connect(
        app, &QGuiApplication::commitDataRequest, window,
        [window] {
            window->endInOrder();
            QMetaObject::invokeMethod(
                window, [] { QApplication::exit(); }, Qt::QueuedConnection);
        },
        Qt::DirectConnection);
}
