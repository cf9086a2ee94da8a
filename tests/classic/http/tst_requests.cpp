#include "classic/http/Responder.h"
#include "server/PasswordHash.h"
#include "tests/support/Data.h"
#include "tests/support/LiveServer.h"

#include <QRegularExpression>

#include <sys/socket.h>
#include <sys/stat.h>

namespace {

/// Answers without reading the body, as locking does.
class Acknowledge : public Responder
{
public:
    using Responder::Responder;
    void reply() override { sendHeader("200 Locked", 0); }
};

/// Tells what the request holds.
class Describe : public Responder
{
public:
    using Responder::Responder;
    void reply() override
    {
        sendBody("200 OK",
                 request.path.toUtf8() + '|' + request.depth + '|' + request.destination + '|'
                     + QByteArray::number(request.contentLength) + '|' + request.userAgent + '|'
                     + channel.request().readBuffered(request.contentLength) + '|'
                     + request.field("f").toUtf8());
    }
};

/// Reads the body of the request as a form.
class AskForBody : public Describe
{
public:
    using Describe::Describe;
    void partHeadReady(const QByteArray &lines) override { sendBody("200 OK", lines); }
    void reply() override
    {
        channel.receive({ BodyIntake::Target::PartHead, BodyIntake::maxPartHead });
    }
};

/// Header lines of which the last stands behind what is seen of a head at first.
QByteArray late(const QByteArray &line)
{
    return "X: " + QByteArray(2500, 'x') + "\r\n" + line + "\r\n";
}

bool isLoud(const Request &request)
{
    return request.path.endsWith(u'!');
}

Routes testRoutes()
{
    Routes routes{
        { Request::Post, isLoud, makeResponder<Describe> },
        { Request::Put, nullptr, makeResponder<AskForBody> },
        { Request::Lock, nullptr, makeResponder<Acknowledge> },
        { Request::PropFind, nullptr, makeResponder<Describe> },
        { Request::Copy, nullptr, makeResponder<Describe> },
    };
    for (const Route &route : fileRoutes())
        routes.push_back(route);
    return routes;
}

void waysToKeepPasswords()
{
    columns<bool>({ "hashed" });
    row("as typed", false);
    row("hashed", true);
}

QString kept(const QString &password)
{
    QFETCH(bool, hashed);
    return hashed ? QString::fromLatin1(newPasswordHash(password.toUtf8())) : password;
}

} // namespace

/// Requests as they arrive in packets, and what is answered to them.
class TestRequests : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup() { live.reset(); }
    void writesTheHeaderInItsFixedOrder();
    void answersHowAFileGoesOut_data();
    void answersHowAFileGoesOut();
    void sendsPartsOfAFile_data();
    void sendsPartsOfAFile();
    void servesTheIconWhileThumbnailsAreOn();
    void answersAHeadHoweverItArrives();
    void cutsAHeadAt2048Bytes();
    void answersAHalfClosedPeer();
    void goesOnAfterABodyThatNobodyRead();
    void answersManyPipelinedRequestsOnAShallowStack();
    void asksForABodyThatIsHeldBack();
    void keepsHeadersButNotWhatWouldRepeat();
    void refusesBrokenRequests_data();
    void refusesBrokenRequests();
    void readsLongFormsWhole();
    void showsTheLoginPageUntilThePasswordFits_data() { waysToKeepPasswords(); }
    void showsTheLoginPageUntilThePasswordFits();
    void asksForBasicCredentials_data() { waysToKeepPasswords(); }
    void asksForBasicCredentials();
    void sharesTheSessionOfOneBrowser();
    void knowsOnlyGetAndPostForASingleFile();
    void makesGuessesWait();
    void leavesNothingOpenWhenStrict();

private:
    std::unique_ptr<LiveServer> live;
};

void TestRequests::init()
{
    live = std::make_unique<LiveServer>(testRoutes());
    live->addFile(QStringLiteral("a.txt"), "0123456789");
    live->start();
}

void TestRequests::writesTheHeaderInItsFixedOrder()
{
    RawClient client(live->port());
    const RawReply reply =
        client.exchange("GET /a.txt HTTP/1.1\r\nCookie: x=1; ID=42\r\nConnection: close\r\n\r\n");
    QCOMPARE(reply.head,
             QByteArray("HTTP/1.1 200 OK\r\nServer: Quillon_4\r\nCache-Control: no-cache\r\n"
                        "Set-Cookie: ID=42\r\nConnection: close\r\nAccept-Ranges: bytes\r\n"
                        "Content-Disposition: attachment; filename=\"a.txt\"\r\n"
                        "Content-Length: 10"));
    QCOMPARE(reply.body, QByteArray("0123456789"));
    QVERIFY(client.waitForClose());
}

