#include "config/Profile.h"
#include "desktop/settings/SettingsDialog.h"
#include "desktop/widgets/InputDialog.h"
#include "desktop/widgets/PageView.h"
#include "desktop/window/AddressTable.h"
#include "desktop/window/Reachability.h"
#include "desktop/window/ServerItem.h"
#include "desktop/window/WebServices.h"
#include "tests/desktop/Desktop.h"
#include "tests/desktop/Widgets.h"
#include "tests/support/LiveServer.h"

#include <QDesktopServices>
#include <QMenu>
#include <QPushButton>
#include <QSettings>

namespace {

const QString localText =
    QStringLiteral("<center>Server accessible only on local network</center>");
constexpr auto openAnswer = R"({"status":"success","message":"Port 80 is open on 192.0.2.7."})";
constexpr auto closedAnswer = R"({"status":"failure","message":"Port 80 is closed on 192.0.2.7."})";

QByteArray dnsAnswer(bool updated)
{
    return QByteArray(200, '.') + (updated ? "me has been updated" : "wrong password");
}

void setService(const char *key, const QString &value)
{
    QSettings().setValue(QLatin1String("services/") + QLatin1String(key), value);
}

} // namespace

class tst_addresslist : public QObject
{
    Q_OBJECT

public Q_SLOTS:
    void browse(const QUrl &url) { browsed.append(url); }

private Q_SLOTS:
    void init();
    void cleanup() { QDesktopServices::unsetUrlHandler(QStringLiteral("http")); }

    void startAndStop();
    void portInUse();
    void addressComesAndGoes_data();
    void addressComesAndGoes();
    void chosenWithoutNetwork();

    void portCheck_data();
    void portCheck();
    void noAnswer();
    void noServiceConfigured();
    void everyoneQuestion_data();
    void everyoneQuestion();
    void dynamicDns_data();
    void dynamicDns();

    void rowKeys();
    void portDialogs_data();
    void portDialogs();
    void rowsComeBack();
    void savedProfile_data();
    void savedProfile();
    void junkAtStart();

    void editedPort_data();
    void editedPort();
    void editedProfileReachesItsRows();

private:
    QList<QUrl> browsed;
};

void tst_addresslist::init()
{
    browsed.clear();
    QDesktopServices::setUrlHandler(QStringLiteral("http"), this, "browse");
}

void tst_addresslist::startAndStop()
{
    Desktop desktop;
    desktop.home.addFile("a.txt", "hello");
    const quint16 port = desktop.item()->server()->port;
    QPushButton *button = desktop.list()->startButton();
    QCOMPARE(button->text(), QStringLiteral("Start"));

    desktop.item()->start();
    QTest::mouseClick(button, Qt::LeftButton);
    QVERIFY(!desktop.item()->isListening()); // one that ran is stopped first
    QTest::mouseClick(button, Qt::LeftButton);
    QVERIFY(desktop.item()->isListening());
    QCOMPARE(button->text(), QStringLiteral("Stop"));
    QCOMPARE(desktop.label(),
             QStringLiteral("<center>Accessible on local network<br>http://127.0.0.1:%1</center>")
                 .arg(port));

    RawClient client(port);
    QCOMPARE(client.exchange(rawRequest("GET", "/a.txt")).body, QByteArray("hello"));
    QTRY_COMPARE_WITH_TIMEOUT(desktop.item()->statusCell()->text(), QStringLiteral("Stop 0KB"),
                              5000);

    button->setFocus();
    QTest::keyClick(button, Qt::Key_Space);
    QVERIFY(!desktop.item()->isListening());
    QVERIFY(client.waitForClose());
    QCOMPARE(button->text(), QStringLiteral("Start"));
    QCOMPARE(desktop.label(), QString());
}

void tst_addresslist::portInUse()
{
    QTcpServer other;
    QVERIFY(other.listen(QHostAddress(QHostAddress::LocalHost)));
    Desktop desktop;
    desktop.item()->setPort(other.serverPort());
    const QString told = boxText([&] {
        desktop.list()->startButton()->click();
        desktop.list()->startButton()->click(); // not stacked upon its own box
    });
    QVERIFY(told.startsWith(QLatin1String("Unable to start the server\n")));
    QVERIFY(told.endsWith(QStringLiteral("\n127.0.0.1:%1").arg(other.serverPort())));
    QTest::qWait(0);
    QVERIFY(!QApplication::activeModalWidget());
    QVERIFY(!desktop.item()->isListening());
    QCOMPARE(desktop.list()->startButton()->text(), QStringLiteral("Start"));
}

