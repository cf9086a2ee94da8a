#include "net/PlainSocket.h"
#include "server/PeerCount.h"
#include "server/Places.h"
#include "server/SessionTable.h"
#include "standard/http/StandardFace.h"
#include "tests/support/Data.h"
#include "tests/support/LiveServer.h"

#include <QElapsedTimer>
#include <QFile>
#include <QProcess>
#include <QSslKey>

#include <algorithm>
#include <array>
#include <list>

#include <sys/socket.h>
#include <unistd.h>

namespace {

constexpr int tlsPiece = 4096; // bytes that the toolkit decrypts at once

struct Worker final : PassTaker
{
    void take(Pass given) override
    {
        pass = std::move(given);
        works = true;
    }

    Pass pass;
    bool works = false;
};

/// Always has more for its peer.
struct Flood final : Socket::User
{
    void readable() override { }
    void writable() override
    {
        while (!socket->isCongested())
            socket->write(piece, false);
    }
    void gone() override { }

    const QByteArray piece = QByteArray(64 * 1024, 'x'); ///< a sanitizer keeps freed memory
    Socket *socket = nullptr;
};

qint64 residentBytes()
{
    QFile file(QStringLiteral("/proc/self/statm"));
    return file.open(QFile::ReadOnly) ? file.readAll().split(' ').at(1).toLongLong() * 4096 : 0;
}

} // namespace

/// Servers, connections and sessions from their first to their last moment.
class TestLifecycle : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void init();
    void cleanup() { live.reset(); }
    void servesOverTls();
    void takesABodyThatComesWithItsHeadOverTls();
    void holdsTlsRules_data();
    void holdsTlsRules();
    void saysWhyTlsCantBeUsed();
    void answersWhileOthersReadNothing();
    void makesAPeerWaitThatTakesNoReplies();
    void forgetsWhatASlowPeerTook();
    void goesOnWhenDescriptorsRunOut();
    void endsWhoKeepsItWaiting();
    void waitsWhileABodyMoves();
    void tellsWhatVisitorsDo();
    void takesSoManyOfEachPeer();
    void countsIPv6ByNetworks();
    void stopsAtTheTrafficLimit();
    void stopsListeningButServesOn();
    void dropsConnectionsAtAnyMoment();
    void warnsOfAnEmptyPassword();
    void expiresIdleSessions();
    void aCrowdOfStrangersLogsNobodyOut();
    void aFewWorkAtATime();

private:
    QString key(const QString &name) const { return keys.path() + QLatin1Char('/') + name; }
    void useKeys(const QString &privateKey, const QString &certificate);

    QTemporaryDir keys;
    std::unique_ptr<LiveServer> live;
};

void TestLifecycle::initTestCase()
{
    const auto openssl = [this](const QString &arguments) {
        QProcess process;
        process.setWorkingDirectory(keys.path());
        process.start(QStringLiteral("openssl"), arguments.split(QLatin1Char(' ')));
        QVERIFY(process.waitForFinished());
        QCOMPARE(process.exitCode(), 0);
    };
    openssl(QStringLiteral("req -x509 -newkey rsa:2048 -nodes -keyout pkcs8.key -out server.crt"
                           " -days 2 -subj /CN=localhost"));
    openssl(QStringLiteral("rsa -traditional -in pkcs8.key -out plain.key"));
    openssl(QStringLiteral("rsa -aes256 -passout pass:secret -in pkcs8.key -out locked.key"));
    openssl(QStringLiteral("genrsa -out other.key 2048"));
    openssl(QStringLiteral("req -x509 -newkey rsa:1024 -nodes -keyout weak.key -out weak.crt"
                           " -days 2 -subj /CN=localhost"));
}

void TestLifecycle::init()
{
    live = std::make_unique<LiveServer>();
    live->addFile(QStringLiteral("a.txt"), "0123456789");
}

void TestLifecycle::useKeys(const QString &privateKey, const QString &certificate)
{
    live->profile->sslMode = Qt::Checked;
    live->profile->privateKeyFile = key(privateKey);
    live->profile->publicKeyFile = key(certificate);
}

