#include "classic/pages/BrowserPages.h"
#include "config/Profile.h"
#include "desktop/widgets/Labels.h"
#include "desktop/widgets/MessageDialog.h"
#include "desktop/window/AddressTable.h"
#include "desktop/window/EventHandler.h"
#include "desktop/window/ServerItem.h"
#include "tests/desktop/Desktop.h"
#include "tests/desktop/Widgets.h"
#include "tests/support/LiveServer.h"

#include <QAction>
#include <QFileDialog>
#include <QImage>
#include <QMenu>
#include <QPushButton>
#include <QSettings>

class tst_mainwindow : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase() { Q_INIT_RESOURCE(icons); }

    void sharedContent();
    void recentFiles();
    void everythingIsThereAgain();
    void closeIsAskedFor();
    void endings_data();
    void endings();
    void diskFullAtClose();

    void expertMode();
    void rootMode_data();
    void rootMode();
    void helpAndAbout();

    void limitUnderTraffic();
    void statusLine();
    void messagesQueue();

    void servicesWaitForTheWindow();
    void fitsSmallScreens_data() { SmallScreens::addSizes(); }
    void fitsSmallScreens();
    void menusAndFileDialogs();

private:
    static QAction *action(const Desktop &desktop, const char *name);
    static QMessageBox *openBox();
};

QAction *tst_mainwindow::action(const Desktop &desktop, const char *name)
{
    return desktop.window->findChild<QAction *>(QLatin1String(name));
}

QMessageBox *tst_mainwindow::openBox()
{
    return qobject_cast<QMessageBox *>(QApplication::activeModalWidget());
}

void tst_mainwindow::sharedContent()
{
    Desktop desktop;
    desktop.home.addFile("share/a.txt");
    const auto *link = desktop.window->findChild<LinkLabel *>();
    const auto *server = desktop.item()->server();
    desktop.choose("share");
    QCOMPARE(link->linkText(), desktop.home.path("share/"));
    QVERIFY(!server->singleFile);
    desktop.choose("share/a.txt");
    QCOMPARE(link->linkText(), desktop.home.path("share/a.txt"));
    QVERIFY(server->singleFile);

    desktop.window->fileOrDirSelected(QString());
    QCOMPARE(boxText([&] { desktop.choose("share/<b>"); }),
             QLatin1Char('"') + desktop.home.path("share/<b>") + QLatin1String("\" not exists!"));
    QCOMPARE(link->linkText(), desktop.home.path("share/a.txt"));
    QCOMPARE(desktop.shared(), desktop.home.path("share/a.txt"));
    QCOMPARE(desktop.profiles->global()->recentFiles.size(), 2);
}

void tst_mainwindow::recentFiles()
{
    Desktop desktop;
    for (const char *name : { "0.txt", "1.txt", "2.txt", "3.txt", "4.txt" }) {
        const QByteArray file = QByteArray("file-") + name;
        desktop.home.addFile(file);
        desktop.choose(file);
    }
    QStringList shown;
    QAction *second = nullptr;
    const QList<QAction *> actions = desktop.window->findChildren<QAction *>();
    for (QAction *entry : actions) {
        if (entry->isVisible() && entry->data().isValid())
            shown.append(entry->text());
        if (entry->text() == QLatin1String("file-2.txt"))
            second = entry;
    }
    QCOMPARE(shown.join(QLatin1Char(' ')),
             QStringLiteral("file-4.txt file-3.txt file-2.txt file-1.txt"));
    second->trigger();
    QCOMPARE(desktop.shared(), desktop.home.path("file-2.txt"));
    QCOMPARE(desktop.profiles->global()->recentFiles.constFirst(), desktop.shared());
}

void tst_mainwindow::everythingIsThereAgain()
{
    Desktop desktop;
    desktop.home.addFile("share/a.txt");
    desktop.choose("share");
    desktop.item()->setPort(7010);
    action(desktop, "expertMode")->trigger();
    desktop.close();
    desktop.open();
    QVERIFY(action(desktop, "expertMode")->isChecked());
    QCOMPARE(desktop.shared(), desktop.home.path("share"));
    QCOMPARE(desktop.item()->text(), QStringLiteral("127.0.0.1:7010"));
    QCOMPARE(desktop.profiles->global()->recentFiles, QStringList{ desktop.shared() });
}

