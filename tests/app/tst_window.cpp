#include "files/FileDescriptor.h"
#include "tests/platform/PrivateBus.h"
#include "tests/support/LiveServer.h"

#include <QDBusUnixFileDescriptor>
#include <QProcess>
#include <QRegularExpression>
#include <QSslSocket>

#include <array>
#include <csignal>

#include <fcntl.h>
#include <poll.h>
#include <unistd.h>

namespace {

constexpr auto here = "192.0.2.5"; ///< of the only interface
constexpr qint64 longFile = qint64(512) << 20;

QStringList words(const QString &text)
{
    return text.split(QLatin1Char(' '));
}

/// What the tool says that moves hand and focus.
QString xdotool(const QString &arguments)
{
    QProcess process;
    process.start("xdotool"_q, words(arguments));
    process.waitForFinished(5000);
    return QString::fromUtf8(process.readAllStandardOutput()).trimmed();
}

bool isClosed(const FileDescriptor &lock)
{
    pollfd end = { lock.get(), POLLIN, 0 };
    return ::poll(&end, 1, 0) == 1;
}

} // namespace

/// In a network of its own: the program with a window from its start to its end, on a small screen,
/// with stand-ins for the rest of the desktop; what needs addresses that come and go.
class TestWindow : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void cleanupTestCase();
    void sharesFromAKeyPressToTheEnd();
    void endsInOrderBySignals();
    void certificateFollowsTheAddresses();

private:
    TestHome home;
    QTemporaryDir share;
    const PrivateBus systemBus;
    QProcess display, program;
};

void TestWindow::initTestCase()
{
    home.profiles->global()->amend([](Profile &global) {
        global.announced = 1;
        global.port = 9100;
    });
    qputenv("XDG_CACHE_HOME", QFile::encodeName(home.path() + "/cache"_q));
    home.profiles.reset(); // a program that runs beside would be its neighbour
    writeFile(share.filePath("a.txt"_q), "hello");
    QFile large(share.filePath("large"_q));
    QVERIFY(large.open(QFile::WriteOnly) && large.resize(longFile));
    display.start("Xvfb"_q, words("-displayfd 1 -screen 0 800x480x24 -nolisten tcp -noreset"_q));
    QVERIFY(display.waitForReadyRead(5000));
    qputenv("DISPLAY", ':' + display.readLine().trimmed());
    qputenv("QT_QPA_PLATFORM", "xcb");
    qputenv("ASAN_OPTIONS", "detect_leaks=0"); // of the display's own libraries
    qputenv("DBUS_SYSTEM_BUS_ADDRESS", systemBus.address.toLatin1());
}

void TestWindow::cleanupTestCase()
{
    for (QProcess *process : { &program, &display }) {
        process->kill();
        process->waitForFinished();
    }
}

void TestWindow::sharesFromAKeyPressToTheEnd()
{
    StandInAvahi avahi(systemBus);
    std::array<int, 2> ends{};
    QVERIFY(::pipe2(ends.data(), O_CLOEXEC) == 0);
    const FileDescriptor told(ends[0]);
    StandIn login(systemBus.connection("login"_q), "org.freedesktop.login1"_q,
                  { { "Inhibit"_q, { QVariant::fromValue(QDBusUnixFileDescriptor(ends[1])) } } });
    ::close(ends[1]);
    StandIn desktop(QDBusConnection::sessionBus(), "org.freedesktop.Notifications"_q,
                    { { "Notify"_q, { 7U } }, { "GetCapabilities"_q, { QStringList() } } });

    program.start(QStringLiteral(WINDOW_PROGRAM), { share.path() });
    const QString press = "windowfocus --sync %1 key space"_q.arg(
        xdotool("search --sync --onlyvisible --name ^Quillon$"_q));
    QVERIFY(!readFile("/proc/%1/maps"_q.arg(program.processId())).contains("_dri.so"));
    xdotool(press); // the first key, on the button that has the focus
    const QRegularExpression added("AddService \\d+ 0 0 Share on \\S+ (\\S+)   9100 path=/;"_q);
    const QString asked = avahi.takenUpTo("Commit"_q);
    auto services = added.globalMatch(asked);
    QVERIFY2(services.hasNext(), qPrintable(asked));
    QCOMPARE(services.next().captured(1), "_http._tcp"_q);
    QCOMPARE(services.next().captured(1), "_webdav._tcp"_q);

    // Nothing is told of visitors while the window is in use.
    xdotool("search --maxdepth 0 .* windowfocus"_q);
    QTest::qWait(600); // so long the toolkit waits for another of its windows to get the focus
    QTcpSocket visitor;
    visitor.connectToHost(QString::fromLatin1(here), 9100);
    visitor.write(rawRequest("GET", "/a.txt"));
    QTRY_VERIFY(visitor.peek(9999).endsWith("hello"));
    QVERIFY(desktop.takenUpTo("Notify"_q).contains("New visitor 192.0.2.5"_q));
    QVERIFY(login.calls.isEmpty());

    visitor.readAll();
    visitor.setReadBufferSize(1 << 20);
    visitor.write(rawRequest("GET", "/large"));
    qint64 taken = 0;
    QTRY_VERIFY((taken += visitor.readAll().size(), !login.calls.isEmpty()));
    QVERIFY(login.calls.constFirst().startsWith("Inhibit sleep:idle Quillon"_q));
    login.answers.clear(); // which hold what it gave
    QVERIFY(taken < longFile && !isClosed(told));
    visitor.abort();
    QVERIFY(QTest::qWaitFor([&told] { return isClosed(told); }, 2500));

    xdotool(press);
    QCOMPARE(avahi.takenUpTo("Free"_q), "Free"_q);
    program.terminate();
    QVERIFY(program.waitForFinished(4000));
    QCOMPARE(program.exitStatus(), QProcess::NormalExit);
    QCOMPARE(program.exitCode(), 0);
    QCOMPARE(login.calls.size(), 1);
}

