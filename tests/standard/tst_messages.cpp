#include "config/Profile.h"
#include "server/HttpDate.h"
#include "standard/http/ChunkDecoder.h"
#include "standard/http/Conditions.h"
#include "standard/http/ContentType.h"
#include "standard/http/Forwarded.h"
#include "standard/http/Ranges.h"
#include "standard/http/Request.h"
#include "tests/support/Data.h"

#include <QTest>

#include <optional>
#include <tuple>

using namespace standard;

namespace {

/// 0 when the head is accepted.
int refusalOf(const QByteArray &head)
{
    const auto parsed = parseHead(head);
    const auto *status = std::get_if<Status>(&parsed);
    return status ? int(*status) : 0;
}

Request requestOf(const QByteArray &head)
{
    const auto parsed = parseHead(head);
    return std::get<Request>(parsed);
}

/// A request of `method` with these lines, each ended by CR LF.
Request requestWith(const QByteArray &lines, const QByteArray &method = "GET")
{
    return requestOf(method + " / HTTP/1.1\r\nHost: a\r\n" + lines);
}

struct Decoded
{
    QByteArray content;
    QByteArray rest; ///< what belongs to the next request
    bool whole = false;
    bool bad = false;
};

Decoded decoded(const QByteArray &bytes, int pieceSize)
{
    ChunkDecoder decoder;
    Decoded result;
    QByteArray waiting;
    for (int at = 0; at < bytes.size(); at += pieceSize) {
        waiting += bytes.mid(at, pieceSize);
        for (bool goesOn = true; goesOn && !waiting.isEmpty();) {
            QByteArray out(3, '\0');
            const auto step =
                decoder.decode(waiting.constData(), waiting.size(), out.data(), out.size());
            result.content += out.left(int(step.content));
            waiting.remove(0, int(step.used));
            goesOn = step.used > 0;
        }
    }
    result.rest = waiting;
    result.whole = decoder.isAtEnd();
    result.bad = decoder.isBad();
    return result;
}

} // namespace

class TestMessages : public QObject
{
    Q_OBJECT
private Q_SLOTS:
    void headIsAcceptedOrRefused_data();
    void headIsAcceptedOrRefused();
    void headBecomesRecord();
    void chunkedBody_data();
    void chunkedBody();
    void conditions();
    void ranges();
    void datesOfAllThreeForms();
    void typesByName();
    void namesInDisposition();
    void proxiesTell_data();
    void proxiesTell();
};

void TestMessages::headIsAcceptedOrRefused_data()
{
    columnsOf<QByteArray, int>("head", "status");

    const auto get = [](const char *lines) {
        return QByteArray("GET /a HTTP/1.1\r\nHost: a\r\n") + lines;
    };
    const auto put = [](const char *lines) {
        return QByteArray("PUT /a HTTP/1.1\r\nHost: a\r\n") + lines;
    };
    const auto line = [](const char *first) { return QByteArray(first) + "\r\nHost: a\r\n"; };

    const auto row = [](const char *name, const QByteArray &head, int status = 400) {
        QTest::newRow(name) << head << status;
    };
    row("plain", get(""), 0);
    row("bare LF ends a line", get("X: a\nY: b\r\n"));
    row("NUL in a value", get("X: a\r\n").replace("X: a", QByteArray("X: \0", 4)));
    row("line without a colon", get("nonsense\r\n"));
    row("no Host in 1.0", QByteArray("GET / HTTP/1.0\r\n"), 0);
    row("Host with a path", get("").replace("Host: a", "Host: a/b"));
    row("length said twice", put("Content-Length: 1\r\nContent-Length: 1\r\n"), 0);
    row("negative length", put("Content-Length: -1\r\n"));
    row("empty length", put("Content-Length: \r\n"));
    row("half a list of lengths", put("Content-Length: 5,\r\n"));
    row("chunks", put("transfer-encoding: Chunked\r\n"), 0);
    row("chunks twice", put("Transfer-Encoding: chunked, chunked\r\n"));
    row("chunks not last", put("Transfer-Encoding: chunked, gzip\r\n"));
    row("chunks in 1.0", QByteArray("PUT / HTTP/1.0\r\nTransfer-Encoding: chunked\r\n"));
    row("unknown expectation", put("Expect: wonders\r\n"), 417);
    row("unknown method", line("BREW / HTTP/1.1"), 501);
    row("no version", line("GET /"));
    row("two blanks", line("GET  / HTTP/1.1"));
    row("broken encoding", line("GET /%zz HTTP/1.1"));
    row("fragment", line("GET /a#b HTTP/1.1"));
    row("no path", line("GET a HTTP/1.1"));
    row("star for one file", line("GET * HTTP/1.1"));
    row("star for the server", line("OPTIONS * HTTP/1.1"), 0);
    row("100 fields", get("") + QByteArray("X: a\r\n").repeated(99), 0);
}

