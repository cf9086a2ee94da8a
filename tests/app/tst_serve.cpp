#include "server/PasswordHash.h"
#include "tests/files/Pictures.h"
#include "tests/platform/PrivateBus.h"
#include "tests/support/Data.h"
#include "tests/support/LiveServer.h"

#include <QDBusConnectionInterface>
#include <QProcess>
#include <QRegularExpression>
#include <QTcpServer>

#include <csignal>
#include <thread>

#include <fcntl.h>
#include <sys/ptrace.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/un.h>
#include <sys/wait.h>
#include <unistd.h>

namespace {

constexpr auto handed = "LISTEN_PID=$$ LISTEN_FDS=1"; ///< by a service manager
constexpr int wakeSignal = SIGWINCH; ///< does nothing but to tell that the work is done

/// How often the process asked the system for something while `work` ran in another thread; -1
/// where nobody may look.
int systemCalls(pid_t process, const std::function<void()> &work)
{
    if (::ptrace(PTRACE_SEIZE, process, 0, PTRACE_O_TRACESYSGOOD) != 0)
        return -1;
    ::ptrace(PTRACE_INTERRUPT, process, 0, 0);
    int status = 0;
    ::waitpid(process, &status, __WALL);
    std::thread worker([&work, process] {
        work();
        ::kill(process, wakeSignal);
    });
    int stops = 0;
    while (WIFSTOPPED(status) && WSTOPSIG(status) != wakeSignal) {
        stops += WSTOPSIG(status) == (SIGTRAP | 0x80) ? 1 : 0;
        ::ptrace(PTRACE_SYSCALL, process, 0, 0);
        ::waitpid(process, &status, __WALL);
    }
    worker.join();
    ::ptrace(PTRACE_DETACH, process, 0, 0);
    return stops / 2; // at the beginning and at the end of each
}

/// Asks for the same small file over and over on one connection.
void askFor(const QByteArray &target, quint16 port, int times)
{
    QTcpSocket socket;
    socket.connectToHost(QHostAddress(QHostAddress::LocalHost), port);
    for (int i = 0; i < times && socket.waitForConnected(); ++i) {
        socket.write(rawRequest("GET", target));
        while (!socket.readAll().endsWith("hello") && socket.waitForReadyRead()) { }
    }
}

} // namespace

/// The console program as its user sees it: what it prints and how it ends.
class TestServe : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup();
    void endsAtOnce_data();
    void endsAtOnce();
    void hashesAPassword();
    void servesUntilASignal();
    void asksTheSystemLittleForASmallFile();
    void stopsAtTheTrafficLimit();
    void refusesToServeWithoutItsKeys();
    void refusesADamagedProfile();
    void takesWhatItsManagerOpened();
    void judgesWhatIsHandedOver_data();
    void judgesWhatIsHandedOver();
    void warnsOfAnOpenHome_data();
    void warnsOfAnOpenHome();
    void servesWhoeverReadsItsErrors();
    void worksInAFolderOfItsOwn();
    void isAnnouncedUntilItIsGone();
    void isConfined_data();
    void isConfined();
    void worksConfined();

private:
    void takeOver();
    void start(const QStringList &arguments);
    void startAsService(const QByteArray &variables, int descriptor);
    quint16 waitForPort(const QString &shared = {});
    int exitStatus(int msecs = 4000);
    QStringList serving(const QStringList &more = {}) const
    {
        return QStringList{ QStringLiteral("--address"), QStringLiteral("127.0.0.1"),
                            QStringLiteral("--port"), QStringLiteral("0") }
        + more + QStringList{ share->path() };
    }

    std::unique_ptr<TestHome> home;
    std::unique_ptr<QTemporaryDir> share;
    QProcess program;
};

void TestServe::init()
{
    home = std::make_unique<TestHome>();
    qputenv("XDG_CACHE_HOME", QFile::encodeName(home->path() + QLatin1String("/cache")));
    home->profiles.reset(); // a program that runs beside would be its neighbour
    share = std::make_unique<QTemporaryDir>();
    writeFile(share->filePath(QStringLiteral("a.txt")), "hello");
    program.setProcessEnvironment(QProcessEnvironment::systemEnvironment());
}