void tst_mainwindow::closeIsAskedFor()
{
    Desktop desktop([](Profile &global) { global.warningMode = Qt::Checked; });
    desktop.item()->start();
    QCOMPARE(boxText([&] { QVERIFY(!desktop.window->close()); }, QMessageBox::No),
             QStringLiteral("The server is running.\nDo you want to exit?"));
    QVERIFY(desktop.item()->isListening());
    QVERIFY(desktop.window->isVisible());

    QImage noise(300, 300, QImage::Format_RGB32);
    for (int i = 0; i < 300 * 300; ++i)
        noise.setPixel(i % 300, i / 300,
                       qRgb((i % 300) * (i / 300) % 251, i * 7 % 253, i / 300 * 31 % 255));
    QVERIFY(noise.save(desktop.home.path("big.png")));
    RawClient client(desktop.item()->server()->port);
    BrowserPages::previews.toHTML(QFileInfo(desktop.home.path("big.png")));
    const QDir previews(desktop.home.path(".thumbnails"));
    QTRY_VERIFY(!previews.isEmpty(QDir::Files)); // one is being made
    boxText([&] { desktop.close(); }, QMessageBox::Yes);
    QVERIFY(client.waitForClose());
    QVERIFY(previews.isEmpty(QDir::Files));
}

void tst_mainwindow::endings_data()
{
    QTest::addColumn<bool>("inOrder");
    QTest::newRow("in order: pictures stay") << true;
    QTest::newRow("a crash: pictures left behind go") << false;
}

void tst_mainwindow::endings()
{
    QFETCH(bool, inOrder);
    Desktop desktop;
    if (inOrder)
        desktop.close();
    desktop.window.reset();
    desktop.profiles.reset();
    for (const char *name : { "a.jpg.x", ".b.jpg.x", "normal/other.png" })
        desktop.home.addFile(QByteArray(".thumbnails/") + name);
    QCOMPARE(Profile(desktop.home.directories, QStringLiteral("Global.conf")).cleanExit, inOrder);
    desktop.open();
    QCOMPARE(QFile::exists(desktop.home.path(".thumbnails/a.jpg.x")), inOrder);
    QCOMPARE(QFile::exists(desktop.home.path(".thumbnails/.b.jpg.x")), inOrder);
    QVERIFY(QFile::exists(desktop.home.path(".thumbnails/normal/other.png")));
}

void tst_mainwindow::diskFullAtClose()
{
    Desktop desktop;
    desktop.close();
    // A folder in the place of the file can't be written by anyone.
    QFile::remove(desktop.home.path(".quillon/list.ini"));
    QVERIFY(QDir().mkpath(desktop.home.path(".quillon/list.ini")));
    desktop.open();
    QVERIFY(boxText([&] { desktop.close(); }, QMessageBox::Ok)
                .startsWith(QLatin1String("Can't save the settings\n")));
}

void tst_mainwindow::expertMode()
{
    Desktop desktop([](Profile &global) { global.warningMode = Qt::Checked; });
    const auto *table = desktop.list()->table();
    const auto looksExpert = [&] {
        return QVector<bool>{ desktop.profiles->global()->expertMode,
                              action(desktop, "expertMode")->isChecked(),
                              action(desktop, "reloadPublic")->isVisible(),
                              action(desktop, "reloadLocal")->isVisible(),
                              !table->isColumnHidden(AddressTable::StatusColumn) };
    };
    QCOMPARE(action(desktop, "settings")->text(), QStringLiteral("Settings"));
    desktop.item()->start();
    const auto change = [&] { action(desktop, "expertMode")->trigger(); };
    QCOMPARE(boxText(change, QMessageBox::No),
             QStringLiteral("The server is running.\nDo you want to stop?"));
    QCOMPARE(looksExpert(), QVector<bool>(5, false));
    QVERIFY(desktop.item()->isListening());

    boxText(change, QMessageBox::Yes);
    QVERIFY(!desktop.item()->isListening());
    QCOMPARE(action(desktop, "settings")->text(), QStringLiteral("Global Default Settings"));
    QCOMPARE(looksExpert(), QVector<bool>(5, true));
}

void tst_mainwindow::rootMode_data()
{
    QTest::addColumn<QByteArray>("mode");
    QTest::addColumn<int>("warnings");
    QTest::addColumn<bool>("warned");
    QTest::newRow("root") << QByteArray("root") << 2 << true;
    QTest::newRow("root without warnings") << QByteArray("root") << 0 << false;
    QTest::newRow("something like it") << QByteArray("roots") << 2 << false;
}

void tst_mainwindow::rootMode()
{
    QFETCH(QByteArray, mode);
    QFETCH(int, warnings);
    QFETCH(bool, warned);
    Desktop desktop([warnings](Profile &global) { global.warningMode = warnings; });
    desktop.close();
    const auto open = [&] { desktop.open(mode.constData()); };
    if (warned)
        QCOMPARE(boxText(open),
                 QStringLiteral("The server run as root!\n"
                                "Use this mode only if you want to use port 1 - 1024!"));
    else
        open();
    QVERIFY(!openBox());
}