void TestMessages::headIsAcceptedOrRefused()
{
    QFETCH(const QByteArray, head);
    QTEST(refusalOf(head), "status");
}

void TestMessages::headBecomesRecord()
{
    const Request request = requestOf("PROPFIND http://host:1/a%20b/%C3%A4?q=%20 HTTP/1.1\r\n"
                                      "hOST: other\r\nDepth:\t1 \r\nX: 1\r\nx: 2\r\n"
                                      "Content-Length: 7\r\nExpect: 100-Continue\r\n\r\n");
    QCOMPARE(request.method, Method::PropFind);
    QCOMPARE(request.target.authority, QByteArray("host:1"));
    QCOMPARE(request.target.path, QByteArray("/a b/\xc3\xa4"));
    QCOMPARE(request.target.query, QByteArray("q=%20"));
    QCOMPARE(request.value("depth"), QByteArray("1"));
    QCOMPARE(request.value("X"), QByteArray("1, 2"));
    QVERIFY(!request.field("Y"));
    QCOMPARE(request.framing.contentLength, 7);
    QVERIFY(request.framing.expectsContinue && request.keepAlive);

    QVERIFY(!requestWith("Connection: TE, Close\r\n").keepAlive);
}

void TestMessages::chunkedBody_data()
{
    columns<QByteArray>({ "bytes", "content", "rest" }); // content "-": it is refused
    row("two chunks and the next request", "5\r\nHello\r\nA\r\n, chunks!!\r\n0\r\n\r\nGET ",
        "Hello, chunks!!", "GET ");
    row("extensions and trailers", "3;a=b;c\r\nabc\r\n0;d\r\nX: y\r\nZ: z\r\n\r\n", "abc", "");
    row("empty", "0\r\n\r\n", "", "");
    row("size with zeros in front", "0003\r\nabc\r\n00\r\n\r\n", "abc", "");
    row("no size", "\r\nabc", "-", "");
    row("size that is no number", "x\r\n", "-", "");
    row("signed size", "+3\r\nabc\r\n", "-", "");
    row("no line end behind the content", "1\r\nabc", "-", "");
    row("endless extension", "1;" + QByteArray(5000, 'x'), "-", "");
    row("endless trailers", "0\r\n" + QByteArray("X: y\r\n").repeated(2000), "-", "");
}

void TestMessages::chunkedBody()
{
    QFETCH(const QByteArray, bytes);
    QFETCH(const QByteArray, rest);
    for (const int pieceSize : { 1, 2, 7, 100000 }) {
        const Decoded result = decoded(bytes, pieceSize);
        QTEST(result.bad ? QByteArray("-") : result.content, "content");
        QVERIFY(result.bad || (result.whole && result.rest == rest));
    }
}