void TestLifecycle::servesOverTls()
{
    const QByteArray big = QByteArray("0123456789abcdef").repeated(200000);
    live->addFile(QStringLiteral("big"), big);
    for (const char *name : { "pkcs8.key", "plain.key", "locked.key" }) {
        useKeys(QLatin1String(name), QStringLiteral("server.crt"));
        live->profile->keyPassword = QStringLiteral("secret");
        live->start();
        RawClient client(live->port(), tlsSocket());
        QCOMPARE(client.exchange(rawRequest("GET", "/big")).body, big);
        // All of them in one record: no further one tells of those behind the first.
        client.send(rawRequest("GET", "/a.txt").repeated(30));
        for (int i = 0; i < 30; ++i)
            QCOMPARE(client.reply().body, QByteArray("0123456789"));
        RawClient plain(live->port());
        plain.send(rawRequest("GET", "/a.txt"));
        QVERIFY(!plain.readToEnd().contains("0123456789"));
        live->server->stopAll();
    }
    QCOMPARE(live->sink.messages, QStringList());
}

/// The body is yet to be decrypted when the peer is asked for it.
void TestLifecycle::takesABodyThatComesWithItsHeadOverTls()
{
    live = std::make_unique<LiveServer>(standard::standardFaces(standard::fileRoutes()));
    useKeys(QStringLiteral("plain.key"), QStringLiteral("server.crt"));
    live->start();
    RawClient client(live->port(), tlsSocket());
    auto *tls = qobject_cast<QSslSocket *>(client.socket.get());
    QVERIFY(client.waitUntil([tls] { return tls->isEncrypted(); }));
    const QByteArray fields = "Expect: 100-continue\r\nContent-Length: 7\r\nX: ";
    const int rest = tlsPiece - int(rawRequest("PUT", "/new", fields + "\r\n").size());
    tls->write(rawRequest("PUT", "/new", fields + QByteArray(rest, 'x') + "\r\n") + "content");
    RawReply reply = client.reply();
    if (reply.status() == "100 Continue")
        reply = client.reply();
    QCOMPARE(reply.status(), QByteArray("201 Created"));
    QCOMPARE(live->fileContent(QStringLiteral("new")), QByteArray("content"));
}

void TestLifecycle::holdsTlsRules_data()
{
    columns<QByteArray>({ "arguments", "says" });
    row("1.1", "-tls1_1 -cipher ALL:@SECLEVEL=0", "Cipher is (NONE)");
    row("1.2 with a key for all connections", "-tls1_2 -cipher kRSA", "Cipher is (NONE)");
    row("1.2 without authenticated encryption", "-tls1_2 -cipher ECDHE-RSA-AES128-SHA",
        "Cipher is (NONE)");
    row("renegotiation", "-tls1_2", "no renegotiation");
    row("a ticket", "-tls1_2 -reconnect", "Reused, TLSv1.2");
    row("1.3", "-tls1_3", "Cipher is TLS_");
}

/// The program sends "R", by which it asks for other keys in 1.2.
void TestLifecycle::holdsTlsRules()
{
    QFETCH(const QByteArray, arguments);
    QFETCH(const QByteArray, says);
    useKeys(QStringLiteral("plain.key"), QStringLiteral("server.crt"));
    live->start();
    QProcess client;
    client.setProcessChannelMode(QProcess::MergedChannels);
    const QString line = QStringLiteral("s_client -connect 127.0.0.1:%1 ").arg(live->port());
    client.start(QStringLiteral("openssl"),
                 (line + QString::fromLatin1(arguments)).split(QLatin1Char(' ')));
    QByteArray said;
    QTRY_VERIFY((said += client.readAll()).contains("Cipher is"));
    client.write("R\n");
    QTRY_VERIFY2((said += client.readAll()).contains(says), said.constData());
    client.kill();
    client.waitForFinished();
}

