#include "standard/dav/Routes.h"
#include "standard/web/Routes.h"
#include "standard/web/UploadBundle.h"
#include "tests/standard/StandardTest.h"
#include "tests/support/FullDisk.h"

#include <QDateTime>
#include <QDir>
#include <QFileInfo>
#include <QTest>

using namespace standard;

namespace {

const QByteArray bundleType = QByteArray("Content-Type: ") + UploadBundle::contentType + "\r\n";

QByteArray bundled(const QByteArray &path, const QByteArray &content,
                   const QByteArray &more = "F 7")
{
    return path + ' ' + QByteArray::number(content.size()) + ' ' + more + '\n' + content;
}

QByteArray told(const QByteArray &statuses)
{
    return "{\"statuses\":[" + statuses + "]}";
}

class BundleServer final : public StandardServer
{
public:
    BundleServer()
        : StandardServer({ { "old", "old" }, { "sub/old", "old" } },
                         withUploads(withDav(standard::fileRoutes())))
    {
    }

    RawReply send(const QByteArray &body, const QByteArray &target = "/.quillon/bundle") const
    {
        return replyTo(*this, "POST", target, bundleType, body);
    }
};

} // namespace

class TestBundles : public QObject
{
    Q_OBJECT
private Q_SLOTS:
    void takesEachFileByItself_data();
    void takesEachFileByItself();
    void toldWhatCameOfThem();
    void refuses_data();
    void refuses();
    void keepsWhatWasWhole();
    void othersAreServedMeanwhile();
    void rightsAndLocksCount();
    void fullDisk();
};

void TestBundles::takesEachFileByItself_data()
{
    QTest::addColumn<int>("size"); // bytes of a chunk
    QTest::newRow("at once") << 1000000;
    QTest::newRow("byte by byte") << 1;
    QTest::newRow("in pieces") << 7;
}

void TestBundles::takesEachFileByItself()
{
    QFETCH(const int, size);
    const BundleServer server;
    const QByteArray body = bundled("a%20b%C3%A9", "first") + bundled("old", "new")
        + bundled("../up", "climbs") + bundled("empty", "", "F") + bundled("x/y/z", "deep")
        + bundled("sub/old", "newer", "T 784111777") + bundled(".quillon/x", "kept")
        + bundled("bad%zz", "x") + bundled("a%20b%C3%A9", "twice");
    QByteArray chunks;
    for (int at = 0; at < body.size(); at += size) {
        const QByteArray piece = body.mid(at, size);
        chunks += QByteArray::number(piece.size(), 16) + "\r\n" + piece + "\r\n";
    }
    RawClient client(server.port());
    client.send(rawRequest("POST", "/.quillon/bundle/",
                           bundleType + "Transfer-Encoding: chunked\r\nConnection: close\r\n")
                + chunks + "0\r\n\r\n");
    const RawReply reply = client.reply();
    QCOMPARE(reply.status(), QByteArray("200 OK"));
    const QByteArray statuses = told("201,412,400,201,201,204,403,400,");
    QVERIFY2(reply.body == statuses.left(statuses.size() - 2) + "412]}"
                 || reply.body == statuses.left(statuses.size() - 2) + "423]}",
             reply.body.constData());
    QCOMPARE(server.fileContent(QStringLiteral("a b\u00e9")), QByteArray("first"));
    QCOMPARE(server.fileContent(QStringLiteral("old")), QByteArray("old"));
    QCOMPARE(server.fileContent(QStringLiteral("x/y/z")), QByteArray("deep"));
    QCOMPARE(server.fileContent(QStringLiteral("sub/old")), QByteArray("newer"));
    QCOMPARE(
        QFileInfo(server.sharePath(QStringLiteral("sub/old"))).lastModified().toSecsSinceEpoch(),
        qint64(784111777));
    QCOMPARE(QDir(server.sharePath())
                 .entryList(QDir::AllEntries | QDir::Hidden | QDir::NoDotAndDotDot)
                 .size(),
             5);
}

void TestBundles::toldWhatCameOfThem()
{
    BundleServer server;
    QCOMPARE(server
                 .send(bundled("a", "1") + bundled("old", "2") + bundled("b", "3"),
                       "/.quillon/bundle/sub")
                 .body,
             told("201,412,201"));
    QTRY_COMPARE(server.sink.deeds.size(), 2);
    QCOMPARE(server.sink.deeds[0].method + server.sink.deeds[0].path, QByteArray("PUT/sub/a"));
    QCOMPARE(server.sink.deeds[1].path, QByteArray("/sub/b"));
}