void tst_addresslist::addressComesAndGoes_data()
{
    QTest::addColumn<bool>("expert");
    QTest::newRow("simple mode") << false;
    QTest::newRow("expert mode") << true;
}

void tst_addresslist::addressComesAndGoes()
{
    QFETCH(bool, expert);
    Desktop desktop(inExpertMode(expert));
    desktop.home.addFile("share/a.txt");
    desktop.choose("share");
    const quint16 port = desktop.item()->server()->port;
    desktop.item()->start();
    desktop.list()->lookForChanges();
    QVERIFY(desktop.item()->isListening());

    desktop.addresses.clear();
    const QString told = boxText([&] { desktop.list()->lookForChanges(); });
    QVERIFY(told.contains(QStringLiteral("http://127.0.0.1:%1").arg(port)));
    QCOMPARE(desktop.list()->getServerCount(), 0);
    QCOMPARE(desktop.label(), QStringLiteral("<center><b>Network not found</b></center>"));

    desktop.addresses = QStringList{ QStringLiteral("127.0.0.1") };
    desktop.list()->lookForChanges();
    QCOMPARE(desktop.list()->getServerCount(), 1);
    QCOMPARE(desktop.item()->server()->port, port);
    QCOMPARE(desktop.shared(), desktop.home.path("share"));
    QCOMPARE(desktop.label(), localText);
    QCOMPARE(desktop.profiles->global()->useCount, 1);
}

void tst_addresslist::chosenWithoutNetwork()
{
    Desktop desktop({}, 0);
    desktop.home.addFile("share/a.txt");
    desktop.choose("share");
    desktop.close();
    desktop.open();
    desktop.addresses = QStringList{ QStringLiteral("127.0.0.1") };
    desktop.list()->lookForChanges();
    QCOMPARE(desktop.shared(), desktop.home.path("share"));
}

void tst_addresslist::portCheck_data()
{
    QTest::addColumn<QByteArray>("body");
    QTest::addColumn<QString>("label");
    QTest::addColumn<int>("counted");

    const QByteArray open = openAnswer;
    const QByteArray closed = closedAnswer;
    QTest::newRow("open") << open << "<center>Public addresses: 192.0.2.7:%1</center>"
                          << int(open.size());
    QTest::newRow("closed") << closed << localText << int(closed.size());
    QTest::newRow("an answer to something else") << QByteArray("<p>busy</p>") << "" << 0;
    QTest::newRow("an endless answer is cut off")
        << open + QByteArray(3 * WebServices::maxAnswerBytes, ' ')
        << "<center>Public addresses: 192.0.2.7:%1</center>" << WebServices::maxAnswerBytes;
}

void tst_addresslist::portCheck()
{
    QFETCH(QByteArray, body);
    QFETCH(QString, label);
    QFETCH(int, counted);
    Desktop desktop;
    StandIn service;
    service.answer(body);
    setService("portCheck", service.base());
    const int port = desktop.item()->server()->port;
    desktop.list()->setStartButton(false);

    int finished = 0;
    connect(desktop.list()->reachability()->webServices(), &WebServices::finished, this,
            [&] { ++finished; });
    desktop.list()->reachability()->loadPublic();
    QTRY_COMPARE(finished, 1);
    QCOMPARE(desktop.label(), label.contains(QLatin1String("%1")) ? label.arg(port) : label);
    QCOMPARE(desktop.item()->server()->receivedBytes(), qint64(counted));
    const QByteArray request = service.requests.constFirst();
    QVERIFY(request.contains("?portNumber=" + QByteArray::number(port) + " HTTP"));
    QVERIFY(request.contains("\r\nUser-Agent: Quillon_4\r\n"));

    // A port known to be open is not checked again while its server listens.
    desktop.item()->start();
    desktop.list()->reachability()->loadPublic();
    const bool open = label.contains(QLatin1String("Public"));
    QTRY_COMPARE(finished, open ? 1 : 2);
    desktop.list()->reachability()->noPublic();
    QCOMPARE(desktop.label(), localText);
}

void tst_addresslist::noAnswer()
{
    for (const QByteArray kind : { "says nothing", "is not there", "hangs up" }) {
        Desktop desktop;
        StandIn service;
        service.silent = kind == "says nothing";
        setService("portCheck", service.base());
        if (kind == "is not there")
            service.close();
        desktop.list()->reachability()->webServices()->setTimeout(std::chrono::milliseconds(100));
        desktop.list()->reachability()->loadPublic();
        QTRY_COMPARE(desktop.status(), QStringLiteral("<center>No internet connection</center>"));
    }
}