void tst_mainwindow::helpAndAbout()
{
    Desktop desktop;
    const auto help = [&desktop] {
        QString text;
        inModal<MessageDialog>(
            [&] { action(desktop, "help")->trigger(); },
            [&text](MessageDialog *message) { text = message->windowTitle() + message->text(); });
        return text;
    };
    const char *page = "res/lang/C/help/index.html";
    QCOMPARE(help(), QLatin1String("HelpCan't read file: ") + desktop.home.path(page));
    desktop.home.addFile(page, "<h1>Welcome</h1>");
    QCOMPARE(help(), QStringLiteral("HelpWelcome"));

    const QString about = boxText([&] { action(desktop, "about")->trigger(); });
    QVERIFY(about.startsWith(QLatin1String("About Quillon")));
    QVERIFY(about.contains(QLatin1String("Version: 2.4.0")));
    QVERIFY(about.contains(QLatin1String("https://quillon.example/")));
}

void tst_mainwindow::limitUnderTraffic()
{
    const auto prepare = [](Profile &global) {
        global.expertMode = true;
        global.dataLimit = 300;
    };
    Desktop desktop(prepare, 2);
    desktop.home.addFile("big.bin", QByteArray(4 * 1024 * 1024, 'x'));
    for (int row = 0; row < 2; ++row) {
        desktop.item(row)->setPort(freePort());
        desktop.item(row)->start();
    }
    WebServer *server = desktop.item(0)->server();
    const auto download = [server] {
        RawClient client(server->port);
        client.send(rawRequest("GET", "/big.bin"));
        QVERIFY(client.waitForClose());
    };
    download();
    QTRY_VERIFY(openBox());
    QVERIFY(!server->isListening());
    QCOMPARE(server->connectionCount(), 0);
    QCOMPARE(openBox()->icon(), QMessageBox::Critical);
    QCOMPARE(openBox()->text(),
             QStringLiteral("Max. network traffic limit: 307 KB reached\n"
                            "Server stopped on 127.0.0.1:%1.\n"
                            "Sent bytes: %2 KB\nReceived bytes: %3 KB")
                 .arg(server->port)
                 .arg(server->sentBytes() / 1000)
                 .arg(server->receivedBytes() / 1000));
    QVERIFY(desktop.item(1)->isListening());

    // Started again it reaches the limit at once; its box is still open and stays the only one.
    QMessageBox *box = openBox();
    desktop.item(0)->start();
    download();
    QTRY_VERIFY(!server->isListening());
    QCOMPARE(openBox(), box);
    box->close();
    QTRY_VERIFY(!openBox());
}

void tst_mainwindow::statusLine()
{
    Desktop desktop(inExpertMode(), 2);
    EventHandler *events = EventHandler::eventHandler;
    events->statusmsg(QStringLiteral("hello"));
    events->sendDataInfo();
    QCOMPARE(desktop.status(), QStringLiteral("<center>hello</center>"));

    desktop.item(0)->server()->addReceivedBytes(1999);
    desktop.item(1)->server()->addReceivedBytes(1999);
    events->newConnection(QStringLiteral("192.0.2.9"));
    QCOMPARE(desktop.status(), QStringLiteral("<center>3KB Last connection: 192.0.2.9</center>"));

    // Only listening rows are refreshed, and a client that comes back changes nothing by itself.
    QCOMPARE(desktop.item(0)->statusCell()->text(), QStringLiteral("Start 0KB"));
    desktop.item(0)->server()->addReceivedBytes(8000);
    desktop.item(0)->start();
    desktop.item(0)->server()->addReceivedBytes(8000);
    events->newConnection(QStringLiteral("192.0.2.9"));
    QCOMPARE(desktop.status(), QStringLiteral("<center>3KB Last connection: 192.0.2.9</center>"));
    QTRY_COMPARE(desktop.status(),
                 QStringLiteral("<center>19KB Last connection: 192.0.2.9</center>"));
    QCOMPARE(desktop.item(0)->statusCell()->text(), QStringLiteral("Stop 17KB"));
}

