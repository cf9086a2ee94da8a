#include "classic/http/FormUpload.h"
#include "classic/http/HeadScan.h"
#include "classic/http/MultipartCutter.h"
#include "classic/http/RequestTarget.h"

#include <QTest>

/// The parsers that work on bytes alone.
class TestBytes : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void scansHeads_data();
    void scansHeads();
    void decidesWhenToHandle_data();
    void decidesWhenToHandle();
    void cutsAPartHoweverItArrives_data();
    void cutsAPartHoweverItArrives();
    void takesTargetsApart_data();
    void takesTargetsApart();
    void seesWhoClimbsOut_data();
    void seesWhoClimbsOut();
    void namesUploads_data();
    void namesUploads();
};

void TestBytes::scansHeads_data()
{
    QTest::addColumn<QByteArray>("bytes");
    QTest::addColumn<qint64>("length");
    QTest::addColumn<bool>("doubtful");

    QTest::newRow("any case, any blanks")
        << QByteArray("PUT / X\r\ncOnTent-lenGTH:\t 12 \r\n\r\n") << qint64(12) << false;
    QTest::newRow("beyond 2 GiB") << QByteArray("PUT / X\r\nContent-Length: 5000000000\r\n\r\n")
                                  << qint64(5000000000) << false;
    QTest::newRow("negative") << QByteArray("PUT / X\r\nContent-Length: -5\r\n\r\n") << qint64(0)
                              << true;
    QTest::newRow("signed") << QByteArray("PUT / X\r\nContent-Length: +5\r\n\r\n") << qint64(0)
                            << true;
    QTest::newRow("at the edge of 64 bit")
        << QByteArray("PUT / X\r\nContent-Length: 9223372036854775807\r\n\r\n") << qint64(0)
        << true;
    QTest::newRow("beyond 64 bit")
        << QByteArray("PUT / X\r\nContent-Length: 99999999999999999999\r\n\r\n") << qint64(0)
        << true;
    QTest::newRow("empty") << QByteArray("PUT / X\r\nContent-Length:\r\n\r\n") << qint64(0) << true;
    QTest::newRow("two that differ")
        << QByteArray("PUT / X\r\nContent-Length: 1\r\nContent-Length: 2\r\n\r\n") << qint64(2)
        << true;
    QTest::newRow("a blank before the colon")
        << QByteArray("PUT / X\r\nContent-Length : 9\r\n\r\n") << qint64(0) << true;
    QTest::newRow("in the body only")
        << QByteArray("PUT / X\r\n\r\nContent-Length: 9\r\n") << qint64(0) << false;
    QTest::newRow("in the request line")
        << QByteArray("PUT /Content-Length: 9 X\r\n\r\n") << qint64(0) << false;
}

void TestBytes::scansHeads()
{
    QFETCH(QByteArray, bytes);
    const HeadScan scan = scanHead(bytes);
    QCOMPARE(scan.end, int(bytes.indexOf("\r\n\r\n")) + 4);
    QTEST(scan.contentLength, "length");
    QTEST(scan.lengthDoubtful, "doubtful");
}

void TestBytes::decidesWhenToHandle_data()
{
    const QByteArray head("POST / HTTP/1.1\r\nContent-Length: 100\r\n\r\n"); // 40 bytes
    QTest::addColumn<QByteArray>("bytes");
    QTest::addColumn<bool>("firstLook");
    QTest::addColumn<bool>("expected");

    QTest::newRow("no blank line") << head.chopped(1) << true << false;
    QTest::newRow("body missing") << head << true << false;
    QTest::newRow("body short by one") << head + QByteArray(99, 'x') << true << false;
    QTest::newRow("body whole") << head + QByteArray(100, 'x') << true << true;
    QTest::newRow("more than the body") << head + QByteArray(500, 'x') << true << true;
    // Later looks: the window reaches from 40 bytes before fill - 100 as far as the buffer
    // holds, so that a blank line near the window's start ends the wait early.
    QTest::newRow("later, blank line not in the window")
        << head + QByteArray(79, 'x') << false << false;
    QTest::newRow("later, window begins at the blank line")
        << QByteArray("POST / HTTP/1.1\r\nX: " + QByteArray(120, 'x')
                      + "\r\nContent-Length: 100\r\n\r\n" + QByteArray(76, 'x'))
        << false << true;
    QTest::newRow("later, length beyond the buffer")
        << head + QByteArray(30, 'x') << false << false;
    QTest::newRow("GET does not wait for a body")
        << QByteArray("GET / HTTP/1.1\r\nContent-Length: 9\r\n\r\n") << true << true;
    QTest::newRow("a body that is held back")
        << QByteArray("PUT / X\r\nExpect: 100-continue\r\nContent-Length: 9\r\n\r\n") << true
        << true;
    QTest::newRow("P without a length")
        << QByteArray("PROPFIND / HTTP/1.1\r\n\r\n") << true << true;
}

void TestBytes::decidesWhenToHandle()
{
    QFETCH(QByteArray, bytes);
    QFETCH(bool, firstLook);
    QTEST(canHandle(bytes, scanHead(bytes), firstLook), "expected");
}