void TestServe::cleanup()
{
    program.kill();
    program.waitForFinished();
    home.reset();
}

void TestServe::start(const QStringList &arguments)
{
    program.start(QStringLiteral(SERVE_PROGRAM), arguments);
    QVERIFY(program.waitForStarted());
}

/// The port in the line "Serving PATH at http://ADDR:PORT/".
quint16 TestServe::waitForPort(const QString &shared)
{
    static const QRegularExpression line(
        QStringLiteral("^Serving (.+) at https?://127\\.0\\.0\\.1:(\\d+)/\n$"));
    if (!program.canReadLine() && !program.waitForReadyRead(5000))
        return 0;
    const auto match = line.match(QString::fromUtf8(program.readLine()));
    const QString path = shared.isEmpty() ? share->path() : shared;
    return match.captured(1) == path ? match.captured(2).toUShort() : quint16(0);
}

int TestServe::exitStatus(int msecs)
{
    const bool ended = program.state() == QProcess::NotRunning || program.waitForFinished(msecs);
    return ended && program.exitStatus() == QProcess::NormalExit ? program.exitCode() : -1;
}

void TestServe::endsAtOnce_data()
{
    columnsOf<QByteArray, int, QByteArray>("arguments", "status", "says");
    row("help", "--help", 0, "PATH");
    row("version", "--version", 0, "quillon-serve 2.4.0");
    row("no path", "", 2, "Name one file or folder");
    row("unknown option", "--loud /tmp", 2, "loud");
    row("port out of range", "--port 65536 /tmp", 2, "65536");
    row("no proxy", "--trust-proxy proxy /tmp", 2, "no address: proxy");
    row("no name", "--name a/b /tmp", 2, "no host name: a/b");
    row("no prefix", "--path-prefix share /tmp", 2, "no path for URLs: share");
    row("no mode", "--mode modern /tmp", 2, "classic, auto or standard");
    row("two profiles", "--profile a --default-profile /tmp", 2, "exclude");
    row("missing path", "/none", 1, "/none");
    row("device", "/dev/null", 1, "/dev/null");
    row("unknown profile", "--profile none /tmp", 1, "none");
    row("address of another machine", "--address 192.0.2.1 --port 0 /tmp", 1, "192.0.2.1");
}

void TestServe::endsAtOnce()
{
    QFETCH(const QByteArray, arguments);
    QFETCH(const int, status);
    start(QString::fromLatin1(arguments).split(QLatin1Char(' '), Qt::SkipEmptyParts));
    QCOMPARE(exitStatus(), status);
    const QByteArray errors = program.readAllStandardError();
    const QByteArray said = status == 0 ? program.readAllStandardOutput() : errors;
    QFETCH(const QByteArray, says);
    QVERIFY2(said.contains(says), said.constData());
    QCOMPARE(errors.count('\n'), status);
}

void TestServe::hashesAPassword()
{
    start({ QStringLiteral("--hash") });
    program.write("p\xc3\xa4ss word\nnext");
    program.closeWriteChannel();
    QCOMPARE(exitStatus(), 0);
    QVERIFY(fitsPasswordHash("p\xc3\xa4ss word", program.readAllStandardOutput().trimmed())
            == true);
    start({ QStringLiteral("--hash") });
    program.closeWriteChannel();
    QCOMPARE(exitStatus(), 1);
}

void TestServe::servesUntilASignal()
{
    writeFile(share->filePath(QStringLiteral("big")), QByteArray(50000000, 'x'));
    start(serving());
    const quint16 port = waitForPort();
    QVERIFY(port > 0);
    RawClient client(port);
    QCOMPARE(client.exchange(rawRequest("GET", "/a.txt")).body, QByteArray("hello"));
    // A peer that takes nothing does not delay the end.
    client.socket->setReadBufferSize(1);
    client.send(rawRequest("GET", "/big"));
    // Megabytes that nobody needs who does not encrypt.
    QFile loaded(QStringLiteral("/proc/%1/maps").arg(program.processId()));
    QVERIFY(loaded.open(QFile::ReadOnly) && !loaded.readAll().contains("/libssl"));
    ::kill(pid_t(program.processId()), SIGINT); // others end by SIGTERM
    QCOMPARE(exitStatus(), 0);
    const QByteArray told = program.readAllStandardError();
    QVERIFY(told.contains("New client: 127.0.0.1"));
    QCOMPARE(told.contains("--mode standard"), HAS_WEBAPP == 1);
    const Profile global(home->directories, QStringLiteral("Global.conf"));
    QVERIFY(global.cleanExit);
}