void tst_addresslist::noServiceConfigured()
{
    Desktop desktop;
    Profile *global = desktop.profiles->global();
    const auto load = [&desktop] { desktop.list()->reachability()->loadPublic(); };
    load();
    QCOMPARE(desktop.status(), QStringLiteral("<center>No port check service configured</center>"));
    global->dnsEnabled = Qt::Checked;
    StandIn service;
    setService("dns", service.base());
    QCOMPARE(boxText(load), QStringLiteral("User and password required for DNS service."));
    QVERIFY(service.requests.isEmpty());
    global->dnsUser = global->dnsPassword = QStringLiteral("me");
    setService("dns", {});
    load();
    QCOMPARE(desktop.status(), QStringLiteral("<center>No DNS service configured</center>"));
}

void tst_addresslist::everyoneQuestion_data()
{
    QTest::addColumn<int>("warnings");
    QTest::addColumn<int>("authMode");
    QTest::addColumn<int>("answer"); ///< 0: not asked
    QTest::newRow("no password: asked, refused") << 2 << 0 << int(QMessageBox::No);
    QTest::newRow("no password: asked, wanted") << 2 << 0 << int(QMessageBox::Yes);
    QTest::newRow("a password is set") << 2 << 1 << 0;
    QTest::newRow("no warnings wanted") << 0 << 0 << 0;
}

void tst_addresslist::everyoneQuestion()
{
    QFETCH(int, warnings);
    QFETCH(int, authMode);
    QFETCH(int, answer);
    Desktop desktop([=](Profile &global) {
        global.warningMode = warnings;
        global.authMode = authMode;
    });
    StandIn service;
    service.answer(openAnswer);
    setService("portCheck", service.base());
    const auto load = [&desktop] {
        desktop.list()->reachability()->loadPublic();
        QTRY_VERIFY(desktop.label().contains(QLatin1String("Public addresses")));
    };
    const auto ask = [&] {
        QCOMPARE(boxText(load, QMessageBox::StandardButton(answer)),
                 QStringLiteral("The shared files are accessible for everyone.\n"
                                "Do you want to set password?"));
    };
    if (answer == QMessageBox::Yes)
        inModal<SettingsDialog>(ask, [](SettingsDialog *config) {
            QCOMPARE(config->findChild<PageView *>()->currentRow(), 1);
        });
    else
        answer == QMessageBox::No ? ask() : load();
    QVERIFY(!QApplication::activeModalWidget());
}

void tst_addresslist::dynamicDns_data()
{
    QTest::addColumn<bool>("updated");
    QTest::addColumn<QByteArray>("status");
    QTest::newRow("confirmed") << true << QByteArray("200 OK");
    QTest::newRow("refused") << false << QByteArray("200 OK");
    QTest::newRow("refused with an error status") << false << QByteArray("403 Forbidden");
    QTest::newRow("sent elsewhere") << false << QByteArray("302 Found");
}

void tst_addresslist::dynamicDns()
{
    QFETCH(bool, updated);
    QFETCH(QByteArray, status);
    Desktop desktop([](Profile &global) {
        global.dnsUser = QStringLiteral("me");
        global.dnsPassword = QStringLiteral("secret word");
        global.dnsEnabled = Qt::Checked;
    });
    StandIn elsewhere;
    StandIn service;
    service.answer(dnsAnswer(updated), status,
                   "Location: " + elsewhere.base().toLatin1() + "/\r\n");
    setService("dns", service.base());
    setService("dnsDomain", QStringLiteral("dns.example"));
    int finished = 0;
    connect(desktop.list()->reachability()->webServices(), &WebServices::finished, this,
            [&] { ++finished; });
    desktop.list()->reachability()->loadPublic();
    QTRY_COMPARE(finished, 1);
    QVERIFY(service.requests.constFirst().startsWith(
        "GET /cgi-bin/dynip.cgi?username=me&password=secret%20word HTTP/1.1\r\n"));
    QVERIFY(elsewhere.requests.isEmpty());
    QCOMPARE(browsed.size(), updated ? 0 : 1);
    QVERIFY(!desktop.status().contains(QLatin1String("secret")));
    QVERIFY(!QApplication::activeModalWidget());

    service.answer(openAnswer);
    setService("portCheck", service.base());
    setService("dns", {});
    desktop.list()->reachability()->loadPublic();
    QTRY_COMPARE(finished, 2);
    QCOMPARE(desktop.label().contains(QLatin1String("me.dns.example:")), updated);
}

