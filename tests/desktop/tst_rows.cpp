#include "config/Permission.h"
#include "desktop/look/DesktopChoices.h"
#include "desktop/settings/KeyMaker.h"
#include "desktop/window/Announcements.h"
#include "desktop/window/DeedLog.h"
#include "desktop/window/FirstInstance.h"
#include "desktop/window/LogFile.h"
#include "desktop/window/SavedRows.h"
#include "desktop/window/VisitTable.h"
#include "desktop/window/WebServices.h"
#include "tests/desktop/Desktop.h"
#include "tests/support/Data.h"

#include <QJsonDocument>
#include <QJsonObject>
#include <QLocalSocket>
#include <QProcess>
#include <QSignalSpy>
#include <QSslSocket>

#include <array>
#include <thread>

#include <fcntl.h>
#include <unistd.h>

namespace {

const QString loopback = "127.0.0.1"_q;
constexpr auto openAnswer = R"({"status":"success","message":"Port 80 is open on 192.0.2.7."})";

/// What a `Reachability` says of the rows.
struct Checked : Rows
{
    Checked()
    {
        const auto tell = [this](const QString &text) { told = text; };
        QObject::connect(&reach, &Reachability::told, tell);
        QObject::connect(&reach, &Reachability::warned, tell);
        QObject::connect(&reach, &Reachability::pageOffered, [this] { ++pages; });
        QObject::connect(&reach, &Reachability::labelChanged, [this](auto text) { label = text; });
        QObject::connect(reach.webServices(), &WebServices::finished, [this] { ++finished; });
        setService("portCheck", service.base());
    }

    static void setService(const char *key, const QString &value)
    {
        QSettings().setValue("services/"_q + QLatin1String(key), value);
    }

    StandIn service;
    Reachability reach{ rows, home.profiles.get() };
    QString label, told;
    int finished = 0, pages = 0;
};

} // namespace

