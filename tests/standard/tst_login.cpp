#include "files/DiskWorker.h"
#include "server/PasswordChecks.h"
#include "server/PasswordHash.h"
#include "standard/http/Authenticator.h"
#include "standard/http/Nonces.h"
#include "tests/standard/StandardTest.h"
#include "tests/support/Data.h"
#include "tests/support/FullDisk.h"

#include <QCryptographicHash>
#include <QElapsedTimer>
#include <QSysInfo>
#include <QTest>

#include <vector>

namespace standard {

namespace {

using Algorithm = QCryptographicHash::Algorithm;

/// What a program knows of the server after a 401.
struct Challenge
{
    Algorithm algorithm = QCryptographicHash::Md5;
    QByteArray nonce;
};

Challenge challengeOf(const RawReply &reply, Algorithm algorithm = QCryptographicHash::Md5)
{
    const QByteArray begin = "nonce=\"";
    const int at = int(reply.head.indexOf(begin)) + int(begin.size());
    return { algorithm, reply.head.mid(at, reply.head.indexOf('"', at) - at) };
}

QByteArray digest(const Challenge &challenge, const QByteArray &user, const QByteArray &password,
                  int count, const QByteArray &uri = "/a", const QByteArray &method = "GET")
{
    const auto hash = [&challenge](const QByteArray &text) {
        return QCryptographicHash::hash(text, challenge.algorithm).toHex();
    };
    const QByteArray nc = QByteArray::number(count, 16).rightJustified(8, '0');
    const QByteArray response = hash(hash(user + ":Quillon:" + password) + ':' + challenge.nonce
                                     + ':' + nc + ":c:auth:" + hash(method + ':' + uri));
    const bool isMd5 = challenge.algorithm == QCryptographicHash::Md5;
    return "Authorization: Digest username=\"" + user + "\", realm=\"Quillon\", nonce=\""
        + challenge.nonce + "\", uri=\"" + uri + "\", cnonce=\"c\", nc=" + nc
        + ", qop=auth, response=\"" + response + "\", algorithm=" + (isMd5 ? "MD5" : "SHA-256")
        + "\r\n";
}

} // namespace

class TestLogin : public QObject
{
    Q_OBJECT
private Q_SLOTS:
    void noncesHoldOnce();
    void loginByBasic();
    void loginByDigest();
    void anyNameWithThePassword();
    void hashedPasswords();
    void hashesAreCheckedInTurn();
    void guessesWait_data();
    void guessesWait();
    void answersToItsNamesAlone_data();
    void answersToItsNamesAlone();
};

void TestLogin::noncesHoldOnce()
{
    Nonces nonces;
    const QByteArray nonce = nonces.make(1000);
    QVERIFY(nonces.use(nonce, 1, 1000) && !nonces.use(nonce, 1, 1000));
    // Requests on several connections overtake each other.
    QVERIFY(nonces.use(nonce, 5, 1000) && nonces.use(nonce, 3, 1000));
    QVERIFY(!nonces.use(nonce, 3, 1000) && !nonces.use(nonce, 5, 1000));
    QVERIFY(nonces.use(nonce, 1000, 1000) && !nonces.use(nonce, 900, 1000));
    QVERIFY(!nonces.use(nonce, 1001, 1001 + Nonces::lifetime));
    QVERIFY(!nonces.use(Nonces().make(1000), 1, 1000) && !nonces.use("x", 1, 1000));
    // What had to make room is not accepted once more.
    const QByteArray first = nonces.make(5000);
    QVERIFY(nonces.use(first, 1, 5000));
    for (int i = 0; i < Nonces::maxUsed; ++i)
        QVERIFY(nonces.use(nonces.make(6000), 1, 6000));
    QVERIFY(!nonces.use(first, 1, 6000));
}

void TestLogin::loginByBasic()
{
    const StandardServer server({ { "a", "A" } });
    server.askForLogin("j\xc3\xbcrg:pass:word b:2");
    const RawReply refused = replyTo(server, "GET", "/a");
    QCOMPARE(refused.status(), QByteArray("401 Unauthorized"));
    QVERIFY(refused.head.indexOf("Digest realm=\"Quillon\"")
            < refused.head.indexOf("Basic realm=\"Quillon\""));
    QCOMPARE(replyTo(server, "GET", "/a", basicLogin("j\xc3\xbcrg:pass:word")).body,
             QByteArray("A"));
    for (const char *wrong : { "b:pass:word", "b:", "b", ":", "x:2", "B:2" })
        QCOMPARE(server.status("GET", "/a", basicLogin(wrong)), 401);
    // Nobody is asked for a body in vain, and a login counts for its own request.
    const QByteArray announced = "Expect: 100-continue\r\nContent-Length: 5\r\n";
    QCOMPARE(server.status("PUT", "/new", announced), 401);
    RawClient client(server.port());
    client.send(rawRequest("PUT", "/new", basicLogin("b:2"), "12345") + rawRequest("GET", "/a"));
    QCOMPARE(client.reply().status(), QByteArray("201 Created"));
    QCOMPARE(client.reply().status(), QByteArray("401 Unauthorized"));
    server.profile->users.clear();
    QCOMPARE(server.status("GET", "/a", basicLogin(":")), 401);
}

void TestLogin::loginByDigest()
{
    const StandardServer server({ { "a", "A" } });
    server.askForLogin("b:2");
    for (const Algorithm algorithm : { QCryptographicHash::Md5, QCryptographicHash::Sha256 }) {
        const Challenge challenge = challengeOf(replyTo(server, "GET", "/a"), algorithm);
        QCOMPARE(server.status("GET", "/a", digest(challenge, "b", "wrong", 1)), 401);
        QCOMPARE(server.status("GET", "/a", digest(challenge, "x", "2", 1)), 401);
        QCOMPARE(server.status("GET", "/a", digest(challenge, "b", "2", 1, "/other")), 401);
        QCOMPARE(server.status("GET", "/a", digest(challenge, "b", "2", 1)), 200);
        QCOMPARE(server.status("GET", "/a", digest(challenge, "b", "2", 2)), 200);
        // A program may name another algorithm than the one it took.
        const QByteArray other = digest(challenge, "b", "2", 3).replace("=MD5", "=SHA-256");
        QCOMPARE(server.status("GET", "/a", other), 200);
        // Listened to and sent once more.
        const RawReply again = replyTo(server, "GET", "/a", digest(challenge, "b", "2", 2));
        QCOMPARE(again.status(), QByteArray("401 Unauthorized"));
        QVERIFY(again.head.contains("stale=true"));
        const Challenge foreign{ algorithm, "1-2-3" };
        QVERIFY(
            replyTo(server, "GET", "/a", digest(foreign, "b", "2", 1)).head.contains("stale=true"));
    }
}

void TestLogin::anyNameWithThePassword()
{
    const StandardServer server({ { "a", "A" } });
    server.profile->authMode = AuthPasswordPage;
    server.profile->password = QStringLiteral("secret");
    QCOMPARE(replyTo(server, "GET", "/a", basicLogin("anybody:secret")).body, QByteArray("A"));
    QCOMPARE(server.status("GET", "/a", basicLogin("anybody:Secret")), 401);
    const Challenge challenge = challengeOf(replyTo(server, "GET", "/a"));
    QCOMPARE(replyTo(server, "GET", "/a", digest(challenge, "me", "secret", 1)).body,
             QByteArray("A"));
    server.profile->password.clear();
    QCOMPARE(replyTo(server, "GET", "/a").body, QByteArray("A"));
}

void TestLogin::hashedPasswords()
{
    const StandardServer server({ { "a", "A" } });
    const QByteArray hash = newPasswordHash("x:y");
    server.askForLogin("a:" + hash);
    const QByteArray challenges = replyTo(server, "GET", "/a").head;
    QVERIFY(!challenges.contains("Digest") && challenges.contains("Basic realm"));
    // Longer than a moment: the request and what follows it wait.
    RawClient client(server.port());
    client.send(rawRequest("PUT", "/new", basicLogin("a:x:y"), "12345")
                + rawRequest("GET", "/new", basicLogin("a:x:y")));
    QCOMPARE(client.reply().status(), QByteArray("201 Created"));
    QCOMPARE(client.reply().body, QByteArray("12345"));
    client.send(rawRequest("GET", "/a", basicLogin("a:gone")));
    for (const QByteArray &wrong : { QByteArray("a:x"), "a:" + hash, QByteArray("b:x:y") })
        QCOMPARE(server.status("GET", "/a", basicLogin(wrong)), 401);

    server.profile->users.append(QStringLiteral("b:2"));
    const Challenge challenge = challengeOf(replyTo(server, "GET", "/a"));
    QCOMPARE(server.status("GET", "/a", digest(challenge, "b", "2", 1)), 200);
    QCOMPARE(server.status("GET", "/a", digest(challenge, "a", hash, 2)), 401);
    server.askForLogin("a:" + newPasswordHash("z"));
    QCOMPARE(server.status("GET", "/a", basicLogin("a:x:y")), 401);
    server.profile->authMode = AuthPasswordPage;
    server.profile->password = QString::fromLatin1(hash);
    QCOMPARE(server.status("GET", "/a", basicLogin("anybody:x:y")), 200);
    QCOMPARE(server.status("GET", "/a", basicLogin("anybody:" + hash)), 401);
}

void TestLogin::hashesAreCheckedInTurn()
{
    using Told = PasswordChecks::Verdict;
    DiskWorker worker;
    PasswordChecks checks(worker);
    const QByteArray hash = newPasswordHash("right");
    const auto later = PasswordChecks::Clock::now() + PasswordChecks::memory;
    std::vector<Told> verdicts;
    const auto note = [&verdicts](Told verdict) { verdicts.push_back(verdict); };
    QObject context;
    checks.check("right", hash, &context, note);
    checks.check("wrong", hash, &context, note);
    for (int i = 1; i < PasswordChecks::maxWaiting; ++i)
        checks.check("wrong", hash, std::make_unique<QObject>().get(), note);
    checks.check("right", hash, &context, note);
    QTRY_COMPARE(verdicts.size(), std::size_t(3));
    QVERIFY((verdicts == std::vector{ Told::Busy, Told::Fits, Told::Wrong }));
    QVERIFY(checks.remembers("right", hash, later) && !checks.remembers("wrong", hash));
    QVERIFY(checks.remembers("right", hash, later + PasswordChecks::memory));
    QVERIFY(!checks.remembers("right", hash, later + 3 * PasswordChecks::memory));
    QVERIFY(!checks.remembers("right", newPasswordHash("right")));
    // A connection knows it for as long as it is the one of the account.
    const StandardServer server;
    const auto again = [&](const QByteArray &current) {
        server.askForLogin("a:" + current);
        const QByteArray proven = checks.proof("later", hash);
        return Authenticator::check({ "a", "later" }, *server.profile, checks, proven).outcome;
    };
    QVERIFY(again(hash) == Authenticator::Outcome::Admitted);
    QVERIFY(again(newPasswordHash("later")) == Authenticator::Outcome::Undecided);

#ifndef __SANITIZE_ADDRESS__ // which ends a program that gets no memory
    // Without memory it isn't wrong.
    std::optional<bool> fits = false;
    {
        const Limited none(RLIMIT_AS, 1);
        fits = fitsPasswordHash("right", hash);
    }
    QVERIFY(!fits && fitsPasswordHash("right", hash) == true);
#endif
}

void TestLogin::guessesWait_data()
{
    columnsOf<QByteArray>("password");
    row("readable", "2");
    row("hashed", newPasswordHash("2"));
}

void TestLogin::guessesWait()
{
    QFETCH(const QByteArray, password);
    StandardServer server({ { "a", "A" } });
    server.askForLogin("b:" + password);
    const QHostAddress stranger(QStringLiteral("127.0.0.2"));
    const QByteArray right = rawRequest("GET", "/a", basicLogin("b:2"));
    const QByteArray wrong = rawRequest("GET", "/a", basicLogin("b:1"));
    RawClient known(server.port(), stranger);
    QCOMPARE(known.exchange(right).body, QByteArray("A"));
    for (int i = 0; i < 5; ++i)
        QCOMPARE(RawClient(server.port(), stranger).exchange(wrong).status(),
                 QByteArray("401 Unauthorized"));
    QCOMPARE(server.sink.messages.size(), 1);
    QElapsedTimer clock;
    clock.start();
    // Several at once are looked at one after another.
    RawClient first(server.port(), stranger);
    RawClient second(server.port(), stranger);
    first.send(wrong);
    second.send(wrong);
    // Neither this machine waits, nor who has logged in, nor who brings no password.
    QCOMPARE(server.status("GET", "/a", basicLogin("b:2")), 200);
    QCOMPARE(known.exchange(right).body, QByteArray("A"));
    QCOMPARE(RawClient(server.port(), stranger).exchange(rawRequest("GET", "/a")).status(),
             QByteArray("401 Unauthorized"));
    QVERIFY(clock.elapsed() < 900);
    QCOMPARE(first.reply().status(), QByteArray("401 Unauthorized"));
    QCOMPARE(second.reply().status(), QByteArray("401 Unauthorized"));
    QVERIFY(clock.elapsed() >= 2900);

    // The end comes while one waits.
    first.send(wrong);
    QCOMPARE(known.exchange(right).body, QByteArray("A"));
    server.server->stopAll();
    QVERIFY(first.waitForClose());
    server.start();

    const auto now = Guesses::Clock::now();
    for (int i = 0; i < 6; ++i)
        server.engine.setup()->guesses->noteWrong({ stranger, "b", now }, now);
    const RawReply reply = RawClient(server.port(), stranger).exchange(right);
    QCOMPARE(reply.status(), QByteArray("429 Too Many Requests"));
    QVERIFY(reply.header("Retry-After").toInt() > 50);
    // This machine waits where it asks for somebody else.
    for (int i = 0; i < 11; ++i)
        server.engine.setup()->guesses->noteWrong({ QHostAddress::LocalHost, "b", now, false },
                                                  now);
    const auto status = [&](const QByteArray &fields) {
        return server.status("GET", "/a", fields + basicLogin("b:2"));
    };
    QCOMPARE(status("Sec-Fetch-Site: cross-site\r\n"), 429);
    QCOMPARE(status({}), 200);
    server.profile->trustedProxies = QStringList{ QStringLiteral("127.0.0.1") };
    QCOMPARE(status({}), 429);

    // Nor is anybody known by sharing a proxy's connection with who is.
    server.engine.setup()->guesses->noteRight(
        { QHostAddress(QStringLiteral("192.0.2.7")), "b", now }, now);
    RawClient shared(server.port());
    const auto statusOf = [&](const QByteArray &visitor) {
        const QByteArray sender = "X-Forwarded-For: " + visitor + "\r\n";
        return shared.exchange(rawRequest("GET", "/a", sender + basicLogin("b:2"))).status();
    };
    QCOMPARE(statusOf("192.0.2.7"), QByteArray("200 OK"));
    QCOMPARE(statusOf("192.0.2.8"), QByteArray("429 Too Many Requests"));
}

void TestLogin::answersToItsNamesAlone_data()
{
    columnsOf<QByteArray, QByteArray, int>("host", "fields", "status");
    const QByteArray machine = QSysInfo::machineHostName().toUtf8();
    row("address", "127.0.0.1:@", "", 200);
    row("localhost", "LocalHost:@", "", 200);
    row("the machine's name", machine + ":@", "", 200);
    row("the machine's name nearby", machine + ".local:@", "", 200);
    row("without its port", "localhost", "", 200);
    row("another port", "localhost:1", "", 421);
    row("begins like ours", "localhost.evil.example:@", "", 421);
    row("another machine's address", "192.0.2.1:@", "", 421);
    row("no name", "", "", 421);
    row("of the profile, with the port of a proxy", "Nas.Example:81", "", 200);
    row("what a trusted proxy says", "inside", "X-Forwarded-Host: nas.example\r\n", 200);
    row("somebody else's by a trusted proxy", "nas.example", "X-Forwarded-Host: evil.example\r\n",
        421);
}

void TestLogin::answersToItsNamesAlone()
{
    const StandardServer server({ { "a", "A" } });
    server.profile->strict = 1;
    server.profile->names = QStringList{ QStringLiteral("nas.example") };
    server.profile->trustedProxies = QStringList{ QStringLiteral("127.0.0.1") };
    QFETCH(QByteArray, host);
    QFETCH(const QByteArray, fields);
    const QByteArray port = QByteArray::number(server.port());
    RawClient client(server.port());
    const RawReply reply = client.exchange("GET /a HTTP/1.1\r\nHost: " + host.replace('@', port)
                                           + "\r\n" + fields + "\r\n");
    QTEST(reply.status().left(3).toInt(), "status");
    QCOMPARE(reply.header("Cross-Origin-Resource-Policy"), QByteArray("same-origin"));
    QCOMPARE(RawClient(server.port()).exchange("GET /a HTTP/1.0\r\n\r\n").body, QByteArray("A"));
}

} // namespace standard

QTEST_GUILESS_MAIN(standard::TestLogin)
#include "tst_login.moc"