void TestMessages::conditions()
{
    constexpr Verdict go = Verdict::Proceed;
    constexpr Verdict same = Verdict::NotModified;
    constexpr Verdict failed = Verdict::Failed;
    const std::tuple<const char *, bool, Verdict, Verdict> cases[] = {
        { "If-Match: \"a,b\"", true, go, go },
        { "If-Match: \"x\", \"a,b\"", true, go, go },
        { "If-Match: W/\"a,b\"", true, failed, failed },
        { "If-Match: \"x\"", true, failed, failed },
        { "If-Match: *", true, go, go },
        { "If-Match: *", false, failed, failed },
        { "If-None-Match: *", true, same, failed },
        { "If-None-Match: *", false, go, go },
        { "If-None-Match: W/\"a,b\"", true, same, failed },
        { "If-None-Match: \"x\"", true, go, go },
        { "If-Modified-Since: Sun, 06 Nov 1994 08:49:37 GMT", true, same, go },
        { "If-Modified-Since: Sun, 06 Nov 1994 08:49:36 GMT", true, go, go },
        { "If-Modified-Since: nonsense", true, go, go },
        { "If-Unmodified-Since: Sun, 06 Nov 1994 08:49:36 GMT", true, failed, failed },
        { "If-Unmodified-Since: Sun, 06 Nov 1994 08:49:37 GMT", true, go, go },
        // The tag decides, not the date beside it.
        { "If-None-Match: \"x\"\r\nIf-Modified-Since: Sun, 06 Nov 1994 08:49:37 GMT", true, go,
          go },
        { "If-Match: \"a,b\"\r\nIf-Unmodified-Since: Sun, 06 Nov 1994 08:49:36 GMT", true, go, go },
        { "If-Match: \"a,b\"\r\nIf-None-Match: \"a,b\"", true, same, failed },
    };
    for (const auto &[lines, exists, forGet, forPut] : cases) {
        const Validators current{ exists, "\"a,b\"", 784111777 };
        const QByteArray withEnd = QByteArray(lines) + "\r\n";
        QVERIFY2(judge(requestWith(withEnd), current) == forGet, lines);
        QVERIFY2(judge(requestWith(withEnd, "PUT"), current) == forPut, lines);
    }
}

void TestMessages::ranges()
{
    const std::tuple<QByteArray, int, QByteArray> cases[] = {
        { "bytes=0-1", 100, "0-1" },
        { "bytes=0-0", 1, "0-0" },
        { "bytes=90-", 100, "90-99" },
        { "bytes=90-1000", 100, "90-99" },
        { "bytes=-5", 100, "95-99" },
        { "bytes=-500", 100, "0-99" },
        { "bytes=100-", 100, "none" },
        { "bytes=-0", 100, "none" },
        { "bytes=0-", 0, "none" },
        { "bytes=0-99999999999999999999999", 100, "0-99" },
        { "bytes=5-4", 100, "whole" },
        { "bytes=a-b", 100, "whole" },
        { "bytes=", 100, "whole" },
        { "lines=0-1", 100, "whole" },
        { "bytes=0-1,5-6,200-300", 100, "0-1 5-6" },
        { "bytes=50-60, 0-9", 100, "50-60 0-9" },
        { "bytes=50-60,0-9,5-20", 100, "0-20 50-60" },
        { "bytes=0-9,10-19", 100, "0-19" },
        { "bytes=0-0,2-2,4-4,6-6,8-8,10-10,12-12,14-14,16-16,18-18,20-20,22-22,24-24,26-26,28-28,"
          "30-30,32-32",
          100, "whole" },
    };
    for (const auto &[asked, size, expected] : cases) {
        const RangeAnswer answer = rangesOf(asked, size);
        QByteArray text;
        for (const ByteRange &part : answer.parts)
            text += ' ' + QByteArray::number(part.first) + '-' + QByteArray::number(part.end() - 1);
        if (answer.kind == RangeAnswer::Kind::Whole)
            text = " whole";
        if (answer.kind == RangeAnswer::Kind::Unsatisfiable)
            text = " none";
        QCOMPARE(asked + text, asked + ' ' + expected);
    }
}

void TestMessages::datesOfAllThreeForms()
{
    for (const char *text : { "Sun, 06 Nov 1994 08:49:37 GMT", "Sunday, 06-Nov-94 08:49:37 GMT",
                              "Sun Nov  6 08:49:37 1994" })
        QCOMPARE(parseHttpDate(text).value_or(0), qint64(784111777));
    QCOMPARE(httpDate(784111777), QByteArray("Sun, 06 Nov 1994 08:49:37 GMT"));
    for (const char *text : { "", "Sun, 06 Nov 1994 08:49:37 CET", "Sun, 31 Abc 1994 08:49:37 GMT",
                              "Sun, 06 Nov 1994 25:49:37 GMT", "784111777" })
        QVERIFY(!parseHttpDate(text));
}