void TestLifecycle::saysWhyTlsCantBeUsed()
{
    for (const auto &[privateKey, certificate, message] :
         { std::tuple("plain.key", "none", "certificate can't be read"),
           std::tuple("none", "server.crt", "private key can't be read"),
           std::tuple("plain.key", "plain.key", "no certificate"),
           std::tuple("locked.key", "server.crt", "pass phrase"),
           std::tuple("other.key", "server.crt", "is not that of"),
           std::tuple("weak.key", "weak.crt", "refuses the keys") }) {
        live->sink.messages.clear();
        useKeys(QLatin1String(privateKey), QLatin1String(certificate));
        QVERIFY(!live->server->init() && !live->server->isTlsReady());
        const QString said = live->sink.messages.join(QLatin1Char('\n'));
        QVERIFY2(said.contains(QLatin1String(message)), qPrintable(said));
    }
    useKeys(QStringLiteral("plain.key"), QStringLiteral("server.crt"));
    QVERIFY(live->server->init());
    useKeys(QStringLiteral("plain.key"), QStringLiteral("none"));
    live->sink.messages.clear();
    live->server->reloadKeys(); // the ones before stay
    QVERIFY(live->server->isTlsReady() && live->sink.messages.size() == 1);
}

void TestLifecycle::tellsWhatVisitorsDo()
{
    for (const bool isStandard : { false, true }) {
        if (isStandard)
            live = std::make_unique<LiveServer>(standard::standardFaces(standard::fileRoutes()));
        live->addFile(QStringLiteral("big file"), QByteArray(20000000, 'x'));
        live->start();
        const auto transfer = [this] {
            const std::vector<Visit> visits = live->server->visits();
            return visits.empty() ? std::nullopt : visits.front().transfer;
        };
        RawClient client(live->port(), QHostAddress(QStringLiteral("127.0.0.2")));
        client.socket->setReadBufferSize(1);
        client.send(rawRequest("GET", "/big%20file", "User-Agent: curl/8\r\n"));
        QTRY_VERIFY(transfer() && transfer()->done > 0 && !transfer()->isUpload);
        QVERIFY(transfer()->path.endsWith("big file") && transfer()->left > 0);
        QCOMPARE(live->server->visits().front().client.program, QByteArray("curl"));
        QCOMPARE(live->server->visits().front().counted, client.socket->localAddress());
        live->server->disconnect([](const Visit &visit) {
            return visit.client.address.toString() == QLatin1String("127.0.0.2");
        });
        QTRY_COMPARE(live->sink.deeds.size(), 1);
        QVERIFY(!live->sink.deeds[0].isWhole && live->sink.deeds[0].status == 200);

        // What is sent but not taken is on its way still.
        live->addFile(QStringLiteral("half"), QByteArray(600000, 'x'));
        RawClient slow(live->port());
        slow.socket->setReadBufferSize(1);
        slow.send(rawRequest("GET", "/half"));
        QTRY_COMPARE(live->sink.deeds.size(), 2);
        const auto moving = transfer();
        QVERIFY(moving && moving->path.endsWith("half") && moving->left > 0);
        QVERIFY(qAbs(moving->done + moving->left - 600000) < 2000);
        slow.socket->setReadBufferSize(0);
        QTRY_VERIFY(slow.socket->readAll().isEmpty() && !transfer());
        slow.socket->abort();
        QTRY_COMPARE(live->server->connectionCount(), 0);

        RawClient second(live->port());
        second.send(isStandard ? rawRequest("PUT", "/new", "Content-Length: 9\r\n") + "12345"
                               : rawRequest("GET", "/a.txt"));
        if (isStandard) {
            QTRY_VERIFY(transfer() && transfer()->isUpload && transfer()->left == 4);
            second.send("6789");
        }
        QVERIFY(second.reply().status().startsWith("20"));
        QTRY_COMPARE(live->sink.deeds.size(), 3);
        QVERIFY(live->sink.deeds[2].isWhole && live->sink.deeds[2].status / 100 == 2);
        QVERIFY(live->server->visits().front().counted.isNull());

        live->engine.setup()->peers->block(QHostAddress(QStringLiteral("127.0.0.2")));
        RawClient blocked(live->port(), QHostAddress(QStringLiteral("127.0.0.2")));
        QVERIFY(blocked.waitForClose());
    }
}

