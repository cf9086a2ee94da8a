#include "tests/classic/dav/DavTest.h"
#include "tests/support/Data.h"

#include <QElapsedTimer>

#include <ctime>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace {

const QByteArray declaration = "<?xml version=\"1.0\" encoding=\"utf-8\"?>";

void setModified(const QString &path, std::time_t seconds)
{
    const timespec times[2] = { { seconds, 0 }, { seconds, 0 } };
    QCOMPARE(::utimensat(AT_FDCWD, QFile::encodeName(path).constData(), times, 0), 0);
}

} // namespace

class TestPropFind : public DavTest
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void document();
    void prefixes();
    void resources_data();
    void resources();
    void largeFolder();
    void aCrowdLeavesTimeForOthers();
    void addressOfHrefs();

private:
    QByteArray base() const { return "http://127.0.0.1:" + QByteArray::number(live->port()); }
};

void TestPropFind::initTestCase()
{
    qputenv("TZ", "QST-2");
    ::tzset();
}

void TestPropFind::document()
{
    constexpr std::time_t may5th = 1777961106; // Tue, 5 May 2026 06:05:06 UTC
    setModified(path("folder/inner.txt"), may5th);
    setModified(path("folder/sub"), may5th + 8 * 86400);
    const qint64 size = QFileInfo(path("folder/sub")).size();
    const RawReply reply =
        ask("PROPFIND", "/folder", "Depth: 1\r\n", "<D:propfind xmlns:D=\"DAV:\"/>");
    QCOMPARE(reply.status(), QByteArray("207 Multi-Status"));
    QCOMPARE(reply.header("Content-Type"), QByteArray("Content-Type: text/xml; charset=\"utf-8\""));
    const QByteArray href = "<D:response><D:href>" + base() + "/folder/";
    const QByteArray date = "</D:href><D:propstat><D:prop><D:getlastmodified>";
    const QByteArray length = "<D:getcontentlength>";
    const QByteArray end = "</D:getcontentlength></D:prop><D:status>HTTP/1.1 200 OK</D:status>"
                           "</D:propstat></D:response>";
    QCOMPARE(reply.body,
             declaration + "<D:multistatus xmlns:D=\"DAV:\">" + href + "inner.txt" + date
                 + "Tue, 5 May 2026 08:05:06 GMT</D:getlastmodified>" + length + '5' + end + href
                 + "sub" + date + "Wed, 13 May 2026 08:05:06 GMT</D:getlastmodified>"
                 + "<D:resourcetype><D:collection/></D:resourcetype>" + length
                 + QByteArray::number(size) + end + "</D:multistatus>");
    live->profile->showFolders = Qt::Unchecked;
    QCOMPARE(ask("PROPFIND", "/folder/").body.count("<response>"), 1);
}

void TestPropFind::prefixes()
{
    QVERIFY(QDir().mkdir(path("empty")));
    QCOMPARE(ask("PROPFIND", "/empty/", {}, "<dav:propfind >").body,
             declaration + "<v:multistatus xmlns:v=\"DAV:\"></v:multistatus>");
    // Anything but a letter would spoil the document.
    for (const char *body : { "<D:propfind\n", "<ns0:propfind >", "<:propfind ", ":propfind " })
        QCOMPARE(ask("PROPFIND", "/empty/", {}, body).body,
                 declaration + "<multistatus xmlns=\"DAV:\"></multistatus>");
}

/// `found` are the paths of the answer, none for "404 Not Found".
void TestPropFind::resources_data()
{
    columnsOf<QByteArray, QByteArray, QByteArrayList>("target", "depth", "found");
    const QByteArrayList folder{ "/folder" };
    const QByteArrayList content{ "/folder/inner.txt", "/folder/sub" };
    row("top alone", "/", "0", QByteArrayList{ "/" });
    row("folder alone", "/folder/", "0", folder);
    row("no depth", "/folder", "", folder);
    row("content", "/folder", "1", content);
    row("content by a useless depth", "/folder", "-%s\xff", content);
    row("content of a file", "/a.txt", "1", QByteArrayList{ "/a.txt" });
    row("only what can be asked for", "/odd", "1",
        QByteArrayList{ "/odd/%20%26%2541%23%3F;%22%3C%3E%5C%0A%C3%BC%F0%9F%98%80+~",
                        "/odd/link" });
    row("broken link", "/broken", "1", QByteArrayList());
    row("pipe", "/odd/pipe", "0", QByteArrayList());
    row("name cut at its NUL", "/folder%00", "1", QByteArrayList());
}