void tst_addresslist::rowKeys()
{
    Desktop desktop(inExpertMode(), 2);
    AddressTable *table = desktop.list()->table();
    int selections = 0;
    connect(desktop.list(), &AddressList::selectionChanged, this, [&] { ++selections; });
    table->setFocus();
    QTest::keyClick(table, Qt::Key_Down);
    QCOMPARE(selections, 1);
    QCOMPARE(desktop.list()->getSelectedItem(), desktop.item(1));

    table->setCurrentCell(1, AddressTable::StatusColumn);
    QTest::keyClick(table, Qt::Key_Return);
    QVERIFY(desktop.item(1)->isListening());
    QVERIFY(!desktop.item(0)->isListening());
    QTest::keyClick(table, Qt::Key_Space);
    QVERIFY(!desktop.item(1)->isListening());

    table->setCurrentCell(0, AddressTable::AddressColumn);
    QTest::keyClick(table, Qt::Key_Return);
    auto *menu = desktop.list()->findChild<QMenu *>();
    QTRY_VERIFY(menu->isVisible());
    QStringList entries;
    const QList<QAction *> actions = menu->actions();
    for (const QAction *action : actions) {
        entries.append(action->text());
        QVERIFY(menu->actionGeometry(menu->actions().constFirst()).height() >= 44);
    }
    QCOMPARE(entries.join(QLatin1Char('|')),
             QStringLiteral("Settings|Change Config|Add new port|Change port|Remove"));
    menu->close();

    // Cells are for experts only.
    desktop.window->setExpertMode(false);
    Q_EMIT table->cellPressed(0, AddressTable::StatusColumn);
    QVERIFY(!desktop.list()->isRunning());
}

void tst_addresslist::portDialogs_data()
{
    QTest::addColumn<QString>("input");
    QTest::addColumn<bool>("valid");
    QTest::newRow("the last port") << "65535" << true;
    QTest::newRow("past the last") << "65536" << false;
    QTest::newRow("no number") << "http" << false;
}

void tst_addresslist::portDialogs()
{
    QFETCH(QString, input);
    QFETCH(bool, valid);
    Desktop desktop(inExpertMode());
    const QString before = QString::number(desktop.item()->server()->port);
    const auto port = [&](int row) { return QString::number(desktop.item(row)->server()->port); };
    const auto type = [&](const char *title, const std::function<void()> &action) {
        const auto run = [&] {
            inModal<InputDialog>(action, [&](InputDialog *dialog) {
                auto *line = dialog->findChild<QLineEdit *>();
                QCOMPARE(dialog->windowTitle(), QLatin1String(title));
                QCOMPARE(line->text(), before);
                line->setText(input);
                QTest::keyClick(line, Qt::Key_Return);
            });
        };
        if (valid)
            run();
        else
            QCOMPARE(boxText(run), QStringLiteral("Invalid port"));
    };
    type("New port", [&] { desktop.list()->addNewPort(); });
    QCOMPARE(desktop.list()->getServerCount(), valid ? 2 : 1);
    QCOMPARE(port(0), before);
    if (valid) {
        QCOMPARE(port(1), input);
        QCOMPARE(desktop.item(1)->address(), desktop.item(0)->address());
        desktop.list()->table()->setCurrentCell(1, 0);
        desktop.list()->remove();
        QCOMPARE(desktop.list()->getServerCount(), 1);
    }
    type("Port", [&] { desktop.list()->changePort(); });
    QCOMPARE(port(0), valid ? input : before);
    QVERIFY(!desktop.item()->isListening());
}

void tst_addresslist::rowsComeBack()
{
    Desktop desktop(inExpertMode(), 2);
    desktop.home.addFile("one/a.txt");
    desktop.home.addFile("two.txt");
    desktop.item(0)->setShared(desktop.home.path("one"));
    desktop.item(0)->setPort(7001);
    desktop.item(1)->setShared(desktop.home.path("two.txt"));
    desktop.item(1)->setPort(7002);
    inModal<InputDialog>([&] { desktop.list()->addNewPort(); },
                         [](InputDialog *dialog) {
                             dialog->findChild<QLineEdit *>()->setText(QStringLiteral("7003"));
                             dialog->accept();
                         });
    desktop.close();
    desktop.open();
    QStringList rows;
    for (int row = 0; row < desktop.list()->getServerCount(); ++row)
        rows.append(desktop.item(row)->text() + QLatin1Char(' ')
                    + QFileInfo(desktop.shared(row)).fileName());
    rows.sort();
    QCOMPARE(rows.join(QLatin1Char('|')),
             QStringLiteral("127.0.0.1:7001 one|127.0.0.1:7003 one|127.0.0.2:7002 two.txt"));

    // Simple mode shows one server for each address, and both alike.
    desktop.window->setExpertMode(false);
    desktop.list()->startButton()->click();
    QCOMPARE(desktop.label().count(QLatin1String("<br>")), 2);
}