void TestBundles::refuses_data()
{
    QTest::addColumn<QByteArray>("behind"); // a file that is taken
    QTest::addColumn<int>("status");
    QTest::addColumn<QByteArray>("statuses");
    const auto row = [](const char *title, const QByteArray &behind, int status,
                        const QByteArray &statuses) {
        QTest::newRow(title) << behind << status << told(statuses);
    };
    row("no size", "b x F\nx", 400, "201");
    row("a size below nothing", "b -1 F\nx", 400, "201");
    row("a size past all numbers", "b 99999999999999999999 F\nx", 413, "201");
    row("too few words", "b 1\nx", 400, "201");
    row("too many words", "b 1 F 7 8\nx", 400, "201");
    row("neither T nor F", "b 1 t\nx", 400, "201");
    row("less content than told", "b 9 F\nx", 400, "201,400");
    row("the begin of a line", "b 9", 400, "201");
    row("no end of a line", QByteArray(20000, 'b'), 400, "201");
    row("too large", "b 262145 F\n", 413, "201");
    row("too many", QByteArray("../b 0 F\n").repeated(64), 413,
        "201" + QByteArray(",400").repeated(63));
}

void TestBundles::refuses()
{
    QFETCH(const QByteArray, behind);
    const BundleServer server;
    const RawReply reply = server.send(bundled("a", "A") + behind);
    QTEST(reply.status().left(3).toInt(), "status");
    QTEST(reply.body, "statuses");
    QCOMPARE(server.fileContent(QStringLiteral("a")), QByteArray("A"));
    QVERIFY(!QFileInfo::exists(server.sharePath(QStringLiteral("b"))));
    QCOMPARE(server.status("POST", "/.quillon/bundle/no", bundleType, bundled("a", "A")), 404);
    QCOMPARE(server.status("POST", "/.quillon/bundle", {}, bundled("c", "A")), 415);
}

void TestBundles::keepsWhatWasWhole()
{
    const BundleServer server;
    {
        RawClient client(server.port());
        client.send(rawRequest("POST", "/.quillon/bundle", bundleType + "Content-Length: 1000\r\n")
                    + bundled("a", "whole") + "b 100 F\npart");
        QTRY_COMPARE(server.fileContent(QStringLiteral("a")), QByteArray("whole"));
    }
    QTRY_VERIFY(server.send(bundled("b", "again", "T")).body != told("423"));
    QCOMPARE(server.fileContent(QStringLiteral("b")), QByteArray("again"));
}

/// Thousands of folders take the disk a while.
void TestBundles::othersAreServedMeanwhile()
{
    const BundleServer server;
    QByteArray body;
    QByteArray last;
    for (std::size_t i = 0; i < UploadBundle::mostFiles; ++i) {
        last = QByteArray::number(int(i)) + '/' + QByteArray("d/").repeated(60) + 'f';
        body += bundled(last, QByteArray(int(i % 2), 'x'));
    }
    RawClient sender(server.port());
    sender.send(rawRequest("POST", "/.quillon/bundle", bundleType + "Connection: close\r\n", body));
    QCOMPARE(server.status("GET", "/old"), 200);
    QVERIFY(!QFileInfo::exists(server.sharePath(QString::fromUtf8(last))));
    const RawReply reply = sender.reply();
    QCOMPARE(reply.status(), QByteArray("200 OK"));
    QCOMPARE(reply.body.count("201"), int(UploadBundle::mostFiles));
    QCOMPARE(server.fileContent(QString::fromUtf8(last)), QByteArray("x"));
}

void TestBundles::rightsAndLocksCount()
{
    BundleServer server;
    QVERIFY(replyTo(server, "LOCK", "/sub/old", {}, lockBody).status().startsWith("200"));
    const QByteArray body =
        bundled("sub/old", "x", "T") + bundled("old", "new", "T") + bundled("c", "C");
    QCOMPARE(server.send(body).body, told("423,204,201"));
    server.profile->everyone = Rights(Right::See | Right::Add);
    QCOMPARE(server.send(bundled("old", "newer", "T") + bundled("d", "D")).body, told("403,201"));
    server.profile->everyone = Rights(Right::Add);
    QCOMPARE(server.send(bundled("old", "beside")).body, told("201"));
    QCOMPARE(server.fileContent(QStringLiteral("old (2)")), QByteArray("beside"));
    server.profile->everyone = Rights(Right::See | Right::Read);
    QCOMPARE(server.send(body).status(), QByteArray("403 Forbidden"));
    QCOMPARE(server.fileContent(QStringLiteral("old")), QByteArray("new"));
}

void TestBundles::fullDisk()
{
    const BundleServer server;
    const FullDisk full(1000);
    QCOMPARE(
        server.send(bundled("a", "A") + bundled("b", QByteArray(5000, 'b')) + bundled("c", "C"))
            .body,
        told("201,507,201"));
    QVERIFY(!QFileInfo::exists(server.sharePath(QStringLiteral("b"))));
}

QTEST_GUILESS_MAIN(TestBundles)
#include "tst_bundles.moc"