void TestPropFind::resources()
{
    QFETCH(QByteArray, target);
    QFETCH(QByteArray, depth);
    QFETCH(QByteArrayList, found);
    live->addFile(QString::fromUtf8("odd/ &%41#?;\"<>\\\nü😀+~"), {});
    live->addFile(QStringLiteral("odd/.hidden"), {});
    const QByteArray odd = QFile::encodeName(path("odd/"));
    QCOMPARE(::mkfifo((odd + "pipe").constData(), 0600), 0);
    QCOMPARE(::mkdir((odd + "na\xefve").constData(), 0700), 0); // another system's letters
    QVERIFY(QFile::link(QStringLiteral("nowhere"), path("odd/broken")));
    QVERIFY(QFile::link(QStringLiteral("../folder"), path("odd/link")));
    QVERIFY(QFile::link(live->home.directories.profiles, path("odd/profiles")));
    const RawReply reply =
        ask("PROPFIND", target, depth.isEmpty() ? depth : "Depth: " + depth + "\r\n");
    QCOMPARE(::rmdir((odd + "na\xefve").constData()), 0);
    QCOMPARE(reply.status(), QByteArray(found.isEmpty() ? "404 Not Found" : "207 Multi-Status"));
    QCOMPARE(reply.body.count("<href>"), found.size());
    auto position = reply.body.indexOf('<');
    for (const QByteArray &resource : found) {
        position = reply.body.indexOf("<href>" + base() + resource + "</href>", position);
        QVERIFY2(position > 0, reply.body.constData());
    }
}

/// What a client does not take is not made, and others are served meanwhile.
void TestPropFind::largeFolder()
{
    constexpr int files = 20000;
    const QString name = QStringLiteral("large/") + QString(200, QLatin1Char('%'));
    QVERIFY(QDir().mkdir(path("large")));
    for (int i = 0; i < files; ++i)
        QVERIFY(QFile(live->sharePath(name + QString::number(i))).open(QIODevice::WriteOnly));
    RawClient lazy(live->port());
    lazy.socket->setReadBufferSize(1);
    lazy.send(rawRequest("PROPFIND", "/large/"));
    QTRY_VERIFY(live->server->sentBytes() > 100000);
    QCOMPARE(ask("PROPFIND", "/a.txt").status(), QByteArray("207 Multi-Status"));
    QVERIFY(live->server->sentBytes() < files * 500);
    lazy.socket->setReadBufferSize(0);
    const QByteArray body = lazy.reply().body;
    QCOMPARE(body.count("<href>"), files);
    QVERIFY(body.endsWith("</response></multistatus>"));
    QCOMPARE(ask("DELETE", "/large").status(), QByteArray("200 Dir deleted"));
}

void TestPropFind::aCrowdLeavesTimeForOthers()
{
    QVERIFY(QDir().mkdir(path("large")));
    for (int i = 0; i < 5000; ++i)
        QVERIFY(QFile(path("large/" + QByteArray::number(i))).open(QIODevice::WriteOnly));
    std::vector<std::unique_ptr<RawClient>> crowd;
    for (int i = 0; i < 300; ++i)
        crowd.push_back(std::make_unique<RawClient>(live->port()));
    for (const auto &one : crowd)
        one->send(rawRequest("PROPFIND", "/large/"));
    QElapsedTimer clock;
    clock.start();
    for (int i = 0; i < 10; ++i)
        QCOMPARE(ask("PROPFIND", "/a.txt").status(), QByteArray("207 Multi-Status"));
    QVERIFY2(clock.elapsed() < 1000, qPrintable(QString::number(clock.elapsed())));
}

/// On a socket for both families an IPv4 address arrives in the clothes of IPv6.
void TestPropFind::addressOfHrefs()
{
    QNetworkAddressEntry entry;
    entry.setIp(QHostAddress::Any);
    WebServer server(entry, live->profile, live->engine.setup());
    server.setShared(live->sharePath());
    QVERIFY(server.start());
    const QByteArray href =
        "<href>http://127.0.0.1:" + QByteArray::number(server.port) + "/</href>";
    RawClient peer(server.port);
    QVERIFY(peer.exchange(rawRequest("PROPFIND", "/", "Depth: 0\r\n")).body.contains(href));
}

QTEST_GUILESS_MAIN(TestPropFind)

#include "tst_propfind.moc"