/// What needs no window: the rows and what is saved of them, and what web services say.
class tst_rows : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    /// By their texts, as the user reads them.
    void visitorsAndTransfers()
    {
        const QHostAddress phone("192.0.2.7"_q);
        Deed deed{
            { phone, "anna", "Firefox" }, "GET", "a\n\xe2\x80\xaegpj.exe", 200, true, false
        };
        Deed look{ { phone, "anna", "Firefox" }, "GET", "folder/", 200, true, false };
        Deed refused{ { phone, {}, {} }, "DELETE", "<b>b", 403, true, false };
        DeedLog log;
        log.add({ deed, look, deed, refused }, QDateTime::currentDateTime());
        QCOMPARE(log.rowCount(), 2);
        const auto text = [&](int row, int column) {
            return log.index(row, column).data().toString();
        };
        QCOMPARE(text(0, DeedLog::Event), "Deletion refused (403)"_q);
        QCOMPARE(text(1, DeedLog::Visitor), "anna (192.0.2.7)"_q);
        QCOMPARE(text(1, DeedLog::Event), "Download, 2 times"_q);
        QCOMPARE(text(1, DeedLog::File), "a\\u000a\\u202egpj.exe"_q);
        for (int i = 0; i < DeedLog::maxRows + 9; ++i)
            log.add({ i % 2 ? deed : refused }, QDateTime::currentDateTime());
        QCOMPARE(log.rowCount(), int(DeedLog::maxRows));

        QVERIFY(log.index(0, DeedLog::File).data(Qt::ToolTipRole).toString().contains("&lt;b"_q));
    }

    void logFile()
    {
        const Deed deed{ {}, "GET", "a\nb", 200, true, false };
        const QTemporaryDir folder;
        const LogFile file(folder.filePath("state/log"_q));
        QVERIFY(file.append(deedLine(deed, QDateTime::currentDateTime())));
        QFile written(file.fileName());
        QVERIFY(written.open(QFile::ReadWrite));
        QCOMPARE(written.permissions() & (QFile::ReadGroup | QFile::ReadOther),
                 QFile::Permissions());
        const QByteArray line = written.readAll();
        QCOMPARE(line.count('\n'), 1);
        const QJsonObject record = QJsonDocument::fromJson(line).object();
        QCOMPARE(record.value("path"_q).toString().toUtf8(), deed.path);
        QVERIFY(written.resize(LogFile::maxSize + 1) && file.append(line));
        QCOMPARE(QFileInfo(file.fileName()).size(), qint64(line.size()));
        QVERIFY(QFile::exists(file.fileName() + ".1"_q));
        // Half a line, of a full disk.
        QVERIFY(QFile::resize(file.fileName(), line.size() - 3) && file.append(line));
        QFile mended(file.fileName());
        QVERIFY(mended.open(QFile::ReadOnly) && mended.readAll().endsWith('\n' + line));
        Deed endless = deed;
        endless.path = QByteArray(100000, '\1');
        QVERIFY(deedLine(endless, QDateTime::currentDateTime()).size() < 5000);
    }

    void visitTables()
    {
        const Client anna{ QHostAddress("192.0.2.7"_q), "anna", "Firefox" };
        Visit visit{
            1, anna, {}, QDateTime::currentDateTimeUtc(), FileTransfer{ true, 5120, "f", 1024 }
        };
        Visit second{ 2, anna, {}, visit.since, {} };
        QCOMPARE(visitorRows({ { nullptr, visit }, { nullptr, second } }).size(), std::size_t(1));
        TransferRows moving;
        const TransferRows::Clock::time_point start{};
        moving.look({ { nullptr, visit } }, start);
        visit.transfer->done = 3072;
        visit.transfer->left = 3072;
        KeyedTable table({ {}, {}, {}, {}, {} });
        table.show(moving.look({ { nullptr, visit } }, start + std::chrono::seconds(1)));
        QStringList shown;
        for (int column = 0; column < table.columnCount(); ++column)
            shown += table.index(0, column).data().toString();
        QCOMPARE(shown.join(QLatin1Char('|')), "f|Upload|50 %|2.0 kB/s|0:01"_q);
        table.show({});
        QCOMPARE(table.rowCount(), 0);
    }

    void rowsAreAnnouncedWhileTheyRun()
    {
        Rows device({}, 2);
        device.global()->announced = 1;
        std::array<int, 2> ends{};
        QCOMPARE(::pipe2(ends.data(), O_NONBLOCK), 0);
        const FileDescriptor told(ends[0]);
        int times = 0;
        {
            const FileDescriptor telling(ends[1]);
            Announcements announcements(device.rows, [&](const WebServer &server, const Profile &) {
                times += server.isListening() ? 1 : 100;
                return duplicate(telling.get());
            });
            device.row()->start();
            QCOMPARE(times, 1);
            device.row()->stop();
            device.row()->start();
            QCOMPARE(times, 2);
            device.row(1)->start();
            device.rows->stopAll();
            QCOMPARE(times, 3);
        }
        char none = 0;
        QCOMPARE(::read(told.get(), &none, 1), ssize_t(0)); // all of them withdrawn
    }

    void desktopChoices()
    {
        const TestHome home;
        QVERIFY(!DesktopChoices::stored().startsAtLogin && DesktopChoices::stored().notifies);
        QVERIFY((DesktopChoices{ true, true, false }).store());
        QFile entry(home.path() + "/.config/autostart/example.quillon.Quillon.desktop"_q);
        QVERIFY(entry.open(QFile::ReadOnly));
        QVERIFY(entry.readAll().contains(
            "Exec=\"" + QCoreApplication::applicationFilePath().toUtf8() + "\" --start\n"));
        const DesktopChoices stored = DesktopChoices::stored();
        QVERIFY(stored.staysInTray && stored.startsAtLogin && !stored.notifies);
        QVERIFY(DesktopChoices().store() && !entry.exists());
    }

    void startAndStop()
    {
        Rows device({}, 2);
        device.addFile("a.txt", "hello");
        device.row()->start();
        device.rows->startOrStop(); // one that runs is stopped first
        QVERIFY(!device.rows->isRunning());
        device.rows->startOrStop();
        QVERIFY(device.row(0)->isListening() && device.row(1)->isListening());
        RawClient client(device.row()->server()->port);
        QCOMPARE(client.exchange(rawRequest("GET", "/a.txt")).body, QByteArray("hello"));
        device.rows->startOrStop();
        QVERIFY(client.waitForClose());
    }

    void refusals()
    {
        QTcpServer other;
        QVERIFY(other.listen(QHostAddress(loopback)));
        Rows device(inExpertMode());
        device.row()->setPort(other.serverPort());
        device.row()->start();
        const QString said = device.sink.messages.takeFirst();
        QVERIFY(said.startsWith("Unable to start the server\n"_q));
        QVERIFY(said.endsWith("\n127.0.0.1:%1"_q.arg(other.serverPort())));

        // A profile that can't be read gives no protection, until somebody has chosen its values.
        device.addFile(".quillon/work.cnf", "junk");
        device.reopen();
        Profile *work = device.home.profiles->find("work"_q);
        device.row()->useProfile(work);
        device.row()->setPort(freePort());
        device.row()->start();
        QVERIFY(!device.row()->isListening());
        QVERIFY(device.sink.messages.takeFirst().endsWith(".quillon/work.cnf"_q));
        QVERIFY(work->save());
        device.row()->start();
        QVERIFY(device.row()->isListening());
    }

    void openHomeIsAskedFor()
    {
        Rows device({}, 2);
        QSettings().clear();
        device.rows->startOrStop();
        QVERIFY(!device.rows->isRunning()); // nobody is there to ask
        for (const auto permission : { Permission::Look, Permission::ChangeEverything }) {
            const std::unique_ptr<Profile> edited = device.global()->clone();
            permit(permission, edited.get());
            device.rows->profileEdited(edited.get());
            QCOMPARE(device.rows->isRunning(), false); // nor now
            device.rows->startOrStop();
        }
        QVERIFY(!device.rows->isRunning());
        int asked = 0;
        StartAnswer answer = StartAnswer::No;
        device.rows->setQuestion([&](ServerRow *, StartDoubt doubt) {
            if (++asked == 2)
                device.keeper->share(device.path("res"));
            return doubt == StartDoubt::HomeIsOpen ? answer : StartAnswer::No;
        });
        device.rows->startOrStop();
        QVERIFY(asked == 1 && !device.rows->isRunning());
        answer = StartAnswer::LookAgain;
        device.rows->startOrStop();
        QVERIFY(asked == 2 && device.row(1)->isListening());
        device.rows->stopAll();
        device.keeper->share(device.home.path());
        answer = StartAnswer::Yes;
        for (const char *run : { "asked", "remembered" }) {
            device.rows->startOrStop();
            QVERIFY2(asked == 3 && device.row(1)->isListening(), run);
            device.rows->stopAll();
        }
    }

    void lostContentStopsItsRow()
    {
        Rows device;
        device.addFile("disk/a.txt");
        device.keeper->share(device.path("disk"));
        device.keeper->share(device.path("none"));
        QCOMPARE(device.shared(), device.path("disk")); // nothing has changed
        device.reopen();
        QVERIFY(QFile::rename(device.path("disk"), device.path("away")));
        device.reopen();
        QCOMPARE(device.shared(), device.home.path());
        device.sink.messages.clear();
        device.row()->start();
        QVERIFY(!device.row()->isListening());
        QVERIFY(
            device.sink.messages.takeFirst().startsWith(QLatin1Char('"') + device.path("disk")));
        device.reopen(); // what was chosen is not forgotten
        QVERIFY(QFile::rename(device.path("away"), device.path("disk")));
        device.row()->start();
        QVERIFY(device.row()->isListening() && device.shared() == device.path("disk"));
    }

    void languages()
    {
        const TestHome home;
        const QString all = home.directories.resources + "lang/"_q;
        for (const char *each : { "de_DE", "fr_CA", "fr_FR" })
            QVERIFY(QDir(all).mkpath(QLatin1String(each)));
        for (const auto &[locale, folder] :
             { std::pair("fr_CA", "fr_CA"), std::pair("de_AT", "de_DE"), std::pair("den_CA", "C"),
               std::pair("C", "C") })
            QCOMPARE(QDir(languageFolder(all, QLatin1String(locale))).dirName(),
                     QLatin1String(folder));
    }

    void addressComesAndGoes()
    {
        for (const bool expert : { false, true }) {
            Rows device(inExpertMode(expert));
            device.keeper->share(device.path("res"));
            device.row()->start();
            const QString url = device.row()->url();
            device.addresses.clear();
            device.keeper->lookForChanges();
            QVERIFY(!device.rows->current() && !device.keeper->hasNetwork());
            device.rows->startOrStop();
            QCOMPARE(device.sink.messages.size(), 1); // that there is nothing to start
            device.addresses = QStringList{ loopback, "127.0.0.2"_q };
            device.keeper->lookForChanges();
            QCOMPARE(device.rows->current()->url() + device.shared(), url + device.path("res"));
            QVERIFY(device.row(0)->isListening());
            QCOMPARE(device.row(1)->isListening(), !expert); // it rested when the first one ran
            device.addresses.append("127.0.0.3"_q);
            device.keeper->lookForChanges();
            QVERIFY(device.row(2)->isListening());
            device.keeper->remove(device.row(2));
            device.keeper->remove(device.row(1));
            device.keeper->lookForChanges();
            QCOMPARE(device.rows->all().size(), 1);
            device.rows->stopAll();
            device.addresses.clear();
            device.keeper->lookForChanges();
            device.addresses.append(loopback);
            device.keeper->lookForChanges();
            QVERIFY(!device.rows->isRunning());
            device.addresses.append("127.0.0.2"_q);
            device.keeper->loadLocal();
            QCOMPARE(device.rows->all().size(), 2);
            device.keeper->remove(device.row(1));
            QTRY_COMPARE(device.global()->useCount, 1);
        }
        // Chosen while there is no network.
        Rows device({}, 0);
        device.keeper->share(device.path("res"));
        device.addresses.append(loopback);
        device.reopen();
        QCOMPARE(device.shared(), device.path("res"));
    }

    void rowsComeBack()
    {
        Rows device(inExpertMode(), 2);
        device.addFile("ü b/a.txt");
        device.row(0)->share(device.path("ü b"));
        QTRY_VERIFY(readFile(device.path(".quillon/list.ini")).contains(" b")); // at once
        device.row(0)->setPort(7001);
        device.row(1)->setPort(7002);
        device.rows->addPort(device.row(0))->setPort(7003);
        const QByteArray home = device.home.path().toUtf8();
        const auto rows = [&] {
            QStringList all;
            for (const ServerRow *row : device.rows->all())
                all.append(row->url().mid(15) + row->server()->shared().filePath());
            all.sort();
            return all.join(QLatin1Char('|')).toUtf8().replace(home, "~");
        };
        const QByteArray expected = "1:7001~/ü b|1:7003~/ü b|2:7002~";
        device.reopen();
        QCOMPARE(rows(), expected);
        device.keeper->remove(device.rows->addPort(device.row(0))); // the address itself stays
        device.addresses.takeFirst();
        device.keeper->lookForChanges();
        device.addresses.append(loopback);
        device.keeper->lookForChanges();
        QCOMPARE(rows(), expected);
        QVERIFY(device.keeper->end());
        const QSettings file(device.path(".quillon/list.ini"), QSettings::IniFormat);
        QStringList values;
        for (const char *key :
             { "len", "0/port", "1/port", "1/cnf", "1/address", "2/port", "2/address" })
            values.append(file.value(QLatin1String(key)).toString());
        QCOMPARE(values.join(QLatin1Char(' ')), "3 7002 7001 Default  7003 127.0.0.1"_q);
    }

    void savedRow_data()
    {
        // `taken` are profile, port, messages
        columnsOf<bool, QByteArray, QByteArray>("expert", "saved", "taken");
        row("simple mode takes the saved profile", false, "cnf=work\nport=81", "work 81 0");
        row("expert mode takes the global one", true, "cnf=work\nport=81", "Default 81 0");
        row("no port and no folder", true, "port=many\nfile=/no/such/<b>", "Default 8080 2");
        row("a huge number of rows", true,
            "[General]\nlen=999999999\n[7]\nport=x\naddress=127.0.0.1", "Default 8080 0");
        row("bytes of something else", true, "\xff]=[\n\n=\n[[0]\nport\n[1", "Default 8080 1");
    }

    void savedRow()
    {
        QFETCH(bool, expert);
        QFETCH(QByteArray, saved);
        Rows device([expert](Profile &global) {
            global.expertMode = expert;
            global.port = 8080;
        });
        device.home.storeProfile("work"_q);
        QVERIFY(device.keeper->end());
        device.addFile(".quillon/list.ini", "[0]\n" + saved + '\n');
        device.home.restart();
        device.open();
        const ServerRow *row = device.row();
        QCOMPARE(device.rows->all().size(), 1);
        QTEST("%1 %2 %3"_q.arg(row->profile()->name)
                  .arg(row->server()->port)
                  .arg(device.sink.messages.size())
                  .toUtf8(),
              "taken");
        QCOMPARE(QFile::exists(device.path(".quillon/list.ini.bad")), saved.startsWith('\xff'));
    }

    void rowsFollowARenamedProfile()
    {
        Rows device({}, 1);
        device.home.storeProfile("work"_q);
        device.reopen();
        Profile *work = device.home.profiles->find("work"_q);
        device.row()->useProfile(work);
        device.row()->start();
        QVERIFY(device.home.profiles->rename(work, "play"_q));
        device.keeper->followRename("work"_q, "play"_q);
        QVERIFY(device.row()->isListening());
        QCOMPARE(device.row()->profile(), work);
        device.addresses.clear(); // one that is away is kept by its name too
        device.keeper->lookForChanges();
        QVERIFY(device.home.profiles->rename(work, "rest"_q));
        device.keeper->followRename("play"_q, "rest"_q);
        device.addresses.append("127.0.0.1"_q);
        device.keeper->lookForChanges();
        QCOMPARE(device.row()->profile(), work);
        device.reopen();
        QCOMPARE(device.row()->profile()->name, "rest"_q);
    }

    void loginIsNotLostUnseen()
    {
        Rows device(inExpertMode());
        const QString work = "work"_q;
        device.home.storeProfile(work, [](Profile &profile) { profile.authMode = AuthBasic; });
        device.reopen();
        device.row()->useProfile(device.home.profiles->find(work));
        device.reopen();
        device.reopen(); // not forgotten, however often nobody decides
        QCOMPARE(device.row()->profile(), device.global());
        QCOMPARE(device.row()->doubt(), StartDoubt::LoginIsOff);
        device.row()->useFormerProfile();
        QCOMPARE(device.row()->profile()->name, work);
        QCOMPARE(device.row()->doubt(), StartDoubt::None);
        device.reopen();
        device.row()->settle(StartDoubt::LoginIsOff);
        device.reopen();
        QCOMPARE(device.row()->doubt(), StartDoubt::None);
    }

    void newCountAfterTheLimit()
    {
        Rows device([](Profile &global) { global.dataLimit = 1; });
        device.row()->server()->addReceivedBytes(2000);
        QCOMPARE(device.row()->doubt(), StartDoubt::LimitReached);
        device.row()->settle(StartDoubt::LimitReached);
        QCOMPARE(device.row()->doubt(), StartDoubt::None);
    }

    void keysAreNeeded()
    {
        Rows device([](Profile &global) { global.sslMode = Qt::Checked; });
        QString reason;
        const auto keep = [&reason](ServerRow *, const QString &why) { reason = why; };
        QObject::connect(device.rows, &ServerRows::keysRefused, device.rows, keep);
        device.row()->start();
        QVERIFY(!device.row()->isListening());
        QVERIFY(reason.contains(device.global()->publicKeyFile));

        const auto fails = [] { QFAIL("told of a pair that nobody waits for"); };
        auto given = std::make_unique<KeyMaker>(device.path(".quillon/"), nullptr);
        QObject::connect(given.get(), &KeyMaker::failed, device.rows, fails);
        given->start();
        given.reset();

        QStringList files;
        auto *maker = new KeyMaker(device.path(".quillon/"), device.rows);
        QObject::connect(maker, &KeyMaker::made, maker, [&](const auto &key, const auto &crt) {
            files = QStringList{ key, crt };
        });
        QObject::connect(maker, &KeyMaker::failed, maker, [](const QString &why) {
            QSKIP(qPrintable(why)); // the tool is missing here
        });
        maker->start();
        QTRY_VERIFY_WITH_TIMEOUT(!files.isEmpty(), 20000);
        QVERIFY(
            !(QFile::permissions(files[0]) & (QFileDevice::ReadGroup | QFileDevice::ReadOther)));
        QVERIFY(certificateFacts(files[1]).contains(loopback));
        const std::unique_ptr<Profile> copy = device.global()->clone();
        copy->privateKeyFile = files[0];
        copy->publicKeyFile = files[1];
        device.rows->profileEdited(copy.get());
        device.row()->start();
        QVERIFY(device.row()->isListening() && device.row()->server()->isTlsReady());

        // As after a move: for nothing of today. New connections get the renewed one.
        const QString moved =
            "cd \"$0\" && openssl req -new -key \"$1\" -subj /CN=old | openssl x509 -req "
            "-set_serial 7 "
            "-CA authority.crt -CAkey authority.key -out old && cat old authority.crt > \"$2\""_q;
        QCOMPARE(QProcess::execute("sh"_q,
                                   QStringList{ "-c"_q, moved, device.path(".quillon") } + files),
                 0);
        device.row()->stop();
        device.row()->server()->reloadKeys();
        device.row()->start();
        const auto namesShown = [&device] {
            QSslSocket client;
            client.setPeerVerifyMode(QSslSocket::VerifyNone);
            QSignalSpy encrypted(&client, &QSslSocket::encrypted);
            client.connectToHostEncrypted(loopback, device.row()->server()->port);
            encrypted.wait();
            return client.peerCertificate().subjectAlternativeNames().size();
        };
        QCOMPARE(namesShown(), 0);
        QTRY_VERIFY_WITH_TIMEOUT(namesShown() > 0, 20000);
        copy->publicKeyFile = files[0];
        device.rows->profileEdited(copy.get());
        QVERIFY(!device.row()->isListening()); // it would go on without encryption
    }

    void oneWindow()
    {
        const TestHome home;
        const QString folder = home.directories.profiles;
        writeFile(folder + "window.socket"_q, "left by a crash");
        auto first = std::make_unique<FirstInstance>(folder);
        QVERIFY(!first->handOver({}));
        QStringList called;
        connect(first.get(), &FirstInstance::called, [&](const StartRequest &request) {
            called << request.path + QLatin1String(request.startsRows ? " starts" : "");
        });
        QLocalSocket silent;
        silent.connectToServer(folder + "window.socket"_q);
        QVERIFY(silent.waitForConnected());
        std::thread other([&folder] {
            FirstInstance(folder).handOver({ "/a b\n/ü"_q, true });
            FirstInstance(folder).handOver({});
        });
        QTRY_COMPARE(called.size(), 2);
        other.join();
        QCOMPARE(called, QStringList({ "/a b\n/ü starts"_q, QString() }));
        QTRY_COMPARE(silent.state(), QLocalSocket::UnconnectedState);
        first.reset();
        QVERIFY(!FirstInstance(folder).handOver({}));
    }

    void commandLine()
    {
        const auto read = [](const char *words) {
            return readCommandLine(
                "quillon %1"_q.arg(QLatin1String(words)).split(QLatin1Char(' ')));
        };
        const CommandLine all = read("root --start /a");
        QVERIFY(all.rootMode && all.request.startsRows && all.mistake.isEmpty());
        QCOMPARE(all.request.path, "/a"_q);
        QCOMPARE(read("./root").request.path, QDir::current().filePath("root"_q));
        for (const char *words : { "--share a", "-reverse", "--start=no", "a b", "" })
            QVERIFY2(!read(words).mistake.isEmpty() && read(words).information.isEmpty(), words);
        QVERIFY(read("-reverse --help").information.contains("--start"_q));
        QVERIFY(read("--version").information.startsWith("Quillon "_q));
    }

    void ports()
    {
        Rows device(inExpertMode(), 2);
        const auto refusal = [&](int port, const ServerRow *except) {
            return device.rows->portRefusal(device.row()->address(), port, except);
        };
        device.row(0)->setPort(7001);
        device.row(1)->setPort(7002);
        QVERIFY(refusal(65536, nullptr).contains("65535"_q));
        QVERIFY(refusal(7001, nullptr).contains("7001"_q));
        QVERIFY(refusal(7001, device.row(0)).isEmpty() && refusal(7002, nullptr).isEmpty());
    }

    void editedPort()
    {
        // In expert mode a running row keeps its own.
        for (const auto &[expert, running] :
             { std::pair(false, true), std::pair(true, true), std::pair(true, false) }) {
            Rows device(inExpertMode(expert));
            const QString before = device.row()->url();
            if (running)
                device.row()->start();
            const std::unique_ptr<Profile> copy = device.global()->clone();
            copy->port = freePort();
            device.rows->profileEdited(copy.get());
            QCOMPARE(device.row()->url() == before, expert && running);
            QCOMPARE(device.row()->isListening(), running);
            QVERIFY(device.global()->load() && device.global()->equals(copy.get()));
        }
    }

    void editedProfileReachesItsRows()
    {
        Rows device(inExpertMode(), 2);
        Profile *work = device.home.profiles->duplicate(device.global(), "work"_q);
        device.row(1)->useProfile(work);
        const std::unique_ptr<Profile> copy = work->clone();
        copy->dataLimit = 77;
        copy->sslMode = Qt::Checked;
        device.rows->profileEdited(copy.get());
        QCOMPARE(device.row(1)->server()->dataLimitBytes(), qint64(77 * 1024));
        QVERIFY(device.global()->dataLimit == 0 && work->dataLimit == 77);
        QVERIFY(device.row(1)->url().startsWith("https://127.0.0.2:"_q));
    }

    void texts()
    {
        QCOMPARE(publicAddressLabel("me"_q, "a"_q, 80),
                 "<centcer>Public addresses: me , a</center>"_q);
        QCOMPARE(publicAddressLabel("%1<b>"_q, "a"_q, 81),
                 "<center>Public addresses: %1&lt;b&gt;:81 , a:81</center>"_q);
    }

    void portCheck_data()
    {
        columnsOf<QByteArray, QString, int>("body", "label", "counted");
        const QString open = "<center>Public addresses: 192.0.2.7:%1</center>"_q;
        const auto row = [](const char *name, const QByteArray &body, const QString &label) {
            const int counted = qMin(int(body.size()), WebServices::maxAnswerBytes);
            QTest::newRow(name) << body << label << (label.isEmpty() ? 0 : counted);
        };
        row("open", openAnswer, open);
        row("closed", R"({"status":"failure","message":"Port"})", Reachability::localText());
        row("success too early", R"(success  {"status":"other")", Reachability::localText());
        row("an answer to something else", "<p>busy</p>", {});
        row("too long", openAnswer + QByteArray(3 * WebServices::maxAnswerBytes, ' '), open);
    }

    void portCheck()
    {
        QFETCH(QByteArray, body);
        QFETCH(QString, label);
        Checked device;
        device.service.answer(body);
        const int port = device.row()->server()->port;
        device.reach.loadPublic();
        QTRY_COMPARE(device.finished, 1);
        QCOMPARE(device.label, QString(label).replace("%1"_q, QString::number(port)));
        QTEST(int(device.row()->server()->receivedBytes()), "counted");
        const QByteArray request = device.service.requests.constFirst();
        QVERIFY(request.startsWith(
            "GET /tools/open-ports/check.php?portNumber=" + QByteArray::number(port) + " HTTP"));
        // A port known to be open is not checked again while its server listens.
        device.row()->start();
        device.reach.loadPublic();
        QTRY_COMPARE(device.finished, label.contains("Public"_q) ? 1 : 2);
    }

    void noAnswer()
    {
        for (const QByteArray kind : { "says nothing", "is not there", "hangs up" }) {
            Checked device;
            device.service.silent = kind == "says nothing";
            if (kind == "is not there")
                device.service.close();
            device.reach.webServices()->setTimeout(std::chrono::milliseconds(100));
            device.reach.loadPublic();
            QTRY_COMPARE(device.told, "No internet connection"_q);
        }
    }

    void dynamicDns()
    {
        for (const QByteArray status : { "200 OK", "403 Forbidden", "302 Found" }) {
            const bool updated = status.startsWith("200");
            Checked device;
            device.global()->dnsUser = device.global()->dnsPassword = "a#b +c"_q;
            device.global()->dnsEnabled = Qt::Checked;
            StandIn elsewhere;
            // What stands in the head of the page does not count.
            device.service.answer(QByteArray(updated ? 120 : 119, '.') + "has been updated", status,
                                  "Location: " + elsewhere.base().toLatin1() + "/\r\n");
            Checked::setService("portCheck", {});
            Checked::setService("dns", device.service.base());
            device.reach.loadPublic();
            QTRY_COMPARE(device.finished, 1);
            QVERIFY(device.service.requests.constFirst().startsWith(
                "GET /cgi-bin/dynip.cgi?username=a%23b%20+c&password=a%23b%20+c HTTP/1.1\r\n"));
            QVERIFY(elsewhere.requests.isEmpty());
            QCOMPARE(device.pages, updated ? 0 : 1);
            QVERIFY(!device.told.contains("a#b"_q));
        }
    }
};

QTEST_GUILESS_MAIN(tst_rows)
#include "tst_rows.moc"