void TestServe::asksTheSystemLittleForASmallFile()
{
    start(serving());
    const quint16 port = waitForPort();
    QVERIFY(port > 0);
    constexpr int times = 100;
    askFor("/a.txt", port, times); // whoever comes first is told of
    const int calls =
        systemCalls(pid_t(program.processId()), [port] { askFor("/a.txt", port, times); });
    if (calls < 0)
        QSKIP("no process may look at another one here");
    constexpr int forAConnection = 40;
    QVERIFY2(calls > times && calls <= 8 * times + forAConnection,
             QByteArray::number(calls).constData());
}

void TestServe::stopsAtTheTrafficLimit()
{
    home->storeProfile(QStringLiteral("small"), [](Profile &profile) { profile.dataLimit = 1; });
    const QByteArray before = home->profileBytes(QStringLiteral("small.cnf"));
    start(serving({ QStringLiteral("--profile"), QStringLiteral("small") }));
    RawClient client(waitForPort());
    client.send(rawRequest("GET", '/' + QByteArray(1500, 'x')));
    QCOMPARE(exitStatus(), 0);
    const QByteArray said = program.readAllStandardError();
    QVERIFY2(said.contains("limit of 1024 bytes is reached: sent "), said.constData());
    QCOMPARE(home->profileBytes(QStringLiteral("small.cnf")), before);
}

void TestServe::refusesToServeWithoutItsKeys()
{
    home->storeProfile(QStringLiteral("tls"), [](Profile &profile) { profile.sslMode = 2; });
    start(serving({ QStringLiteral("--profile"), QStringLiteral("tls") }));
    QCOMPARE(exitStatus(), 1);
    QVERIFY(program.readAllStandardError().contains("TLS"));
}

void TestServe::refusesADamagedProfile()
{
    for (const char *name : { "Global.conf", "work.cnf" }) {
        const QString file = QString::fromLatin1(name);
        home->writeProfile(file, "junk");
        const bool global = file.startsWith(QLatin1Char('G'));
        start(serving(global ? QStringList()
                             : QStringList{ QStringLiteral("--profile"), QStringLiteral("work") }));
        QCOMPARE(exitStatus(), 1);
        const QByteArray said = program.readAllStandardError();
        QVERIFY2(said.contains(name) && said.contains("--default-profile"), said.constData());
        QCOMPARE(home->profileBytes(file), QByteArray("junk"));
    }
    start(serving({ QStringLiteral("--default-profile") }));
    QVERIFY(waitForPort() > 0);
    program.terminate();
    QCOMPARE(exitStatus(), 0);
    QCOMPARE(home->profileBytes(QStringLiteral("Global.conf")), QByteArray("junk"));
}

/// With `descriptor` as its 3, and the variables, in which $$ is its process.
void TestServe::startAsService(const QByteArray &variables, int descriptor)
{
    const FileDescriptor inherited(::dup(descriptor));
    const QString line = QStringLiteral("exec 3<&%1; %2 exec \"$0\" \"$@\"")
                             .arg(QString::number(inherited.get()), QString::fromUtf8(variables));
    const QStringList shell{ QStringLiteral("-c"), line, QStringLiteral(SERVE_PROGRAM) };
    program.start(QStringLiteral("bash"), shell + serving());
}