void TestRequests::answersHowAFileGoesOut_data()
{
    columns<QByteArray>({ "target", "status", "type", "disposition" });

    const auto row = [](const char *name, const char *target, const char *status,
                        const QByteArray &type, const QByteArray &fileName) {
        QTest::newRow(name) << QByteArray(target) << QByteArray(status) << type
                            << (fileName.isEmpty() ? QByteArray()
                                                   : "attachment; filename=\"" + fileName + '"');
    };
    row("HTML is shown inline", "/PAGE.HTML", "200 OK", "text/html; charset=UTF-8", {});
    row("two types in one value", "/x.aac", "200 OK", "video/mp4v-es, audio/mp4", "x.aac");
    row("Latin-1 name", "/%C3%A4%E2%82%AC.zip", "200 OK", "application/zip", "\xe4?.zip");
    row("no header injection", "/%22%0D%0AX:%20y", "200 OK", {}, "???X: y");
    row("empty file", "/empty.jpg", "200 OK", {}, "empty.jpg");
    row("NUL in the name", "/a.txt%00.html", "404 Not Found", "text/html", {});
    row("folder", "/sub", "500 Can't read file", {}, {});
    row("pipe without a writer", "/fifo", "500 Can't read file", {}, {});
    row("name too long", QByteArray("/" + QByteArray(300, 'n')).constData(), "404 Not Found",
        "text/html", {});
}

void TestRequests::answersHowAFileGoesOut()
{
    for (const char *name : { "PAGE.HTML", "x.aac", "x.css", "ä€.zip", "\"\r\nX: y", "sub/b" })
        live->addFile(QString::fromUtf8(name), "content");
    live->addFile(QStringLiteral("empty.jpg"), {});
    QCOMPARE(mkfifo(live->sharePath(QStringLiteral("fifo")).toUtf8().constData(), 0600), 0);

    QFETCH(QByteArray, target);
    RawClient client(live->port());
    const RawReply reply = client.exchange(rawRequest("GET", target));
    QTEST(reply.status(), "status");
    QTEST(reply.header("Content-Type"), "type");
    QTEST(reply.header("Content-Disposition"), "disposition");
    // The connection is still good.
    QCOMPARE(client.exchange(rawRequest("GET", "/a.txt")).body, QByteArray("0123456789"));
}

void TestRequests::sendsPartsOfAFile_data()
{
    columns<QByteArray>({ "range", "contentRange", "body" });

    row("open end", "bytes=4-", "bytes 4--1/0", "456789");
    row("the end is a count", "bytes=0-4", "bytes 0-4/0", "0123");
    row("start and count", "bytes=2-3", "bytes 2-3/0", "234");
    row("suffix", "bytes=-5", "bytes 0-5/0", "01234");
    row("starts past the end", "bytes=50-60", "bytes 50-60/0", "");
    row("more than there is", "bytes=8-99999999999", "bytes 8-99999999999/0", "89");
}

void TestRequests::sendsPartsOfAFile()
{
    QFETCH(QByteArray, range);
    RawClient client(live->port());
    client.send(rawRequest("GET", "/a.txt", "Range: " + range + "\r\n"));
    // Fewer bytes than announced, so the end of the connection ends the reply.
    const QByteArray all = client.readToEnd();
    QVERIFY(!client.isOpen());
    QVERIFY(all.startsWith("HTTP/1.1 206 Partial Content\r\n"));
    QVERIFY(all.contains("\r\nContent-Length: 10\r\n"));
    const int end = int(all.indexOf("\r\n\r\n"));
    QTEST((RawReply{ all.left(end), {} }.header("Content-Range")), "contentRange");
    QTEST(all.mid(end + 4), "body");
}

void TestRequests::servesTheIconWhileThumbnailsAreOn()
{
    writeFile(live->home.directories.icons + QLatin1String("n900.ico"), "ICON");
    RawClient client(live->port());
    const RawReply reply = client.exchange(rawRequest("GET", "/x/favicon.ico"));
    QCOMPARE(reply.body, QByteArray("ICON"));
    QCOMPARE(reply.header("Content-Disposition"), QByteArray("attachment; filename=\"n900.ico\""));
    live->profile->showImages = 0;
    const QByteArray tried = live->sharePath(QStringLiteral("favicon.ico")).toUtf8();
    QCOMPARE(client.exchange(rawRequest("GET", "/favicon.ico")).body,
             "<html><title>Wrong URL</title><body><h1>Wrong URL</h1>Path=/favicon.ico<br>or File="
                 + tried + "<br>Not found.</body></html>");
}