void TestMessages::typesByName()
{
    for (int i = 0; i < 2; ++i) {
        QCOMPARE(contentType("a.tar.gz"), QByteArray("application/x-compressed-tar"));
        QCOMPARE(contentType("a.gz"), QByteArray("application/gzip"));
        QCOMPARE(contentType("\xc3\xa4.b.JPG"), QByteArray("image/jpeg"));
        QCOMPARE(contentType("Makefile"), QByteArray("text/x-makefile"));
        QCOMPARE(contentType(".unknown"), QByteArray("application/octet-stream"));
        QCOMPARE(contentType(""), QByteArray("application/octet-stream"));
    }
}

void TestMessages::namesInDisposition()
{
    QCOMPARE(disposition("a b.jpg", "image/jpeg"), QByteArray("inline; filename=\"a b.jpg\""));
    QCOMPARE(disposition("\xc3\xa4\"\r\n%.html", "text/html"),
             QByteArray("attachment; filename=\"______.html\"; "
                        "filename*=UTF-8''%C3%A4%22%0D%0A%25.html"));
    QCOMPARE(disposition("gr\xfc.jpg", "image/jpeg"), QByteArray("inline; filename=\"gr_.jpg\""));
}

void TestMessages::proxiesTell_data()
{
    columns<QByteArray>({ "lines", "told" });
    const QByteArray all = "X-Forwarded-For: 1.1.1.1, 192.0.2.7\r\nX-Forwarded-For: 10.0.0.2\r\n"
                           "X-Forwarded-Host: a.example\r\nX-Forwarded-Port: 8443\r\n"
                           "X-Forwarded-Proto: https\r\nX-Forwarded-Prefix: /a%20b/\r\n";
    row("all, through two proxies", "Peer: 10.0.0.1\r\n" + all,
        "192.0.2.7 a.example:8443 https /a%20b /left/x");
    row("by an IPv4 address in IPv6", "Peer: ::ffff:10.0.0.1\r\n" + all,
        "192.0.2.7 a.example:8443 https /a%20b /left/x");
    row("by somebody else", "Peer: 10.0.0.9\r\n" + all, "10.0.0.9  ?  /left/x");
    row("visitors with ports",
        "Peer: 10.0.0.1\r\nX-Forwarded-For: [2001:db8::1]:80, 10.0.0.2:81\r\n",
        "2001:db8::1  ? /left /x");
    row("nobody by an address", "Peer: 10.0.0.1\r\nX-Forwarded-For: 1.1.1.1, unknown\r\n",
        "10.0.0.1  ? /left /x");
    row("the visitor's own words first",
        "Peer: 10.0.0.1\r\nX-Forwarded-Proto: http, HTTPS\r\nX-Forwarded-Host: evil, b:1\r\n",
        "10.0.0.1 b:1 https /left /x");
    for (const char *prefix : { "//evil", "evil", "/a?b", "/%zz", "/%2Fevil", "/" }) {
        row(prefix, QByteArray("Peer: 10.0.0.1\r\nX-Forwarded-Prefix: ") + prefix + "\r\n",
            "10.0.0.1  ? /left /x");
    }
}

void TestMessages::proxiesTell()
{
    QFETCH(const QByteArray, lines);
    ProfileValues profile;
    profile.trustedProxies = QStringList{ QStringLiteral("10.0.0.1"), QStringLiteral("10.0.0.2") };
    profile.pathPrefix = "/left";
    Request request = requestOf("GET /left/x HTTP/1.1\r\nHost: a\r\n" + lines);
    const QHostAddress peer(QString::fromLatin1(request.value("Peer")));
    const Forwarded found = takeForwarded(request, peer, profile);
    const QByteArray scheme =
        found.encrypted ? QByteArray(*found.encrypted ? "https" : "http") : QByteArray("?");
    QTEST(found.visitor.toString().toLatin1() + ' ' + found.authority + ' ' + scheme + ' '
              + found.prefix + ' ' + request.target.path,
          "told");
    // What only begins alike is somebody else's.
    QCOMPARE(found.inside("/a by").has_value(), found.prefix.isEmpty());
}

QTEST_GUILESS_MAIN(TestMessages)
#include "tst_messages.moc"