void TestLifecycle::answersWhileOthersReadNothing()
{
    live->addFile(QStringLiteral("big"), QByteArray(20000000, 'x'));
    live->start();
    std::vector<std::unique_ptr<RawClient>> stalled;
    for (int i = 0; i < 300; ++i) {
        stalled.push_back(std::make_unique<RawClient>(live->port()));
        stalled.back()->socket->setReadBufferSize(1);
        // Half of them wait for the reply, half of them for the end of the connection.
        stalled.back()->send(rawRequest("GET", "/big", i % 2 == 0 ? "Connection: close\r\n" : ""));
    }
    RawClient client(live->port());
    QElapsedTimer clock;
    clock.start();
    QCOMPARE(client.exchange(rawRequest("GET", "/a.txt")).body, QByteArray("0123456789"));
    QVERIFY2(clock.elapsed() < 1000, qPrintable(QString::number(clock.elapsed())));
    QCOMPARE(live->server->connectionCount(), 301);
    stalled.clear();
    QTRY_COMPARE(live->server->connectionCount(), 1);
}

void TestLifecycle::makesAPeerWaitThatTakesNoReplies()
{
    live->start();
    const QByteArray longPath = '/' + QByteArray(1500, 'n');
    RawClient client(live->port());
    client.socket->setReadBufferSize(1);
    QByteArray requests;
    for (int i = 0; i < 20000; ++i)
        requests += "GET " + longPath + " HTTP/1.1\r\n\r\n";
    client.send(requests);
    QTest::qWait(300);
    QVERIFY(live->engine.setup()->poller->backlog() < 1000000);
    QVERIFY(client.socket->bytesToWrite() > 0);
}

/// What waits for a peer that is never through with it must not grow with what it was sent.
void TestLifecycle::forgetsWhatASlowPeerTook()
{
    std::array<int, 2> ends{};
    QCOMPARE(::socketpair(AF_UNIX, SOCK_STREAM | SOCK_NONBLOCK, 0, ends.data()), 0);
    const int room = 64 * 1024;
    ::setsockopt(ends[0], SOL_SOCKET, SO_SNDBUF, &room, sizeof room);
    const FileDescriptor peer(ends[1]);
    Poller poller;
    TrafficAccount account([] {});
    Flood flood;
    PlainSocket socket(FileDescriptor{ ends[0] }, QHostAddress(), &poller, &account);
    flood.socket = &socket;
    socket.setUser(&flood);
    QByteArray taken(room, Qt::Uninitialized);
    const auto take = [&](qint64 bytes) {
        for (qint64 sum = 0; sum < bytes;) {
            socket.again();
            QCoreApplication::processEvents();
            sum += std::max<qint64>(0, ::read(peer.get(), taken.data(), size_t(taken.size())));
        }
    };
    take(1024 * 1024);
    const qint64 before = residentBytes();
    take(64 * 1024 * 1024);
    QVERIFY(residentBytes() - before < 8 * 1024 * 1024);
}

void TestLifecycle::goesOnWhenDescriptorsRunOut()
{
    live->start();
    std::vector<std::unique_ptr<QTcpSocket>> clients;
    for (int i = 0; i < 3; ++i) {
        clients.push_back(std::make_unique<QTcpSocket>());
        clients.back()->connectToHost(QHostAddress(QHostAddress::LocalHost), live->port());
    }
    std::vector<int> taken;
    for (int fd = ::dup(0); fd >= 0; fd = ::dup(0))
        taken.push_back(fd);
    QTest::qWait(100);
    QCOMPARE(live->server->connectionCount(), 0);
    for (const int fd : taken)
        ::close(fd);
    QTRY_COMPARE(live->server->connectionCount(), 3);
}