void tst_mainwindow::messagesQueue()
{
    Desktop desktop;
    EventHandler *events = EventHandler::eventHandler;
    for (int i = 0; i < 3; ++i)
        events->msg(QStringLiteral("one"), QStringLiteral("text"));
    for (int i = 0; i < 2 * EventHandler::maxWaitingBoxes; ++i)
        events->msg(QStringLiteral("other"), QString::number(i));
    QVERIFY(!openBox()); // never inside the call

    QStringList shown;
    for (QTest::qWait(0); openBox(); QTest::qWait(0)) {
        shown.append(openBox()->text());
        QCOMPARE(desktop.window->findChildren<QMessageBox *>().count(), 1);
        openBox()->button(QMessageBox::Ok)->click();
        QTRY_VERIFY(desktop.window->findChildren<QMessageBox *>().isEmpty() || openBox());
    }
    QCOMPARE(shown.at(0), QStringLiteral("one\ntext"));
    QCOMPARE(shown.count(shown.at(0)), 1);
    QCOMPARE(shown.size(), EventHandler::maxWaitingBoxes + 1);

    // Once its box is closed a text can be shown again.
    const auto again = [events] { events->msg(QStringLiteral("one"), QStringLiteral("text")); };
    QCOMPARE(boxText(again), shown.at(0));
}

void tst_mainwindow::servicesWaitForTheWindow()
{
    Desktop desktop;
    desktop.close();
    StandIn service;
    service.answer("{}");
    QSettings().setValue(QStringLiteral("services/portCheck"), service.base());
    desktop.profiles = std::make_unique<Profiles>(desktop.home.directories);
    MainWindow window(desktop.profiles.get(), nullptr, fileRoutes(), [] {
        QNetworkAddressEntry entry;
        entry.setIp(QHostAddress(QHostAddress::LocalHost));
        return QList<QNetworkAddressEntry>{ entry };
    });
    QTest::qWait(50);
    QVERIFY(service.requests.isEmpty());
    window.show();
    QTRY_COMPARE(service.requests.size(), 1);
}

void tst_mainwindow::fitsSmallScreens()
{
    QFETCH(QSize, size);
    for (bool expert : { false, true }) {
        Desktop desktop(inExpertMode(expert), 2);
        const QByteArray folder =
            "a folder with a rather long name/and another one below it, also long";
        desktop.home.addFile(folder + "/a.txt");
        desktop.choose(folder);
        desktop.list()->startButton()->click();
        EventHandler::eventHandler->newConnection(QStringLiteral("192.0.2.9"));
        const QString picture = QLatin1String(expert ? "window-expert" : "window-simple");
        QCOMPARE(SmallScreens::faultsAt(desktop.window.get(), size, picture), QByteArray());
        QCOMPARE(desktop.window->findChild<QScrollArea *>()->verticalScrollBar()->maximum(), 0);
        QVERIFY(desktop.list()->table()->rowHeight(0) >= SmallScreens::finger);
        const QList<QLabel *> labels = desktop.window->findChildren<QLabel *>();
        for (const QLabel *label : labels)
            QTRY_VERIFY(!label->isVisible()
                        || label->height() >= label->heightForWidth(label->width()));
    }
}

void tst_mainwindow::menusAndFileDialogs()
{
    Desktop desktop(inExpertMode());
    desktop.window->fileOrDirSelected(desktop.home.path());
    const QList<QMenu *> menus = desktop.window->findChildren<QMenu *>();
    QCOMPARE(menus.size(), 3);
    for (QMenu *menu : menus) {
        menu->popup(QPoint(0, 0));
        const QList<QAction *> entries = menu->actions();
        for (QAction *entry : entries)
            QVERIFY2(!entry->isVisible()
                         || menu->actionGeometry(entry).height() >= SmallScreens::finger,
                     qPrintable(entry->text()));
        QVERIFY(menu->width() <= 480 && menu->height() <= 480);
        QVERIFY(SmallScreens::keepPicture(menu, QLatin1String("menu-") + entries.at(0)->text()));
        menu->close();
    }

    desktop.home.addFile("NODOT");
    const auto choose = [&](const QString &path) {
        return [path](QFileDialog *dialog) {
            dialog->resize(480, 440);
            QCOMPARE(dialog->size(), QSize(480, 440));
            QVERIFY(SmallScreens::keepPicture(dialog, dialog->windowTitle()));
            dialog->selectFile(path);
            QMetaObject::invokeMethod(dialog, "accept");
        };
    };
    inModal<QFileDialog>([&] { desktop.window->browseFile(); }, choose(desktop.home.path("NODOT")));
    QCOMPARE(desktop.shared(), desktop.home.path("NODOT"));
    inModal<QFileDialog>([&] { desktop.window->browseFolder(); }, choose(desktop.home.path()));
    QVERIFY(desktop.item()->server()->shared.isDir());
}

QTEST_MAIN(tst_mainwindow)
#include "tst_mainwindow.moc"