void TestServe::takesWhatItsManagerOpened()
{
    QTcpServer opened;
    QVERIFY(opened.listen(QHostAddress::LocalHost));
    opened.pauseAccepting();
    const QByteArray path = QFile::encodeName(home->path()) + "/manager";
    for (const QByteArray &name : { path, '@' + path }) {
        sockaddr_un address = { AF_UNIX, {} };
        std::copy(name.begin(), name.end(), address.sun_path);
        std::replace(address.sun_path, address.sun_path + 1, '@', '\0');
        const FileDescriptor reports(::socket(AF_UNIX, SOCK_DGRAM | SOCK_CLOEXEC, 0));
        const auto size = socklen_t(offsetof(sockaddr_un, sun_path) + size_t(name.size()));
        QCOMPARE(::bind(reports.get(), reinterpret_cast<sockaddr *>(&address), size), 0);
        startAsService("NOTIFY_SOCKET=" + name + ' ' + handed, int(opened.socketDescriptor()));
        RawClient client(opened.serverPort());
        QCOMPARE(client.exchange(rawRequest("GET", "/a.txt")).body, QByteArray("hello"));
        QCOMPARE(waitForPort(), opened.serverPort());
        program.terminate();
        QCOMPARE(exitStatus(), 0);
        char said[20] = {};
        const auto first = ::recv(reports.get(), said, 9, MSG_DONTWAIT);
        ::recv(reports.get(), said + std::max<ssize_t>(first, 0), 10, MSG_DONTWAIT);
        QCOMPARE(QByteArray(said), QByteArray("READY=1STOPPING=1"));
    }
}

void TestServe::judgesWhatIsHandedOver_data()
{
    columns<QByteArray>({ "variables", "says" });
    row("meant for another process", "LISTEN_PID=1 LISTEN_FDS=1", "");
    row("a process of no number", "LISTEN_PID=$$x LISTEN_FDS=1", "no number in LISTEN_PID");
    row("a count below one", "LISTEN_PID=$$ LISTEN_FDS=-1", "no number in LISTEN_FDS: -1");
    row("too many", "LISTEN_PID=$$ LISTEN_FDS=2000000000", "2000000000 sockets");
    row("no socket", handed, "Descriptor 3");
    row("a manager's name too long", "NOTIFY_SOCKET=/$(printf %0200d 1)", "");
}

/// It says what is wrong, or serves at an address of its own.
void TestServe::judgesWhatIsHandedOver()
{
    QFETCH(const QByteArray, variables);
    QFETCH(const QByteArray, says);
    startAsService(variables, 0);
    QVERIFY(says.isEmpty() ? waitForPort() > 0 : exitStatus() == 1);
    QVERIFY(program.readAllStandardError().contains(says));
}

void TestServe::warnsOfAnOpenHome_data()
{
    // `path` is from the home folder, `rights` a check state, or negative: to see and read
    columnsOf<QByteArray, int, bool>("path", "rights", "warns");
    row("the home folder", ".", 2, true);
    row("a folder above", "..", 2, true);
    row("a link to it", "res/home", 2, true);
    row("a folder in it", "res", 2, false);
    row("classic answers rename files all the same", ".", 0, true);
    row("only to look at", ".", -1, false);
}

void TestServe::warnsOfAnOpenHome()
{
    QFETCH(const QByteArray, path);
    QFETCH(const int, rights);
    QVERIFY(QFile::link(home->path(), home->path() + QLatin1String("/res/home")));
    home->storeProfile(QStringLiteral("rights"), [rights](Profile &profile) {
        if (rights < 0)
            profile.everyone = Right::See | Right::Read;
        else
            profile.enableDelete = profile.enableUpload = rights;
    });
    QStringList arguments = serving({ QStringLiteral("--profile"), QStringLiteral("rights") });
    arguments.last() = home->path() + QLatin1Char('/') + QString::fromLatin1(path);
    start(arguments);
    QVERIFY(waitForPort(arguments.last()) > 0);
    QTEST(program.readAllStandardError().contains("Everyone who reaches"), "warns");
}