void TestRequests::answersAHeadHoweverItArrives()
{
    const QByteArray head = rawRequest("PROPFIND", "/x", "Depth: 1\r\nContent-Length: 7\r\n");
    RawClient client(live->port());
    const QByteArray whole = client.exchange(head + "<body/>").body;
    QCOMPARE(whole, QByteArray("/x|1||7||<body/>|"));
    for (const char byte : head) {
        client.send(QByteArray(1, byte));
        QTest::qWait(1); // a packet of its own
    }
    QCOMPARE(client.exchange("<body/>").body, whole);
}

void TestRequests::cutsAHeadAt2048Bytes()
{
    // What does not fit - more header lines and a body announced by one of them - is dropped.
    const QByteArray head = "GET /a.txt HTTP/1.1\r\nX: " + QByteArray(3000, 'x')
        + "\r\ncontent-length: 7\r\nCookie: ID=5\r\n\r\nGET / X";
    RawClient client(live->port());
    client.send(head + rawRequest("GET", "/none"));
    const RawReply cut = client.reply();
    QCOMPARE(cut.body, QByteArray("0123456789"));
    QVERIFY(cut.header("Set-Cookie") != "ID=5");
    QCOMPARE(client.reply().status(), QByteArray("404 Not Found"));
}

void TestRequests::answersAHalfClosedPeer()
{
    RawClient client(live->port());
    client.send("GET /a.txt HTTP/1.1\r\nHost: x\r\n");
    ::shutdown(int(client.socket->socketDescriptor()), SHUT_WR);
    QCOMPARE(client.reply().body, QByteArray("0123456789"));

    // It gets every answer that it asked for, however long that takes.
    const QByteArray big(20000000, 'b');
    live->addFile(QStringLiteral("big"), big);
    RawClient patient(live->port());
    patient.send(rawRequest("GET", "/a.txt").repeated(50) + rawRequest("GET", "/big"));
    ::shutdown(int(patient.socket->socketDescriptor()), SHUT_WR);
    for (int i = 0; i < 50; ++i)
        QCOMPARE(patient.reply().body, QByteArray("0123456789"));
    QVERIFY(patient.reply().body == big);

    // A lost connection must not turn half a head into a whole change.
    RawClient writer(live->port());
    writer.send("LOCK /a.txt HTTP/1.1\r\nContent-Le");
    ::shutdown(int(writer.socket->socketDescriptor()), SHUT_WR);
    QCOMPARE(writer.reply().status(), QByteArray("400 Bad Request"));
}

void TestRequests::goesOnAfterABodyThatNobodyRead()
{
    RawClient client(live->port());
    const QByteArray next = rawRequest("GET", "/a.txt");
    for (const int size : { 5, 2000, 70000 }) {
        client.send(rawRequest("LOCK", "/a.txt", {}, QByteArray(size, 'G')) + next);
        QCOMPARE(client.reply().status(), QByteArray("200 Locked"));
        QCOMPARE(client.reply().body, QByteArray("0123456789"));
    }
}

void TestRequests::answersManyPipelinedRequestsOnAShallowStack()
{
    constexpr int count = 10000;
    QByteArray requests;
    for (int i = 0; i < count; ++i)
        requests += "GET /a.txt HTTP/1.1\r\n\r\n";
    RawClient client(live->port());
    client.send(requests);
    for (int i = 0; i < count; ++i)
        QCOMPARE(client.reply().body, QByteArray("0123456789"));
}

void TestRequests::asksForABodyThatIsHeldBack()
{
    RawClient client(live->port());
    const QByteArray headers = "Expect: 100-continue\r\nContent-Length: 5\r\n";
    client.send(rawRequest("PUT", "/x", headers));
    QCOMPARE(client.reply().status(), QByteArray("100 Continue"));
    QCOMPARE(client.exchange("x\r\n\r\n").body, QByteArray("x\r\n\r\n"));
    // Who gets a refusal is not asked for a body first.
    QCOMPARE(client.exchange(rawRequest("MOVE", "/x", headers)).status(),
             QByteArray("405 Method Not Allowed"));
}