void TestBytes::cutsAPartHoweverItArrives_data()
{
    QTest::addColumn<QByteArray>("body");
    QTest::addColumn<QByteArray>("content");
    QTest::addColumn<bool>("found");

    QTest::newRow("content and epilogue")
        << QByteArray("abc\r\n--B--\r\nrest") << QByteArray("abc") << true;
    QTest::newRow("empty content") << QByteArray("\r\n--B--") << QByteArray() << true;
    QTest::newRow("almost delimiters inside")
        << QByteArray("\r\n--\r\n-\r\r\n--A\r\n--B") << QByteArray("\r\n--\r\n-\r\r\n--A") << true;
    QTest::newRow("two delimiters") << QByteArray("a\r\n--Bb\r\n--B") << QByteArray("a") << true;
    QTest::newRow("none") << QByteArray("abcdefgh\r\n--") << QByteArray("abcdefgh") << false;
}

void TestBytes::cutsAPartHoweverItArrives()
{
    QFETCH(QByteArray, body);
    for (int size = 1; size <= body.size(); ++size) {
        MultipartCutter cutter("\r\n--B");
        QByteArray content;
        for (int i = 0; i < body.size(); i += size)
            content += cutter.feed(body.mid(i, size));
        QTEST(cutter.isFound(), "found");
        QTEST(content, "content");
    }
}

void TestBytes::takesTargetsApart_data()
{
    using Form = RequestTarget::Form;
    QTest::addColumn<QByteArray>("target");
    QTest::addColumn<int>("form");
    QTest::addColumn<QString>("path");
    QTest::addColumn<QByteArray>("query");

    const auto row = [](const char *name, const char *target, Form form, const QString &path,
                        const char *query = "") {
        QTest::newRow(name) << QByteArray(target) << int(form) << path << QByteArray(query);
    };
    row("escapes", "/a%20b%2Fc", Form::Path, QStringLiteral("/a b/c"));
    row("UTF-8", "/%C3%A4", Form::Path, QStringLiteral("/ä"));
    row("plus stays in a path", "/a+b", Form::Path, QStringLiteral("/a+b"));
    row("two slashes are no host", "//x/y", Form::Path, QStringLiteral("//x/y"));
    row("query", "/a?b=c?d", Form::Path, QStringLiteral("/a"), "b=c?d");
    row("absolute form", "http://host:80/p?q", Form::Path, QStringLiteral("/p"), "q");
    row("host alone", "http://host", Form::Empty, QString());
    row("host and query", "http://host?q", Form::Empty, QString(), "q");
    row("a URL inside a path", "/x?u=http://h/", Form::Path, QStringLiteral("/x"), "u=http://h/");
    row("empty", "", Form::Empty, QString());
    row("query alone", "?a=b", Form::Empty, QString(), "a=b");
    row("asterisk", "*", Form::Asterisk, QStringLiteral("*"));
    row("no slash", "backup/x", Form::Malformed, QStringLiteral("backup/x"));
    row("climbing sibling", "-private/x", Form::Malformed, QStringLiteral("-private/x"));
    row("fragment", "/a#b?c", Form::Path, QStringLiteral("/a"));
}

void TestBytes::takesTargetsApart()
{
    QFETCH(QByteArray, target);
    const RequestTarget parsed = parseTarget(target);
    QTEST(int(parsed.form), "form");
    QTEST(parsed.path, "path");
    QTEST(parsed.query, "query");
}

void TestBytes::seesWhoClimbsOut_data()
{
    QTest::addColumn<bool>("climbs");
    for (const char *path : { "/..", "..", "/../x", "/a/../..", "/a/../../b", "//..", "/./..",
                              "/a//../../x", "/../", "/a/b/../../.." })
        QTest::newRow(path) << true;
    for (const char *path : { "/", "", "/a/..", "/a/../b", "/...", "/..a", "/a..", "/a/./b/../c" })
        QTest::newRow(path) << false;
}

void TestBytes::seesWhoClimbsOut()
{
    QTEST(climbsOut(QLatin1String(QTest::currentDataTag())), "climbs");
}

void TestBytes::namesUploads_data()
{
    QTest::addColumn<QByteArray>("parameters");
    QTest::addColumn<QString>("name");

    const auto row = [](const char *name, const QByteArray &parameters, const QString &expected) {
        QTest::newRow(name) << parameters << expected;
    };
    row("plain", R"(name="f"; filename="a.txt")", QStringLiteral("a.txt"));
    row("a client's path", R"(name="f"; filename="C:\dir\a.txt")", QStringLiteral("a.txt"));
    row("a path with slashes", R"(name="f"; filename="/x/y\z.txt")", QStringLiteral("y\\z.txt"));
    row("nothing chosen", R"(name="f"; filename="")", QString());
    row("no file field", R"(name="f")", QString());
    row("no closing quote", R"(name="f"; filename="a)", QString());
    row("UTF-8", "name=\"f\"; filename=\"\xc3\xa4.txt\"", QStringLiteral("ä.txt"));
    row("Latin-1", "name=\"f\"; filename=\"\xe4.txt\"", QStringLiteral("ä.txt"));
}

void TestBytes::namesUploads()
{
    QFETCH(QByteArray, parameters);
    const QByteArray headers = "--B\r\nContent-Disposition: form-data; " + parameters
        + "\r\nContent-Type: text/plain\r\n\r\n";
    QTEST(uploadName(headers), "name");
}

QTEST_GUILESS_MAIN(TestBytes)
#include "tst_bytes.moc"