/// Here with the notifications switched off.
void TestWindow::endsInOrderBySignals()
{
    const StandIn desktop(QDBusConnection::sessionBus(), "org.freedesktop.Notifications"_q, {});
    writeFile(home.path() + "/.config/Tessaroy/Quillon.conf"_q, "[desktop]\nnotifies=false\n");
    for (const int number : { SIGINT, SIGHUP }) {
        program.start(QStringLiteral(WINDOW_PROGRAM), { "--start"_q, share.path() });
        xdotool("search --sync --onlyvisible --name ^Quillon$"_q);
        xdotool("search --maxdepth 0 .* windowfocus"_q);
        QTcpSocket visitor;
        QTRY_VERIFY((visitor.connectToHost(QString::fromLatin1(here), 9100),
                     visitor.waitForConnected(100)));
        visitor.write(rawRequest("GET", "/a.txt"));
        QTRY_VERIFY(visitor.peek(9999).endsWith("hello"));
        QTest::qWait(600); // as above
        ::kill(pid_t(program.processId()), number);
        QVERIFY(program.waitForFinished(4000));
        QCOMPARE(program.exitStatus(), QProcess::NormalExit);
        QCOMPARE(program.exitCode(), 0);
        QVERIFY(Profile(home.directories, "Global.conf"_q).cleanExit);
    }
    QCOMPARE(desktop.calls, QStringList());
}

/// Of a server that was confined before it had the address.
void TestWindow::certificateFollowsTheAddresses()
{
    const QString keys = home.path() + "/keys"_q; // that nothing else lets it read
    const QString maker = QCoreApplication::applicationDirPath() + "/make-keys.sh"_q;
    QCOMPARE(QProcess::execute(maker, { keys, "server"_q }), 0);
    home.storeProfile("tls"_q, [&keys](Profile &profile) {
        profile.sslMode = Qt::Checked;
        profile.privateKeyFile = keys + "/server.key"_q;
        profile.publicKeyFile = keys + "/server.crt"_q;
        profile.strict = 1;
    });
    QProcess server;
    server.start(QStringLiteral(SERVE_PROGRAM),
                 words("--profile tls --address 127.0.0.1 --port 9443"_q) << share.path());
    QVERIFY(server.waitForReadyRead(5000));
    const auto isServed = [](const QString &address) {
        QSslSocket client;
        client.setPeerVerifyMode(QSslSocket::VerifyNone);
        client.connectToHostEncrypted("127.0.0.1"_q, 9443);
        client.waitForEncrypted();
        return client.peerCertificate().subjectAlternativeNames().values().contains(address);
    };
    QVERIFY(isServed("127.0.0.1"_q) && !isServed("10.1.2.3"_q));
    QCOMPARE(QProcess::execute("ip"_q, words("addr add 10.1.2.3/24 dev near"_q)), 0);
    QTRY_VERIFY_WITH_TIMEOUT(isServed("10.1.2.3"_q), 15000);
    server.terminate();
    QVERIFY(server.waitForFinished(4000));
}

QTEST_GUILESS_MAIN(TestWindow)
#include "tst_window.moc"