void TestRequests::keepsHeadersButNotWhatWouldRepeat()
{
    RawClient client(live->port());
    const QByteArray headers = "User-Agent: me\r\nDepth: 1\r\ndestination: /y\r\n";
    QCOMPARE(client.exchange(rawRequest("COPY", "/x", headers, "abc")).body,
             QByteArray("/x|1|/y|3|me|abc|"));
    QCOMPARE(client.exchange(rawRequest("COPY", "/x")).body, QByteArray("/x|1||0|me||"));
    QCOMPARE(client.exchange(rawRequest("COPY", "http://h/x?y", "DEPTH:0 \r\n")).body,
             QByteArray("/x|0||0|me||"));
    // What decides is found however late it comes.
    QCOMPARE(client.exchange(rawRequest("COPY", "/x", late("Destination: /late"))).body,
             QByteArray("/x|0|/late|0|me||"));
}

void TestRequests::refusesBrokenRequests_data()
{
    columns<QByteArray>({ "request", "status" });

    row("unknown method", rawRequest("BREW", "/"), "405 Method Not Allowed");
    row("longer than a known one", rawRequest("GETX", "/"), "405 Method Not Allowed");
    row("chunked body", rawRequest("POST", "/", "Transfer-Encoding: chunked\r\n"),
        "411 Length Required");
    row("a late Transfer-Encoding", rawRequest("LOCK", "/a", late("Transfer-Encoding: chunked")),
        "411 Length Required");
    row("a late Destination that is too long",
        rawRequest("COPY", "/a", late("Destination: /" + QByteArray(9000, 'd'))),
        "431 Request Header Fields Too Large");
    row("a head without an end", rawRequest("LOCK", "/a", late(QByteArray(70000, 'x') + ": y")),
        "431 Request Header Fields Too Large");
    row("sibling as Destination", rawRequest("COPY", "/a", "Destination: -other\r\n"),
        "400 Bad Request");
    row("no request at all", "\r\n\r\n", "");
    row("garbage without an end", QByteArray(5000, '\xff'), "");
}

void TestRequests::refusesBrokenRequests()
{
    QFETCH(QByteArray, request);
    RawClient client(live->port());
    QTEST(client.exchange(request).status(), "status");
    QVERIFY(client.waitForClose());
}

void TestRequests::readsLongFormsWhole()
{
    const QByteArray type = late("Content-Type: application/x-www-form-urlencoded");
    const QByteArray value(500000, 'x');
    RawClient client(live->port());
    QVERIFY(client.exchange(rawRequest("POST", "/!", type, "a=del&f=+%c3%a4%26+%2B" + value))
                .body.endsWith("| ä& +" + value));
    QCOMPARE(client.exchange(rawRequest("POST", "/!", type, QByteArray(1100000, 'x'))).status(),
             QByteArray("413 Content Too Large"));

    // What a lost connection cut off would name something that nobody chose.
    RawClient leaving(live->port());
    leaving.send("POST /! HTTP/1.1\r\nContent-Type: application/x-www-form-urlencoded\r\n"
                 "Content-Length: 4000\r\n\r\na=del&f=xxx");
    ::shutdown(int(leaving.socket->socketDescriptor()), SHUT_WR);
    QVERIFY(leaving.reply().body.endsWith('|'));
}

