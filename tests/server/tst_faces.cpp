#include "classic/http/ClassicFace.h"
#include "server/FaceChoice.h"
#include "standard/http/StandardFace.h"
#include "tests/support/LiveServer.h"

/// Which face answers a connection.
class TestFaces : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup() { live.reset(); }
    void knowsTheProgramsInEachMode();
    void choosesOnceByTheFirstHead();
    void choosesByWhatArrives();
    void keepsRightsInBothFaces();

private:
    std::unique_ptr<LiveServer> live;
};

namespace {

/// Only the standard face gives a reply its date.
QByteArray faceOf(const RawReply &reply)
{
    if (reply.head.isEmpty())
        return "none";
    return reply.header("Date").isEmpty() ? "classic" : "standard";
}

QByteArray getAs(const QByteArray &agent)
{
    return rawRequest("GET", "/a.txt", "User-Agent: " + agent + "\r\n");
}

} // namespace

void TestFaces::init()
{
    live = std::make_unique<LiveServer>(
        chosenFaces(classicFaces(fileRoutes()), standard::standardFaces(standard::fileRoutes())));
    live->addFile(QStringLiteral("a.txt"), "hello");
    live->start();
}

void TestFaces::knowsTheProgramsInEachMode()
{
    const std::tuple<QByteArrayList, FaceMode, QByteArray> known[] = {
        { { "Microsoft-WebDAV-MiniRedir/10.0.19045",
            "Mozilla/5.0 (X11; Linux x86_64) KHTML/5.103.0 (like Gecko) Konqueror/5 KIO/5.103",
            "Player/1.0 (Linux;Android 11) ExoPlayerLib/2.11.7", "davfs2/1.6.1 neon/0.32.2" },
          FaceAuto,
          "standard" },
        { { "", "mc", "curl/7.88.1", "notgvfs/1.0",
            "Mozilla/5.0 (X11; Linux x86_64; rv:109.0) Gecko/20100101 Firefox/115.0",
            "Mozilla/5.0 (compatible; gvfs; rclone) Safari/605" },
          FaceAuto,
          "classic" },
        { { "gvfs/1.50" }, FaceClassic, "classic" },
        { { "curl/7" }, FaceStandard, "standard" },
    };
    for (const auto &[agents, mode, face] : known) {
        live->profile->faceMode = mode;
        for (const QByteArray &agent : agents) {
            const RawReply reply = RawClient(live->port()).exchange(getAs(agent));
            QCOMPARE(reply.body, QByteArray("hello"));
            QVERIFY2(faceOf(reply) == face, agent.constData());
        }
    }
}

/// The peer behind a connection stays the same, whatever it says later; pipelined requests arrive.
void TestFaces::choosesOnceByTheFirstHead()
{
    for (const auto &[first, second, face] : { std::tuple("gvfs/1", "curl/7", "standard"),
                                               std::tuple("curl/7", "gvfs/1", "classic") }) {
        RawClient client(live->port());
        client.send(getAs(first) + getAs(second));
        QCOMPARE(faceOf(client.reply()), QByteArray(face));
        QCOMPARE(faceOf(client.reply()), QByteArray(face));
    }
}

void TestFaces::choosesByWhatArrives()
{
    RawClient slow(live->port());
    const QByteArray request = getAs("gvfs/1");
    for (const char byte : request) {
        slow.send(QByteArray(1, byte));
        slow.waitUntil([] { return false; }, 1);
    }
    QCOMPARE(faceOf(slow.reply()), QByteArray("standard"));

    // Behind as much as a head may hold, which the classic face answers once it saw the start.
    for (const auto &[size, face] : { std::pair(16000, "standard"), { 17000, "classic" } }) {
        RawClient late(live->port());
        late.send("GET /a.txt HTTP/1.1\r\nHost: localhost\r\nX: " + QByteArray(size, 'x'));
        late.waitUntil([] { return false; }, 20);
        late.send("\r\nUser-Agent: gvfs/1\r\n\r\n");
        QCOMPARE(faceOf(late.reply()), QByteArray(face));
    }

    RawClient silent(live->port());
    silent.send("GET /a.txt HTTP/1.1\r\nUser-Agent: gv");
    silent.socket->disconnectFromHost();
    QVERIFY(silent.waitForClose());
    QCOMPARE(faceOf(RawClient(live->port()).exchange(getAs("curl/7"))), QByteArray("classic"));
}

/// No right is gained by another name in the User-Agent.
void TestFaces::keepsRightsInBothFaces()
{
    const auto statusFor = [this](const QByteArray &agent, const QByteArray &login) {
        RawClient client(live->port());
        const QByteArray headers =
            "User-Agent: " + agent + "\r\nAuthorization: Basic " + login.toBase64() + "\r\n";
        return client.exchange(rawRequest("GET", "/a.txt", headers)).status().left(3).toInt();
    };
    live->profile->authMode = AuthBasic;
    live->profile->users = QStringList{ QStringLiteral("a:1"), QStringLiteral("b:2") };
    live->profile->accountRights.insert(QStringLiteral("a"), { Right::See | Right::Read, {} });
    live->profile->accountRights.insert(QStringLiteral("b"), { {}, "/" });
    QCOMPARE(statusFor("curl", "a:1"), 403);
    QCOMPARE(statusFor("rclone/v1", "a:1"), 200);
    QCOMPARE(statusFor("curl", "b:2"), 200);
    live->profile->everyone = Rights(Right::Add);
    for (const char *agent : { "curl", "rclone/v1" })
        QCOMPARE(statusFor(agent, "b:2"), 403);
}

QTEST_GUILESS_MAIN(TestFaces)
#include "tst_faces.moc"