void TestServe::servesWhoeverReadsItsErrors()
{
    const QByteArray pipe = QFile::encodeName(home->path() + QLatin1String("/errors"));
    QCOMPARE(::mkfifo(pipe.constData(), 0600), 0);
    const int reader = ::open(pipe.constData(), O_RDWR | O_NONBLOCK | O_CLOEXEC);
    while (::write(reader, pipe.constData(), 1) == 1) { }

    program.setStandardErrorFile(QString::fromUtf8(pipe), QIODevice::Append);
    start(serving({ QStringLiteral("--mode"), QStringLiteral("standard") }));
    const quint16 port = waitForPort();
    const auto get = [port](int address) {
        const QHostAddress from(QStringLiteral("127.0.0.%1").arg(address));
        return RawClient(port, from).exchange(rawRequest("GET", "/a.txt")).body;
    };
    QCOMPARE(get(1), QByteArray("hello"));
    QCOMPARE(get(2), QByteArray("hello"));
    char bytes[65536];
    QVERIFY(::read(reader, bytes, sizeof bytes) > 0);
    for (const int address : { 1, 3, 2, 1, 3 })
        QCOMPARE(get(address), QByteArray("hello"));
    const auto count = ::read(reader, bytes, sizeof bytes);
    QCOMPARE(QByteArray(bytes, int(count)),
             QByteArray("quillon-serve: 3 lines dropped\nquillon-serve: New client: 127.0.0.3\n"));

    ::close(reader); // nobody reads any more
    QCOMPARE(get(4), QByteArray("hello"));
    program.terminate();
    QCOMPARE(exitStatus(), 0);
    program.setStandardErrorFile({});
}

void TestServe::worksInAFolderOfItsOwn()
{
    const auto folder = [this] {
        return QFile::symLinkTarget(QStringLiteral("/proc/%1/cwd").arg(program.processId()));
    };
    const QFileInfo shared(share->path());
    program.setWorkingDirectory(shared.path());
    QStringList arguments = serving();
    arguments.last() = shared.fileName();
    start(arguments);
    const quint16 port = waitForPort(shared.fileName());
    QCOMPARE(RawClient(port).exchange(rawRequest("GET", "/a.txt")).body, QByteArray("hello"));

    const QString first = folder();
    QVERIFY2(first.startsWith(home->path() + QLatin1String("/cache/")), qPrintable(first));
    QVERIFY(QDir(first).isEmpty(QDir::AllEntries | QDir::Hidden | QDir::NoDotAndDotDot));
    QVERIFY(!(QFile::permissions(first) & (QFileDevice::ReadGroup | QFileDevice::ReadOther)));
    QVERIFY(QFile::link(share->path(), first + QLatin1String("/link")));
    program.kill();
    program.waitForFinished();

    program.setWorkingDirectory({});
    start(serving());
    QVERIFY(waitForPort() > 0);
    QVERIFY(!QFile::exists(first));
    QVERIFY(QFile::exists(share->filePath(QStringLiteral("a.txt")))); // not through the link
    QVERIFY(QFile::exists(folder()));
}

/// The programs that are started from here on are attacked from within.
void TestServe::takeOver()
{
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    environment.insert(QStringLiteral("LD_PRELOAD"), QStringLiteral(HOSTILE));
    environment.insert(QStringLiteral("ASAN_OPTIONS"), QStringLiteral("verify_asan_link_order=0"));
    environment.insert(QStringLiteral("HOSTILE_FOLDER"), home->path());
    program.setProcessEnvironment(environment);
    writeFile(home->path() + QLatin1String("/secret"), "secret");
}

void TestServe::isAnnouncedUntilItIsGone()
{
    const PrivateBus bus;
    StandInAvahi avahi(bus);
    auto environment = program.processEnvironment();
    environment.insert("DBUS_SYSTEM_BUS_ADDRESS"_q, bus.address);
    program.setProcessEnvironment(environment);
    home->storeProfile("work"_q, [](Profile &profile) {
        profile.announcedName = "Work\n= mine"_q;
        profile.authMode = AuthBasic;
        profile.users = QStringList{ "anna:secret"_q };
    });
    start(serving({ "--profile"_q, "work"_q, "--announce"_q }));
    const QString told = "AddService 1 0 0 Work = mine _http._tcp   %1 path=/ u=anna;"_q;
    const quint16 port = waitForPort();
    QVERIFY(avahi.takenUpTo("Commit"_q).contains(told.arg(port)));
    avahi.tellState("/group"_q, "EntryGroup"_q, 2);
    program.setReadChannel(QProcess::StandardError);
    QTRY_VERIFY(program.peek(9999).contains("announce: Found in the network as \"Work = mine\"."));
    // Killed, it can't withdraw anything; Avahi forgets those who are gone from the bus.
    program.setReadChannel(QProcess::StandardOutput);
    const auto onBus = [&avahi] { return avahi.bus.interface()->registeredServiceNames().value(); };
    const auto before = onBus().size();
    program.kill();
    QTRY_COMPARE(onBus().size(), before - 1);
}

