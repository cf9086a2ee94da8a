#include "server/LoginSessions.h"
#include "server/PasswordHash.h"
#include "standard/web/Routes.h"
#include "tests/standard/StandardTest.h"
#include "tests/support/Data.h"
#include "tests/support/Litmus.h"

#include <QElapsedTimer>

namespace standard {

namespace {

constexpr auto asBrowser = "User-Agent: Mozilla/5.0\r\nAccept: text/html,*/*;q=0.8\r\n";
constexpr auto rightForm = "name=j%C3%BCrg&password=a%26%2B";

/// What the browser brings along after a reply.
QByteArray cookieOf(const RawReply &reply)
{
    return "Cookie: x=y; " + reply.header("Set-Cookie").split(';').front() + "\r\n";
}

} // namespace

/// Browsers that log in by the page.
class TestSessions : public QObject
{
    Q_OBJECT
private Q_SLOTS:
    void init();
    void cleanup() { server.reset(); }
    void asksBrowsersAlone_data();
    void asksBrowsersAlone();
    void logsInAndOut();
    void endsWithWhatItStandsOn();
    void leadsToOwnPathsAlone();
    void cookieKeepsToItsWay();
    void guessesWait();
    void tableIsBounded();

private:
    RawReply logIn(const QByteArray &form = rightForm, const QByteArray &fields = {},
                   const QByteArray &query = "?next=/sub/") const
    {
        return replyTo(*server, "POST", "/.quillon/login" + query, fields, form);
    }