void TestRequests::showsTheLoginPageUntilThePasswordFits()
{
    writeFile(live->home.directories.language + QLatin1String("login.html"), "LOGIN");
    live->profile->authMode = AuthPasswordPage;
    live->profile->password = kept(QStringLiteral("pä ss+"));

    const auto get = [this](const QByteArray &target, const QByteArray &headers) {
        return RawClient(live->port()).exchange(rawRequest("GET", target, headers));
    };
    const RawReply refused = get("/a.txt", {});
    QCOMPARE(refused.body, QByteArray("LOGIN"));
    QCOMPARE(refused.header("Connection"), QByteArray("close"));
    const QByteArray cookie = "Cookie: " + refused.header("Set-Cookie") + "\r\n";

    const QByteArray type = "Content-Type: application/x-www-form-urlencoded\r\n";
    const auto login = [&](const QByteArray &form) {
        return RawClient(live->port()).exchange(rawRequest("POST", "/a.txt", cookie + type, form));
    };
    QCOMPARE(login("a=log&password=p").body, QByteArray("LOGIN"));
    QCOMPARE(login("a=log&password=p%c3%a4+ss%2b").body, QByteArray("0123456789"));
    QCOMPARE(get("/a.txt", cookie).body, QByteArray("0123456789"));
    QCOMPARE(get("/a.txt", "Cookie: ID=77777\r\n").body, QByteArray("LOGIN"));
    // What changes something must not pass for done, and no head has a body.
    const auto ask = [this](const QByteArray &method) {
        RawClient client(live->port());
        client.send(rawRequest(method, "/xClient.jar"));
        return client.readToEnd();
    };
    QVERIFY(ask("LOCK").startsWith("HTTP/1.1 403 Forbidden\r\n"));
    QVERIFY(ask("HEAD").endsWith("\r\n\r\n"));
    // A number that was overheard is of no use elsewhere, and does its owner no harm.
    const QByteArray wrong = rawRequest("POST", "/a.txt", cookie + type, "a=log&password=x");
    for (const QByteArray &request : { rawRequest("GET", "/a.txt", cookie), wrong }) {
        RawClient neighbour(live->port(), QHostAddress(QStringLiteral("127.0.0.2")));
        QCOMPARE(neighbour.exchange(request).body, QByteArray("LOGIN"));
    }
    QCOMPARE(get("/a.txt", cookie).body, QByteArray("0123456789"));
    QCOMPARE(get("/xClient.jar", {}).status(), QByteArray("404 Not Found"));
    QCOMPARE(get("/xClient.jar?a=log", {}).body, QByteArray("LOGIN"));
    // Links of other sites are welcome, but none that log in, however late that is said.
    const QByteArray link = "X: " + QByteArray(2100, 'x') + "\r\nSec-Fetch-Site: cross-site\r\n";
    QCOMPARE(get("/xClient.jar", link).status(), QByteArray("404 Not Found"));
    QCOMPARE(get("/a.txt?a=log&password=x", link).status(), QByteArray("403 Forbidden"));
}

void TestRequests::asksForBasicCredentials()
{
    live->profile->authMode = AuthBasic;
    live->profile->users = QStringList{ QStringLiteral("user:") + kept(QStringLiteral("pass")),
                                        QStringLiteral("ü%41:a:b c") };
    const auto ask = [](RawClient &client, const QByteArray &credentials) {
        const QByteArray line = "authorization: Basic " + credentials.toBase64() + "\r\n";
        return client.exchange(rawRequest("GET", "/a.txt", line));
    };
    RawClient admitted(live->port());
    for (const QByteArray &right :
         { QByteArray("user:pass"), QByteArray("ü%41:a:b c"), QByteArray("user:pass\0x", 11) })
        QCOMPARE(ask(admitted, right).body, QByteArray("0123456789"));
    // The next request has to bring its own.
    QCOMPARE(admitted.exchange(rawRequest("GET", "/a.txt")).status(),
             QByteArray("401 Authorization Required"));
    const QByteArray hash = live->profile->passwordHash(QStringLiteral("user"));
    for (const QByteArray &wrong : { QByteArray("üA:a:b c"), QByteArray("user:passpass"),
                                     QByteArray("user:") + hash, QByteArray() }) {
        RawClient client(live->port());
        const RawReply reply = ask(client, wrong);
        QVERIFY(reply.head.endsWith("Accept-Ranges: bytes\r\n"
                                    "WWW-Authenticate: Basic realm=\"Private Area\"\r\n"
                                    "Content-Type: text/xml; charset=\"utf-8\"\r\n"
                                    "Content-Length: 23"));
        QCOMPARE(reply.body, QByteArray("<h2>Wrong password</h2>"));
        QVERIFY(client.waitForClose());
    }
}

void TestRequests::sharesTheSessionOfOneBrowser()
{
    RawClient first(live->port());
    const QByteArray cookie = first.exchange(rawRequest("GET", "/a.txt")).header("Set-Cookie");
    QVERIFY(QRegularExpression(QStringLiteral("^ID=\\d{1,3}$"))
                .match(QString::fromLatin1(cookie))
                .hasMatch());
    RawClient second(live->port());
    const QByteArray headers = "Cookie: " + cookie + "\r\n";
    QCOMPARE(second.exchange(rawRequest("GET", "/a.txt", headers)).header("Set-Cookie"), cookie);

    // Several people may come on one connection of a proxy.
    QCOMPARE(second.exchange(rawRequest("GET", "/a.txt", "Cookie: ID=7\r\n")).header("Set-Cookie"),
             QByteArray("ID=7"));
}