void TestLifecycle::endsWhoKeepsItWaiting()
{
    const auto check = [this](int seconds) {
        live->server->checkDeadlines(Connection::Clock::now() + std::chrono::seconds(seconds));
    };
    live->start();
    RawClient half(live->port());
    half.send("GET / HTTP/1.1\r\n");
    RawClient idle(live->port());
    idle.exchange(rawRequest("GET", "/none"));
    check(19);
    QVERIFY(!half.waitForClose(50));
    check(21);
    QVERIFY(half.waitForClose());
    check(74);
    QVERIFY(!idle.waitForClose(50));
    check(76);
    QVERIFY(idle.waitForClose());

    // The time of a head begins with its first byte, and a long one has more.
    RawClient later(live->port());
    later.exchange(rawRequest("GET", "/none"));
    check(60);
    later.send("GET /" + QByteArray(1000, 'x'));
    QVERIFY(later.waitUntil([&] { return live->server->receivedBytes() > 1000; }));
    check(29);
    QVERIFY(!later.waitForClose(50));
    check(35);
    QVERIFY(later.waitForClose());

    useKeys(QStringLiteral("pkcs8.key"), QStringLiteral("server.crt"));
    QVERIFY(live->server->init());
    RawClient silent(live->port());
    QVERIFY(silent.waitUntil([&] { return live->server->connectionCount() == 1; }));
    check(9);
    QVERIFY(!silent.waitForClose(50));
    check(11);
    QVERIFY(silent.waitForClose());
}

/// Also while the system tells nothing, as too little of its buffer is free.
void TestLifecycle::waitsWhileABodyMoves()
{
    constexpr int taken = 600000;
    live->addFile(QStringLiteral("big"), QByteArray(20000000, 'x'));
    live->start();
    RawClient player(live->port());
    player.socket->setReadBufferSize(1);
    player.send(rawRequest("GET", "/big"));
    qint64 sent = 0;
    const auto isStalled = [&] {
        const qint64 before = std::exchange(sent, live->server->sentBytes());
        return before == sent && sent > taken;
    };
    QTRY_VERIFY(isStalled());
    const auto lives = [this](int seconds) {
        live->server->checkDeadlines(Connection::Clock::now() + std::chrono::seconds(seconds));
        QTest::qWait(20);
        return live->server->connectionCount() > 0;
    };
    QVERIFY(lives(0) && lives(50));
    player.socket->setReadBufferSize(taken);
    QTRY_VERIFY(player.socket->bytesAvailable() == taken);
    QVERIFY(lives(61) && lives(110));
    int later = 62;
    QTRY_VERIFY(!lives(later += 61)); // the last of it may still be on its way

    live = std::make_unique<LiveServer>(standard::standardFaces(standard::fileRoutes()));
    live->start();
    for (const bool enough : { false, true }) {
        RawClient client(live->port());
        const auto send = [&](const QByteArray &bytes) {
            const qint64 all = live->server->receivedBytes() + bytes.size();
            client.send(bytes);
            QTRY_COMPARE(live->server->receivedBytes(), all);
        };
        send(rawRequest("PUT", "/new", "Content-Length: 99999\r\n"));
        QVERIFY(lives(0));
        send(QByteArray(enough ? 6000 : 5999, 'x'));
        QCOMPARE(lives(61), enough);
    }
}

void TestLifecycle::takesSoManyOfEachPeer()
{
    live->start();
    const QHostAddress peer(QStringLiteral("127.0.0.2"));
    constexpr int most = 64;
    std::list<RawClient> clients;
    for (int i = 0; i < most + 6; ++i)
        clients.emplace_back(live->port(), peer);
    QVERIFY(clients.back().waitForClose());
    QTRY_COMPARE(live->server->connectionCount(), most);
    const QByteArray request = rawRequest("GET", "/none");
    QVERIFY(!clients.front().exchange(request).head.isEmpty());
    QVERIFY(!RawClient(live->port()).exchange(request).head.isEmpty());
    clients.pop_front();
    QTRY_COMPARE(live->server->connectionCount(), most - 1);
    QVERIFY(!RawClient(live->port(), peer).exchange(request).head.isEmpty());

    // A proxy stands for many.
    live->profile->trustedProxies = QStringList{ peer.toString() };
    clients.clear();
    for (int i = 0; i < most + 6; ++i)
        clients.emplace_back(live->port(), peer);
    QTRY_COMPARE(live->server->connectionCount(), most + 6);
}

