#include "standard/dav/Routes.h"
#include "standard/http/Handler.h"
#include "tests/standard/StandardTest.h"

#include <QTest>
#include <QTimer>

namespace standard {
namespace {

/// Answers in a later turn of the event loop.
class LateReply final : public Handler
{
public:
    using Handler::Handler;
    ~LateReply() override { isGone() = true; }

    static bool &isGone()
    {
        static bool gone = false;
        return gone;
    }

    void start() override
    {
        QTimer::singleShot(0, this, [this] { exchange.reply(Status::NoContent); });
    }
};

} // namespace

class TestFilesByHttp : public QObject
{
    Q_OBJECT
private Q_SLOTS:
    void fileHasAllItsFields();
    void ranges();
    void unchangedFileIsNotSentAgain();
    void shrinkingFileEndsConnection();
    void folders();
    void longPageWaitsForItsReader();
    void singleFile();
    void requestsOneAfterAnother();
    void unreadBodies();
    void badHeads();
    void idleConnectionKeepsNoHandler();
};

void TestFilesByHttp::fileHasAllItsFields()
{
    const StandardServer server({ { "a b.txt", "gr\xc3\xbc\xc3\x9f" },
                                  { "latin.txt", "gr\xfc\xdf" },
                                  { "page.html", "<html>" } });
    const RawReply text = replyTo(server, "GET", "/a%20b.txt");
    QCOMPARE(text.status(), QByteArray("200 OK"));
    QCOMPARE(text.body, QByteArray("gr\xc3\xbc\xc3\x9f"));
    QCOMPARE(text.header("Content-Type"), QByteArray("text/plain; charset=utf-8"));
    QCOMPARE(text.header("Content-Disposition"), QByteArray("inline; filename=\"a b.txt\""));
    QCOMPARE(text.header("X-Content-Type-Options"), QByteArray("nosniff"));
    QCOMPARE(text.header("Content-Security-Policy"), QByteArray("sandbox"));
    QCOMPARE(text.header("Accept-Ranges"), QByteArray("bytes"));
    QCOMPARE(text.header("Server"), QByteArray("Quillon/" QUILLON_VERSION));
    QVERIFY(text.header("ETag").startsWith('"'));
    QVERIFY(text.header("Date").endsWith(" GMT") && text.header("Last-Modified").endsWith(" GMT"));
    QCOMPARE(replyTo(server, "GET", "/latin.txt").header("Content-Type"), QByteArray("text/plain"));
    QVERIFY(replyTo(server, "GET", "/page.html").header("Content-Disposition").startsWith("att"));
    QCOMPARE(server.status("GET", "/missing"), 404);
    QCOMPARE(server.status("GET", "/page.html/"), 404);
}

void TestFilesByHttp::ranges()
{
    const StandardServer server({ { "a.mp4", "0123456789" } });
    const auto check = [&server](const char *headers, const char *status, const char *contentRange,
                                 const QByteArray &body) {
        const RawReply reply = replyTo(server, "GET", "/a.mp4", headers);
        QCOMPARE(reply.status(), QByteArray(status));
        QCOMPARE(reply.header("Content-Range"), QByteArray(contentRange));
        QCOMPARE(reply.header("Content-Length").toInt(), body.size());
        QCOMPARE(reply.body, body);
    };
    // As players ask first, past the end, and of another version.
    check("Range: bytes=0-1\r\n", "206 Partial Content", "bytes 0-1/10", "01");
    check("Range: bytes=10-\r\n", "416 Range Not Satisfiable", "bytes */10",
          "416 Range Not Satisfiable\n");
    check("Range: bytes=7-\r\nIf-Range: \"x\"\r\n", "200 OK", "", "0123456789");
    const RawReply whole = replyTo(server, "HEAD", "/a.mp4", "Range: bytes=0-1\r\n");
    QCOMPARE(whole.header("Content-Length") + whole.body, QByteArray("10"));

    // Several at once.
    const RawReply reply =
        replyTo(server, "GET", "/a.mp4",
                "Range: bytes=8-,0-1\r\nIf-Range: " + whole.header("ETag") + "\r\n");
    QCOMPARE(reply.status(), QByteArray("206 Partial Content"));
    QCOMPARE(reply.header("Content-Length").toInt(), reply.body.size());
    const QByteArray type = reply.header("Content-Type");
    const QByteArray boundary = type.mid(type.indexOf("boundary=") + 9);
    const QByteArray part = "\r\n--" + boundary + "\r\nContent-Type: video/mp4\r\nContent-Range: ";
    QCOMPARE(reply.body,
             part + "bytes 8-9/10\r\n\r\n89" + part + "bytes 0-1/10\r\n\r\n01\r\n--" + boundary
                 + "--\r\n");
}

void TestFilesByHttp::unchangedFileIsNotSentAgain()
{
    const StandardServer server({ { "a", "one" } });
    const QByteArray tag = replyTo(server, "GET", "/a").header("ETag");
    const RawReply same = replyTo(server, "GET", "/a", "If-None-Match: " + tag + "\r\n");
    QCOMPARE(same.status(), QByteArray("304 Not Modified"));
    QCOMPARE(same.header("ETag"), tag);
    QVERIFY(same.body.isEmpty() && same.header("Content-Length").isEmpty());
    // Of the same size, and perhaps within the same tick of the clock.
    QVERIFY(QFile::remove(server.sharePath(QStringLiteral("a"))));
    server.addFile(QStringLiteral("b"), {});
    server.addFile(QStringLiteral("a"), "two");
    QCOMPARE(replyTo(server, "GET", "/a", "If-None-Match: " + tag + "\r\n").body,
             QByteArray("two"));
    QCOMPARE(server.status("GET", "/a", "If-Match: " + tag + "\r\n"), 412);
}

void TestFilesByHttp::shrinkingFileEndsConnection()
{
    const StandardServer server({ { "big", "x" } });
    const QString path = server.sharePath(QStringLiteral("big"));
    constexpr qint64 size = qint64(64) << 20;
    QVERIFY(QFile::resize(path, size));
    RawClient client(server.port());
    client.socket->setReadBufferSize(1024);
    client.send(rawRequest("GET", "/big"));
    QTRY_VERIFY(client.socket->bytesAvailable() > 0);
    QVERIFY(QFile::resize(path, 1));
    client.socket->setReadBufferSize(0);
    QVERIFY(client.readToEnd().size() < size);
    QVERIFY(!client.isOpen());
}

void TestFilesByHttp::folders()
{
    const StandardServer server({ { "f <&/x:y.txt", "1" } });
    const RawReply moved = replyTo(server, "GET", "/f%20%3C%26?a=b");
    QCOMPARE(moved.status(), QByteArray("308 Permanent Redirect"));
    QCOMPARE(moved.header("Location"), QByteArray("/f%20%3C%26/?a=b"));
    // A path of two slashes would be another server.
    QCOMPARE(replyTo(server, "GET", "//f%20%3C%26").header("Location"), QByteArray("/f%20%3C%26/"));
    QCOMPARE(replyTo(server, "GET", "/x/..?a").header("Location"), QByteArray("/?a"));
    const RawReply page = replyTo(server, "GET", "/f%20%3C%26/");
    QCOMPARE(page.header("Content-Type"), QByteArray("text/html; charset=utf-8"));
    QVERIFY(page.body.contains("/f &lt;&amp;</h1>"));
    QVERIFY(page.body.contains("href=\"./x%3Ay.txt\""));
    server.profile->showFolders = Qt::Unchecked;
    QCOMPARE(server.status("GET", "/"), 403);
}

void TestFilesByHttp::longPageWaitsForItsReader()
{
    const StandardServer server({ { "d/short", {} } }, withDav(fileRoutes()));
    const QString rest(200, QLatin1Char('&'));
    for (int i = 0; i < 5002; ++i)
        server.addFile(QString::number(i) + rest, {});
    MemoryBudget &memory = *server.engine.setup()->replies;
    const Poller &poller = *server.engine.setup()->poller;
    const qint64 unused = memory.unused();
    RawClient slow(server.port());
    slow.socket->setReadBufferSize(1024);
    slow.send(rawRequest("GET", "/", "Connection: close\r\n"));
    constexpr qint64 queued = 256 * 1024;
    QTRY_VERIFY(poller.backlog() > queued);
    QVERIFY(poller.backlog() < 2 * queued);
    {
        const MemoryBudget::Part others(memory, memory.unused());
        QVERIFY(others.isGranted());
        // What is sent as it is made needs no room.
        RawClient lists(server.port());
        lists.send(rawRequest("PROPFIND", "/", "Depth: 1\r\nConnection: close\r\n"));
        QVERIFY(lists.readToEnd().endsWith("0\r\n\r\n"));
        const RawReply refused = replyTo(server, "GET", "/");
        QCOMPARE(refused.status(), QByteArray("503 Service Unavailable"));
        QCOMPARE(refused.header("Retry-After"), QByteArray("10"));
        QCOMPARE(server.status("GET", "/d/"), 200);
    }
    slow.socket->setReadBufferSize(0);
    QVERIFY(slow.readToEnd().endsWith("<p>3 more</p>\n</main></body></html>\n\r\n0\r\n\r\n"));
    QTRY_COMPARE(memory.unused(), unused);

    RawClient old(server.port());
    old.send("GET / HTTP/1.0\r\n\r\n");
    const QByteArray page = old.readToEnd();
    QCOMPARE(page.count("<tr>"), 5000);
    QVERIFY(page.endsWith("</table>\n<p>3 more</p>\n</main></body></html>\n"));
    QVERIFY(!page.contains("Content-Length") && !page.contains("chunked"));
    QVERIFY(replyTo(server, "HEAD", "/").body.isEmpty());
}

void TestFilesByHttp::singleFile()
{
    const StandardServer server({ { "film.mp4", "0123456789" } });
    server.server->setShared(server.sharePath(QStringLiteral("film.mp4")));
    const RawReply reply = replyTo(server, "GET", "/", "Range: bytes=8-\r\n");
    QCOMPARE(reply.body, QByteArray("89"));
    QCOMPARE(reply.header("Content-Disposition"), QByteArray("inline; filename=\"film.mp4\""));
    QCOMPARE(server.status("GET", "/film.mp4"), 404);
    QCOMPARE(server.status("PUT", "/", {}, "x"), 405);
    QCOMPARE(server.status("DELETE", "/"), 403);
    QCOMPARE(server.fileContent(QStringLiteral("film.mp4")), QByteArray("0123456789"));
}

void TestFilesByHttp::requestsOneAfterAnother()
{
    const StandardServer server({ { "a", "one" } });
    RawClient client(server.port());
    client.send("\r\n\r"); // a blank line in front
    QTest::qWait(20);
    client.send("\n");
    // Nothing of a request counts for the next one.
    client.send(rawRequest("GET", "/a", "Range: bytes=0-0\r\nIf-None-Match: \"x\"\r\n")
                + rawRequest("GET", "/a") + rawRequest("GET", "/missing").repeated(40)
                + rawRequest("GET", "/a"));
    QCOMPARE(client.reply().body, QByteArray("o"));
    QCOMPARE(client.reply().body, QByteArray("one"));
    for (int i = 0; i < 40; ++i)
        QCOMPARE(client.reply().status(), QByteArray("404 Not Found"));
    QCOMPARE(client.reply().body, QByteArray("one"));

    client.send("GET /a HTTP/1.0\r\nConnection: keep-alive\r\n\r\n");
    const RawReply old = client.reply();
    QCOMPARE(old.header("Connection"), QByteArray("keep-alive"));
    client.send("GET /a HTTP/1.0\r\n\r\n");
    QVERIFY(client.readToEnd().endsWith("one") && !client.isOpen());
}

void TestFilesByHttp::unreadBodies()
{
    const StandardServer server({ { "a", "one" } });
    RawClient client(server.port());
    client.send(rawRequest("GET", "/a", {}, QByteArray(500000, 'x')));
    QCOMPARE(client.reply().body, QByteArray("one"));
    client.send(rawRequest("GET", "/a", "Transfer-Encoding: chunked\r\n"));
    QCOMPARE(client.reply().body, QByteArray("one"));
    client.send("3\r\nabc\r\n0\r\n\r\n" + rawRequest("GET", "/a"));
    QCOMPARE(client.reply().body, QByteArray("one"));
    // Held back, it may come or not: the connection can't go on.
    client.send(rawRequest("GET", "/a", "Expect: 100-continue\r\nContent-Length: 5\r\n"));
    const RawReply reply = client.reply();
    QCOMPARE(reply.status(), QByteArray("200 OK"));
    QCOMPARE(reply.header("Connection"), QByteArray("close"));

    RawClient large(server.port());
    large.send(rawRequest("GET", "/a", "Content-Length: 100000000\r\n") + QByteArray(70000, 'x'));
    QCOMPARE(large.reply().header("Connection"), QByteArray("close"));
    QVERIFY(large.waitForClose());
}

/// What is still on its way must not cost the peer the reply.
void TestFilesByHttp::badHeads()
{
    const std::pair<QByteArray, QByteArray> heads[] = {
        { "GET / HTTP/1.1\nHost: a\n\n", "400 Bad Request" },
        { "GET / HTTP/1.1\r\nHost: a\r\nX: " + QByteArray(20000, 'x'),
          "431 Request Header Fields Too Large" },
        { QByteArray("\r\n").repeated(20000), "400 Bad Request" },
    };
    for (const auto &[head, status] : heads) {
        const StandardServer server;
        RawClient client(server.port());
        const RawReply reply = client.exchange(head);
        QCOMPARE(reply.status(), status);
        QCOMPARE(reply.header("Connection"), QByteArray("close"));
        QVERIFY(client.waitForClose());
        QCOMPARE(server.server->connectionCount(), 1);
    }
}

/// The disk answers outside of the peer's turn; then nothing more may come from it for long.
void TestFilesByHttp::idleConnectionKeepsNoHandler()
{
    Routes routes = fileRoutes();
    routes.rows.front() = { Method::Options, makeHandler<LateReply> };
    StandardServer server(routes);
    RawClient client(server.port());
    QCOMPARE(client.exchange(rawRequest("OPTIONS", "/")).status(), QByteArray("204 No Content"));
    QTRY_VERIFY(LateReply::isGone());
    QVERIFY(client.isOpen());
}

} // namespace standard

QTEST_GUILESS_MAIN(standard::TestFilesByHttp)
#include "tst_files_by_http.moc"