void tst_addresslist::savedProfile_data()
{
    QTest::addColumn<bool>("expert");
    QTest::addColumn<QString>("saved");
    QTest::addColumn<QString>("used");
    QTest::newRow("simple mode takes the saved one") << false << "work"
                                                     << "work";
    QTest::newRow("expert mode takes the global one") << true << "work"
                                                      << "Default";
    QTest::newRow("a profile that is gone") << false << "lost"
                                            << "Default";
}

void tst_addresslist::savedProfile()
{
    QFETCH(bool, expert);
    QFETCH(QString, saved);
    QFETCH(QString, used);
    Desktop desktop(inExpertMode(expert));
    desktop.close();
    Profile work(desktop.home.directories);
    work.name = QStringLiteral("work");
    work.setFileName(work.name);
    QVERIFY(work.save());
    desktop.home.addFile(".quillon/list.ini", "[0]\ncnf=" + saved.toLatin1() + '\n');
    desktop.open();
    QCOMPARE(desktop.item()->profile()->name, used);
    QCOMPARE(desktop.item()->profileCell()->text(), used);
    QCOMPARE(desktop.item()->profile()->useCount, 1);
}

void tst_addresslist::junkAtStart()
{
    Desktop desktop;
    desktop.close();
    desktop.home.addFile(".quillon/list.ini",
                         "len=999999999\n[0]\nport=-8\nfile=/no/such/<b>folder\n");
    QVERIFY(boxText([&] { desktop.open(); }).startsWith(QLatin1String("Invalid port\n")));
    QVERIFY(boxText([] {}).startsWith(QLatin1String("\"/no/such/<b>folder\" not exists!\n")));
    QCOMPARE(int(desktop.item()->server()->port), int(desktop.profiles->global()->port));
    QCOMPARE(desktop.shared(), desktop.home.path());
    QCOMPARE(desktop.list()->getServerCount(), 1);
}

void tst_addresslist::editedPort_data()
{
    QTest::addColumn<bool>("expert");
    QTest::addColumn<bool>("running");
    QTest::addColumn<bool>("moved");
    QTest::newRow("simple, running: starts again") << false << true << true;
    QTest::newRow("expert, running: keeps its port") << true << true << false;
    QTest::newRow("expert, stopped: takes it") << true << false << true;
}

void tst_addresslist::editedPort()
{
    QFETCH(bool, expert);
    QFETCH(bool, running);
    QFETCH(bool, moved);
    Desktop desktop(inExpertMode(expert));
    const int before = desktop.item()->server()->port;
    if (running)
        desktop.item()->start();
    const std::unique_ptr<Profile> copy(desktop.profiles->global()->clone());
    copy->port = freePort();
    desktop.list()->profileEdited(copy.get());

    QCOMPARE(int(desktop.item()->server()->port), moved ? int(copy->port) : before);
    QCOMPARE(desktop.item()->isListening(), running);
    if (running)
        QVERIFY(RawClient(desktop.item()->server()->port).isOpen());
    QVERIFY(desktop.profiles->global()->equals(copy.get()));
    QVERIFY(Profile(desktop.home.directories, QStringLiteral("Global.conf")).equals(copy.get()));
}

void tst_addresslist::editedProfileReachesItsRows()
{
    Desktop desktop(inExpertMode(), 2);
    Profile *global = desktop.profiles->global();
    Profile *work = desktop.profiles->add(global->clone());
    work->name = QStringLiteral("work");
    work->setFileName(work->name);
    desktop.item(1)->useProfile(work);
    QCOMPARE(global->useCount, 1);
    QCOMPARE(work->useCount, 1);

    const std::unique_ptr<Profile> copy(work->clone());
    copy->dataLimit = 77;
    copy->sslMode = Qt::Checked;
    boxText([&] { desktop.list()->profileEdited(copy.get()); }); // the keys are missing
    QCOMPARE(desktop.item(0)->server()->dataLimitBytes(), qint64(0));
    QCOMPARE(desktop.item(1)->server()->dataLimitBytes(), qint64(77 * 1024));
    QCOMPARE(global->dataLimit, 0);
    QCOMPARE(work->dataLimit, 77);
    QVERIFY(desktop.item(1)->getUrl().startsWith(QLatin1String("https://127.0.0.2:")));
}

QTEST_MAIN(tst_addresslist)
#include "tst_addresslist.moc"