void TestServe::isConfined_data()
{
    columns<QByteArray>({ "options", "could" });
    row("not", "--no-sandbox", " read write start connect");
    row("where links lead out", "--mode auto", " read write");
    row("where nothing leads out", "--mode standard", "");
    row("while it decodes a picture", "", "");
}

void TestServe::isConfined()
{
    QFETCH(QByteArray, options);
    QTcpServer victim;
    QVERIFY(victim.listen(QHostAddress::LocalHost));
    qputenv("HOSTILE_PORT", QByteArray::number(victim.serverPort()));
    takeOver();
    if (options.isEmpty()) {
        program.setStandardInputFile(share->filePath(QStringLiteral("a.jpg")));
        writeFile(share->filePath(QStringLiteral("a.jpg")), encoded(noise(400, 300), "JPEG"));
        program.start(QStringLiteral(QUILLON_PREVIEW), { QStringLiteral("jpg") });
        QVERIFY(program.waitForFinished());
        program.setStandardInputFile({});
        QCOMPARE(program.exitStatus() == QProcess::CrashExit, bool(CALLS_END_IT));
    } else {
        start(serving(QString::fromLatin1(options).split(QLatin1Char(' '))));
        const quint16 port = waitForPort();
        QCOMPARE(RawClient(port).exchange(rawRequest("GET", "/a.txt")).body, QByteArray("hello"));
        program.kill();
        program.waitForFinished();
    }
    const QByteArray said = program.readAllStandardError();
    if (said.contains("onfined") && !said.contains("no connections"))
        QSKIP("the kernel can't");
    const auto could = said.indexOf("could:");
    QVERIFY(could >= 0);
    QTEST(said.mid(could + 6).split('.').first(), "could");
}

/// What a strict server does with other files than those of its share.
void TestServe::worksConfined()
{
    home->storeProfile(QStringLiteral("strict"), [](Profile &profile) { profile.strict = 1; });
    const QStringList options = serving({ QStringLiteral("--profile"), QStringLiteral("strict") });
    writeFile(share->filePath(QStringLiteral("a.jpg")), encoded(noise(400, 300), "JPEG"));
    start(options);
    const quint16 port = waitForPort();
    const QByteArray copying = rawRequest("COPY", "/a.txt", "Destination: /c\r\n");
    QVERIFY(RawClient(port).exchange(copying).status().startsWith("201"));
    QTRY_VERIFY(RawClient(port)
                    .exchange(rawRequest("GET", "/", "User-Agent: Mozilla/5.0\r\n"))
                    .body.contains("<img src=\"/_t/"));
    const QByteArray preview =
        rawRequest("GET", "/a.jpg?preview=160", "User-Agent: davfs2/1.6\r\n");
    QTRY_VERIFY(RawClient(port).exchange(preview).status().startsWith("200"));
    QTRY_VERIFY(namesIn(home->path() + "/cache/quillon/previews"_q).endsWith("-160"_q));
    program.terminate();
    QCOMPARE(exitStatus(), 0);
    QVERIFY(!program.readAllStandardError().contains("saved"));

    // An editor puts a new file in the place of the old.
    const QString file = options.last() + QLatin1String("/a.txt");
    start(options.mid(0, options.size() - 1) << file);
    const quint16 filePort = waitForPort(file);
    QVERIFY(filePort > 0 && QFile::remove(file));
    writeFile(file, "newer");
    QCOMPARE(RawClient(filePort).exchange(rawRequest("GET", "/")).body, QByteArray("newer"));
}

QTEST_GUILESS_MAIN(TestServe)
#include "tst_serve.moc"