void TestLifecycle::countsIPv6ByNetworks()
{
    const QHostAddress reached(QStringLiteral("2001:db8:2::9"));
    // Whether the peer whose last bit differs is another: not in somebody else's network, but in
    // ours, on the link and as IPv4 written as IPv6.
    for (const auto &[peer, isAnother] :
         { std::pair("2001:db8:1::", false), std::pair("2001:db8:2::", true),
           std::pair("fe80::", true), std::pair("::ffff:192.0.2.", true) }) {
        PeerCount count(1000);
        std::vector<PeerCount::Ticket> taken;
        const auto takes = [&, begin = QLatin1String(peer)](const QString &end) {
            taken.push_back(count.admit(QHostAddress(begin + end), reached));
            return taken.back().isValid();
        };
        while (takes(QStringLiteral("2"))) { }
        QVERIFY2(takes(QStringLiteral("3")) == isAnother, peer);
    }
}

void TestLifecycle::stopsAtTheTrafficLimit()
{
    live->addFile(QStringLiteral("big"), QByteArray(1000000, 'x'));
    live->profile->dataLimit = 100;
    live->start();
    int reached = 0;
    connect(live->server.get(), &WebServer::dataLimit, this, [&reached](WebServer *server) {
        ++reached;
        server->stopAll();
    });
    RawClient other(live->port());
    QCOMPARE(other.exchange(rawRequest("GET", "/a.txt")).body, QByteArray("0123456789"));
    QCOMPARE(live->server->receivedBytes(), qint64(rawRequest("GET", "/a.txt").size()));

    RawClient client(live->port());
    client.send(rawRequest("GET", "/big"));
    QVERIFY(client.waitForClose());
    QCOMPARE(reached, 1);
    QVERIFY(live->server->isBlocked());
    QVERIFY(other.waitForClose());
    const qint64 beyond = live->server->sentBytes() + live->server->receivedBytes() - 100 * 1024LL;
    QVERIFY(beyond >= 0 && beyond < 4096);

    // The counters go on where they stopped until they are cleared.
    QVERIFY(live->server->start());
    RawClient again(live->port());
    again.send(rawRequest("GET", "/a.txt"));
    QVERIFY(again.waitForClose());
    QTRY_COMPARE(reached, 2);

    // Nothing stays of an upload that reaches it.
    live->server->init();
    QVERIFY(live->server->start());
    RawClient uploader(live->port());
    uploader.send(rawRequest("PUT", "/new", {}, QByteArray(3000000, 'x')));
    QVERIFY(uploader.waitForClose());
    QTRY_COMPARE(namesIn(live->sharePath()), QStringLiteral("a.txt big"));
    QCOMPARE(reached, 3);

    // Nobody is answered while it listens on.
    disconnect(live->server.get(), &WebServer::dataLimit, this, nullptr);
    QVERIFY(live->server->start());
    RawClient(live->port()).exchange(rawRequest("GET", "/a.txt"));
    RawClient ignored(live->port());
    ignored.send(rawRequest("GET", "/a.txt"));
    QVERIFY(!ignored.waitForClose(200));
    live->server->stop();
    QVERIFY(ignored.waitForClose());
}

void TestLifecycle::stopsListeningButServesOn()
{
    live->start();
    RawClient client(live->port());
    QVERIFY(client.exchange(rawRequest("GET", "/a.txt")).status() == "200 OK");
    live->server->stop();
    QVERIFY(client.exchange(rawRequest("GET", "/a.txt")).status() == "200 OK");
    QVERIFY(!RawClient(live->port()).isOpen());
}