    std::unique_ptr<StandardServer> server;
};

void TestSessions::init()
{
    server = std::make_unique<StandardServer>(StandardServer::Files{ { "a", "A" } },
                                              withLogins(fileRoutes()));
    server->askForLogin("j\xc3\xbcrg:a&+ b:2");
}

void TestSessions::asksBrowsersAlone_data()
{
    columnsOf<QByteArray, QByteArray, int>("method", "fields", "status");
    const QByteArray html = asBrowser;
    row("a browser", "GET", html, 303);
    row("one that tells what it is for", "HEAD", html + "Sec-Fetch-Mode: navigate\r\n", 303);
    row("a program", "GET", "Accept: */*\r\n", 401);
    row("a script of a page", "GET", html + "Sec-Fetch-Mode: cors\r\n", 401);
    row("a login", "GET", html + basicLogin("b:1"), 401);
    row("a change", "PUT", html, 401);
    row("a file manager", "GET",
        "User-Agent: Mozilla/5.0 (X11) Konqueror/5 KIO/5.103\r\nAccept: text/html\r\n", 401);
    row("a program that takes pages too", "GET", "Accept: text/html, */*; q=.2\r\n", 401);
}

void TestSessions::asksBrowsersAlone()
{
    QFETCH(const QByteArray, method);
    QFETCH(const QByteArray, fields);
    const RawReply reply = replyTo(*server, method, "/a%20b", fields);
    QTEST(reply.status().left(3).toInt(), "status");
    const bool isLed = reply.header("Location") == "/.quillon/login?next=/a%20b";
    QVERIFY(isLed != reply.head.contains("WWW-Authenticate: Digest"));
}

void TestSessions::logsInAndOut()
{
    const RawReply wrong = logIn("name=%22%3Cb&password=%00");
    QCOMPARE(wrong.status(), QByteArray("403 Forbidden"));
    QVERIFY(wrong.body.contains("is wrong.") && wrong.body.contains("\"&quot;&lt;b\""));
    const RawReply first = logIn();
    QCOMPARE(first.status(), QByteArray("303 See Other"));
    QCOMPARE(first.header("Location"), QByteArray("/sub/"));
    const RawReply file = replyTo(*server, "GET", "/a", cookieOf(first));
    QCOMPARE(file.body, QByteArray("A"));
    QCOMPARE(file.header("Cache-Control"), QByteArray("private, no-cache"));
    QCOMPARE(server->status("PUT", "/new", cookieOf(first), "1"), 201);
    const RawReply page = replyTo(*server, "GET", "/", cookieOf(first));
    QVERIFY(page.body.contains("<b>j\xc3\xbcrg</b> <button>Log out"));
    QVERIFY(page.head.contains("form-action 'self'\r\nReferrer-Policy: same-origin"));

    // A number that was known before the login opens nothing.
    const QByteArray second = cookieOf(logIn(rightForm, cookieOf(first)));
    QVERIFY(second != cookieOf(first));
    QCOMPARE(server->status("GET", "/a", cookieOf(first)), 401);
    QCOMPARE(server->status("GET", "/a", second), 200);
    const RawReply out = replyTo(*server, "POST", "/.quillon/logout", second);
    QVERIFY(out.header("Set-Cookie").endsWith("; Max-Age=0"));
    for (const QByteArray &ofPage : { QByteArray("X-Requested-With: page\r\n"),
                                      QByteArray("Sec-Fetch-Mode: no-cors\r\n"), second }) {
        const RawReply late = replyTo(*server, "GET", "/a", ofPage);
        QCOMPARE(late.status().left(3), QByteArray("401"));
        QCOMPARE(late.header("WWW-Authenticate"), QByteArray("Session"));
    }
}

void TestSessions::endsWithWhatItStandsOn()
{
    Profile &profile = *server->profile;
    const auto endsBy = [this](const std::function<void()> &change) {
        const QByteArray cookie = cookieOf(logIn("name=b&password=2"));
        const bool began = server->status("GET", "/a", cookie) == 200;
        change();
        return began && server->status("GET", "/a", cookie) == 401;
    };
    QVERIFY(endsBy([&profile] { profile.users[1] = QStringLiteral("b:22"); }));
    profile.users[1] = QStringLiteral("b:") + QString::fromLatin1(newPasswordHash("2"));
    QVERIFY(endsBy([&profile] { profile.users.removeLast(); }));
    profile.authMode = AuthPasswordPage;
    profile.password = QStringLiteral("2");
    QVERIFY(endsBy([this, &profile] {
        profile.authMode = AuthNone;
        QCOMPARE(server->status("GET", "/a"), 200);
        QCOMPARE(logIn().header("Location"), QByteArray("/sub/"));
        profile.authMode = AuthBasic;
    }));
    profile.authMode = AuthPasswordPage;
    QVERIFY(endsBy([&profile] { profile.sessionLifetime = 0; }));
}

void TestSessions::leadsToOwnPathsAlone()
{
    for (const auto &[query, location] :
         { std::pair<const char *, const char *>("", "/"),
           { "?next=/sub/a%20b%ff", "/sub/a%20b%FF" },
           { "?next=//evil.example/", "/evil.example/" },
           { "?next=/%5Cevil.example%0d%0aX:1", "/%5Cevil.example%0D%0AX%3A1" },
           { "?next=https://evil.example", "/https%3A/evil.example" },
           { "?next=/.quillon/login", "/" } })
        QCOMPARE(logIn(rightForm, {}, query).header("Location"), QByteArray(location));
}

void TestSessions::cookieKeepsToItsWay()
{
    const QByteArray flags = "; HttpOnly; SameSite=Strict";
    const auto shapeOf = [](const RawReply &reply) {
        const QRegularExpression numbers(QStringLiteral("-\\d+=[0-9a-f]{32};"));
        return QString::fromUtf8(reply.header("Set-Cookie"))
            .replace(numbers, QStringLiteral("-P=N;"))
            .toUtf8();
    };
    QCOMPARE(shapeOf(logIn()), "quillon-P=N; Path=/" + flags);
    server->profile->trustedProxies = QStringList{ QStringLiteral("127.0.0.1") };
    const QByteArray proxied = "X-Forwarded-Proto: https\r\nX-Forwarded-Prefix: /share\r\n";
    const RawReply behind = logIn(rightForm, proxied);
    QCOMPARE(shapeOf(behind), "__Secure-quillon-P=N; Path=/share" + flags + "; Secure");
    QCOMPARE(behind.header("Location"), QByteArray("/share/sub/"));
    QVERIFY(replyTo(*server, "GET", "/", proxied + cookieOf(behind))
                .body.contains("\"/share/.quillon/logout\""));

    const QTemporaryDir keys;
    makeKeys(keys.path());
    server->server->stopAll();
    server->profile->sslMode = Qt::Checked;
    server->profile->privateKeyFile = keys.filePath(QStringLiteral("key"));
    server->profile->publicKeyFile = keys.filePath(QStringLiteral("certificate"));
    QVERIFY(server->server->init());
    server->start();
    RawClient client(server->port(), tlsSocket());
    const RawReply reply = client.exchange(rawRequest("POST", "/.quillon/login", {}, rightForm));
    QCOMPARE(shapeOf(reply), "__Host-quillon-P=N; Path=/" + flags + "; Secure");
}

void TestSessions::guessesWait()
{
    const QHostAddress stranger(QStringLiteral("127.0.0.2"));
    const auto status = [&](const QByteArray &form) {
        RawClient client(server->port(), stranger);
        return client.exchange(rawRequest("POST", "/.quillon/login", {}, form)).status().left(3);
    };
    for (int i = 0; i < 5; ++i)
        QCOMPARE(status("name=b&password=1"), QByteArray("403"));
    QElapsedTimer clock;
    clock.start();
    QCOMPARE(status("name=b&password=2"), QByteArray("303"));
    QVERIFY(clock.elapsed() >= 900);
    const auto now = Guesses::Clock::now();
    for (int i = 0; i < 6; ++i)
        server->engine.setup()->guesses->noteWrong({ stranger, "b", now }, now);
    QCOMPARE(status(rightForm), QByteArray("429"));
}

void TestSessions::tableIsBounded()
{
    using std::chrono::seconds;
    const Profile &profile = *server->profile;
    LoginSessions table;
    const QByteArray mark = table.markOf(profile, "b");
    const auto now = LoginSessions::Clock::now();
    const QByteArray used = table.begin("b", mark, now);
    auto request = table.use(used, profile, now);
    QVERIFY(request && !LoginSessions().use(used, profile, now));
    const QByteArray first = table.begin("b", mark, now);
    const QByteArray second = table.begin("b", mark, now);
    QVERIFY(table.use(first, profile, now));
    for (int i = 3; i <= LoginSessions::maxSessions; ++i)
        QVERIFY(table.begin(QByteArray::number(i / 50), mark, now) != first);
    QVERIFY(!table.use(second, profile, now) && table.use(first, profile, now));
    // An account that logs in again and again ends none but its own.
    QVERIFY(table.use(first, profile, now));
    for (int i = 0; i <= LoginSessions::maxOfAccount; ++i)
        table.begin("guest", mark, now);
    QVERIFY(table.use(first, profile, now));
    // Whatever a request takes, its session does not idle meanwhile.
    const auto later = now + seconds(2 * profile.sessionLifetime);
    QVERIFY(table.use(used, profile, later) && !table.use(first, profile, later));
    request.reset();
    QVERIFY(table.use(used, profile, now));
    QVERIFY(!table.use(used, profile, later));
}

} // namespace standard

QTEST_GUILESS_MAIN(standard::TestSessions)
#include "tst_sessions.moc"