void TestRequests::knowsOnlyGetAndPostForASingleFile()
{
    live->server->setShared(live->sharePath(QStringLiteral("a.txt")));
    RawClient client(live->port());
    QCOMPARE(client.exchange(rawRequest("GET", "/")).body, QByteArray("0123456789"));
    QCOMPARE(client.exchange(rawRequest("POST", "/")).body, QByteArray("0123456789"));
    QCOMPARE(client.exchange(rawRequest("GET", "/b")).status(), QByteArray("404 Not Found"));
    QCOMPARE(client.exchange(rawRequest("PROPFIND", "/")).status(),
             QByteArray("405 Method Not Allowed"));
}

/// The same bytes, only later.
void TestRequests::makesGuessesWait()
{
    writeFile(live->home.directories.language + QLatin1String("login.html"), "LOGIN");
    live->profile->password = QStringLiteral("p");
    live->profile->users = QStringList{ QStringLiteral("b:2") };
    const QByteArray type = "Content-Type: application/x-www-form-urlencoded\r\n";
    const auto login = [&](const QByteArray &password) {
        return rawRequest("POST", "/a.txt", type, "a=log&password=" + password);
    };
    const auto basic = [](const QByteArray &account) {
        return rawRequest("GET", "/a.txt", "Authorization: Basic " + account.toBase64() + "\r\n");
    };
    for (const auto &[mode, wrong, right] : { std::tuple(AuthPasswordPage, login("x"), login("p")),
                                              std::tuple(AuthBasic, basic("b:1"), basic("b:2")) }) {
        live->profile->authMode = mode;
        const auto now = Guesses::Clock::now();
        const QHostAddress guesser(mode == AuthBasic ? QStringLiteral("127.0.0.2")
                                                     : QStringLiteral("127.0.0.3"));
        for (int i = 0; i < 5; ++i)
            live->engine.setup()->guesses->noteWrong({ guesser, "other", now }, now);
        QElapsedTimer clock;
        clock.start();
        RawClient late(live->port(), guesser);
        late.send(right);
        const RawReply refused = RawClient(live->port()).exchange(wrong);
        QVERIFY(clock.elapsed() < 900);
        QCOMPARE(late.reply().body, QByteArray("0123456789"));
        QVERIFY(clock.elapsed() >= 900);
        const RawReply also = RawClient(live->port(), guesser).exchange(wrong);
        QCOMPARE(also.status() + also.body, refused.status() + refused.body);
    }
}

void TestRequests::leavesNothingOpenWhenStrict()
{
    live->profile->enableDelete = Qt::Unchecked;
    // The switches hold for every method, also when the profile says the same by rights.
    for (const bool strict : { false, true }) {
        live->profile->strict = strict ? 1 : 0;
        live->profile->everyone = live->profile->switchedRights();
        for (const char *method : { "COPY", "MKCOL", "MOVE" }) {
            RawClient other(live->port());
            const QByteArray status =
                other.exchange(rawRequest(method, "/a.txt", "Destination: /b\r\n")).status();
            QCOMPARE(status == "403 Forbidden", QByteArray(method) == "MOVE");
        }
        live->profile->everyone.reset();
    }
    QVERIFY(!live->server->init());
    RawClient client(live->port());
    // A request keeps nothing of the one before it.
    QVERIFY(client.exchange(rawRequest("GET", "/a.txt", "Range: bytes=0-20\r\n"))
                .status()
                .startsWith("206"));
    QCOMPARE(client.exchange(rawRequest("GET", "/a.txt")).status(), QByteArray("200 OK"));
    // Numbers can't be guessed, and none is taken over that was not given.
    const QByteArray made = "Cookie: ID=7\r\n";
    const QByteArray cookie =
        client.exchange(rawRequest("GET", "/a.txt", made)).header("Set-Cookie");
    QVERIFY(cookie.mid(3).toLongLong() > 1000);
    RawClient later(live->port());
    const QByteArray again = rawRequest("GET", "/a.txt", "Cookie: " + cookie + "\r\n");
    QCOMPARE(later.exchange(again).header("Set-Cookie"), cookie);
    // A proxy may serve the next visitor on the connection of the last.
    QVERIFY(later.exchange(rawRequest("GET", "/a.txt")).header("Set-Cookie") != cookie);
}

QTEST_GUILESS_MAIN(TestRequests)
#include "tst_requests.moc"