/// By the server, and by their peers.
void TestLifecycle::dropsConnectionsAtAnyMoment()
{
    live->addFile(QStringLiteral("big"), QByteArray(20000000, 'x'));
    const auto *form = "POST /?a=up HTTP/1.1\r\nContent-Type: multipart/form-data; boundary=B\r\n"
                       "Content-Length: 99999\r\n\r\n--B\r\nX: y";
    for (const bool stopped : { true, false }) {
        live->start();
        std::vector<std::unique_ptr<RawClient>> clients;
        for (const char *bytes : { "", "\r", "GET /", "GET /big HTTP/1.1\r\n\r\n", form }) {
            clients.push_back(std::make_unique<RawClient>(live->port()));
            clients.back()->socket->setReadBufferSize(1);
            clients.back()->send(bytes);
        }
        QTRY_COMPARE(live->server->connectionCount(), 5);
        QTest::qWait(20);
        if (stopped)
            live->server->stopAll();
        for (const auto &client : clients) {
            client->socket->setReadBufferSize(0);
            if (!stopped)
                client->socket->abort();
            QVERIFY(client->waitForClose());
        }
        QTRY_COMPARE(live->server->connectionCount(), 0);
    }
    QCOMPARE(RawClient(live->port()).exchange(rawRequest("GET", "/a.txt")).status(),
             QByteArray("200 OK"));
}

void TestLifecycle::warnsOfAnEmptyPassword()
{
    live->profile->authMode = AuthPasswordPage;
    live->start();
    QCOMPARE(live->sink.messages.size(), 1);
    QCOMPARE(RawClient(live->port()).exchange(rawRequest("GET", "/a.txt")).body,
             QByteArray("0123456789"));
    QCOMPARE(live->sink.peers, QStringList{ QStringLiteral("127.0.0.1") });
}

void TestLifecycle::expiresIdleSessions()
{
    live->profile->sessionLifetime = 60;
    SessionTable table;
    table.profileEdited(live->profile);
    const Session active = table.ofCookie("1");
    const SessionUse use(active);
    const Session fresh = table.ofCookie("2");
    const Session stale = table.ofCookie("3");
    stale->lastSeen -= std::chrono::seconds(120);
    active->lastSeen -= std::chrono::seconds(120);

    table.checkSessions();
    QCOMPARE(table.sessionCount(), 2);
    QVERIFY(!table.holds(stale));
    QVERIFY(table.holds(active));
}

void TestLifecycle::aCrowdOfStrangersLogsNobodyOut()
{
    SessionTable table;
    const Session member = table.ofCookie("0");
    member->logIn(QStringLiteral("secret"), QHostAddress(QHostAddress::LocalHost));
    // Those who keep their connections are strangers all the same.
    std::list<SessionUse> kept;
    for (int id = 1; id <= SessionTable::maxSessions + 5; ++id)
        kept.emplace_back(table.ofCookie(QByteArray::number(id)));
    QVERIFY(table.sessionCount() <= SessionTable::maxSessions);
    QVERIFY(table.holds(member));
}

void TestLifecycle::aFewWorkAtATime()
{
    Places places(1, 100);
    std::array<Worker, 5> workers;
    const auto working = [&] {
        return std::count_if(workers.begin(), workers.end(),
                             [](const Worker &w) { return w.works; });
    };
    for (Worker &worker : workers)
        places.enter(&worker);
    QCOMPARE(working(), 1);
    workers[0].pass.keep(50);
    workers[1].pass.keep(50); // now much is kept
    QCOMPARE(working(), 2);
    workers[0].pass.end();
    QCOMPARE(working(), 3);
    places.leave(&workers[3]);
    workers[1].pass.end();
    QCOMPARE(working(), 3);
    workers[2].pass.end();
    QVERIFY(workers[4].works && !workers[3].works);
}

QTEST_GUILESS_MAIN(TestLifecycle)
#include "tst_lifecycle.moc"
