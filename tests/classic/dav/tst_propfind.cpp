#include "classic/dav/Routes.h"
#include "tests/support/LiveServer.h"

#include <QDir>
#include <QProcess>
#include <QSslSocket>
#include <QTest>
#include <QUrl>

#include <ctime>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace {

constexpr std::time_t may5th = 1777961106; ///< Tue, 5 May 2026 06:05:06 UTC

void setModified(const QString &path, std::time_t seconds)
{
    const timespec times[2] = { { seconds, 0 }, { seconds, 0 } };
    QCOMPARE(::utimensat(AT_FDCWD, QFile::encodeName(path).constData(), times, 0), 0);
}

QByteArray depth(const char *value)
{
    return QByteArray("Depth: ") + value + "\r\n";
}

} // namespace

class TestPropFind : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();

    void documents();
    void prefix();
    void depthOf();
    void notFound();
    void leavesOut();
    void hrefsAreUrls();
    void addressOfHrefs();
    void hrefsOverTls();

private:
    RawReply ask(const QByteArray &target, const QByteArray &headers = {},
                 const QByteArray &body = {}) const
    {
        RawClient client(live->port());
        return client.exchange(rawRequest("PROPFIND", target, headers, body));
    }
    QByteArray base() const { return "http://127.0.0.1:" + QByteArray::number(live->port()); }
    QByteArrayList paths(const QByteArray &document) const;

    std::unique_ptr<LiveServer> live;
};

void TestPropFind::init()
{
    qputenv("TZ", "QST-2");
    ::tzset();
    live.reset(); // before the next one: it gives the home folder back
    live = std::make_unique<LiveServer>(davRoutes());
    live->addFile(QStringLiteral("folder/b.txt"), "four");
    QVERIFY(QDir().mkpath(live->sharePath(QStringLiteral("folder/Sub"))));
    QVERIFY(QDir().mkpath(live->sharePath(QStringLiteral("empty"))));
    live->start();
}

/// The hrefs of a document without what they all begin with.
QByteArrayList TestPropFind::paths(const QByteArray &document) const
{
    const QByteArray start = "href>" + base();
    QByteArrayList found;
    const QByteArrayList tags = document.split('<');
    for (const QByteArray &tag : tags) {
        if (tag.startsWith(start))
            found.append(tag.mid(start.size()));
    }
    return found;
}

void TestPropFind::documents()
{
    const auto placed = [this](QByteArray text) { return text.replace("(base)", base()); };
    setModified(live->sharePath(QStringLiteral("folder/b.txt")), may5th);
    setModified(live->sharePath(QStringLiteral("folder/Sub")), may5th + 8 * 86400);
    const qint64 size = QFileInfo(live->sharePath(QStringLiteral("folder/Sub"))).size();

    const RawReply reply = ask("/folder", depth("1"), "<D:propfind xmlns:D=\"DAV:\"/>");
    QCOMPARE(reply.status(), QByteArray("207 Multi-Status"));
    QCOMPARE(reply.header("Content-Type"), QByteArray("Content-Type: text/xml; charset=\"utf-8\""));
    QCOMPARE(reply.body,
             placed("<?xml version=\"1.0\" encoding=\"utf-8\"?><D:multistatus xmlns:D=\"DAV:\">"
                    "<D:response><D:href>(base)/folder/Sub</D:href><D:propstat><D:prop>"
                    "<D:getlastmodified>Wed, 13 May 2026 08:05:06 GMT</D:getlastmodified>"
                    "<D:resourcetype><D:collection/></D:resourcetype><D:getcontentlength>"
                    + QByteArray::number(size)
                    + "</D:getcontentlength></D:prop><D:status>HTTP/1.1 200 OK</D:status>"
                      "</D:propstat></D:response><D:response><D:href>(base)/folder/b.txt</D:href>"
                      "<D:propstat><D:prop>"
                      "<D:getlastmodified>Tue, 5 May 2026 08:05:06 GMT</D:getlastmodified>"
                      "<D:getcontentlength>4</D:getcontentlength></D:prop>"
                      "<D:status>HTTP/1.1 200 OK</D:status></D:propstat></D:response>"
                      "</D:multistatus>"));
    QCOMPARE(ask("/folder/b.txt", depth("0")).body,
             placed("<?xml version=\"1.0\" encoding=\"utf-8\"?><multistatus xmlns=\"DAV:\">"
                    "<response><href>(base)/folder/b.txt</href><propstat><prop>"
                    "<getlastmodified>Tue, 5 May 2026 08:05:06 GMT</getlastmodified>"
                    "<getcontentlength>4</getcontentlength></prop>"
                    "<status>HTTP/1.1 200 OK</status></propstat></response></multistatus>"));
}

void TestPropFind::prefix()
{
    const QByteArray start = "<?xml version=\"1.0\" encoding=\"utf-8\"?>";
    QCOMPARE(ask("/empty/", {}, "<dav:propfind >").body,
             start + "<v:multistatus xmlns:v=\"DAV:\"></v:multistatus>");
    // Anything but a letter would spoil the document.
    for (const char *body : { "<D:propfind\n", "<ns0:propfind >", "<:propfind ", ":propfind " })
        QCOMPARE(ask("/empty/", {}, body).body,
                 start + "<multistatus xmlns=\"DAV:\"></multistatus>");
}

void TestPropFind::depthOf()
{
    const QByteArray folder = "/folder";
    const QByteArrayList entries{ "/folder/Sub", "/folder/b.txt" };
    QCOMPARE(paths(ask("/", depth("0")).body), QByteArrayList{ "/" });
    for (const char *value : { "0", "10" })
        QCOMPARE(paths(ask("/folder/", depth(value)).body), QByteArrayList{ folder });
    for (const char *value : { "1", "infinity", "-%s\xff" })
        QCOMPARE(paths(ask(folder, depth(value)).body), entries);
    QCOMPARE(paths(ask(folder).body), QByteArrayList{ folder });
    QCOMPARE(paths(ask("//folder/./Sub/../").body), entries);
    QCOMPARE(paths(ask("/folder/b.txt", depth("1")).body), QByteArrayList{ "/folder/b.txt" });
}

void TestPropFind::notFound()
{
    const QString pipe = live->sharePath(QStringLiteral("pipe"));
    QCOMPARE(::mkfifo(QFile::encodeName(pipe).constData(), 0600), 0);
    const QByteArray tooLong = '/' + QByteArray(300, 'n');
    for (const QByteArray &target : { QByteArray("/pipe"), QByteArray("/folder%00"), tooLong }) {
        for (const char *value : { "0", "1" })
            QCOMPARE(ask(target, depth(value)).status(), QByteArray("404 Not Found"));
    }
}

void TestPropFind::leavesOut()
{
    const QByteArray folder = QFile::encodeName(live->sharePath(QStringLiteral("empty/")));
    QCOMPARE(::mkfifo((folder + "pipe").constData(), 0600), 0);
    QCOMPARE(::mkdir((folder + "na\xefve").constData(), 0700), 0);
    QCOMPARE(::symlink("nowhere", (folder + "broken").constData()), 0);
    QCOMPARE(::symlink("../folder", (folder + "link").constData()), 0);
    live->addFile(QStringLiteral("empty/.hidden"), {});
    const QByteArray document = ask("/empty/").body;
    QCOMPARE(::rmdir((folder + "na\xefve").constData()), 0);
    QCOMPARE(paths(document), QByteArrayList{ "/empty/link" });
    QVERIFY(document.contains("<collection/>"));

    live->server->config->showFolders = Qt::Unchecked;
    QCOMPARE(paths(ask("/folder", depth("1")).body), QByteArrayList{ "/folder/b.txt" });
    QCOMPARE(paths(ask("/folder", depth("0")).body), QByteArrayList{ "/folder" });
}

void TestPropFind::hrefsAreUrls()
{
    live->addFile(QStringLiteral("empty/ &%41#?;\"<>\\\nü😀+~.txt"), {});
    QCOMPARE(paths(ask("/empty/").body),
             QByteArrayList{ "/empty/%20%26%2541%23%3F;%22%3C%3E%5C%0A%C3%BC%F0%9F%98%80+~.txt" });
}

/// On a socket for both families an IPv4 address arrives in the clothes of IPv6.
void TestPropFind::addressOfHrefs()
{
    QNetworkAddressEntry entry;
    entry.setIp(QHostAddress::Any);
    WebServer server(entry, live->profile,
                     std::make_shared<ServerSetup>(
                         ServerSetup{ davRoutes(), &live->sink, live->home.directories }));
    server.setShared(live->sharePath());
    server.port = 0;
    QVERIFY(server.start());
    for (const QByteArray host : { "127.0.0.1", "[::1]" }) {
        QTcpSocket peer;
        peer.connectToHost(QUrl(QLatin1String("http://") + QLatin1String(host)).host(),
                           server.port);
        if (!peer.waitForConnected())
            QSKIP("this machine has no such address");
        peer.write(rawRequest("PROPFIND", "/", depth("0")));
        QByteArray received;
        QTRY_VERIFY((received += peer.readAll()).endsWith("</multistatus>"));
        const QByteArray address = host + ':' + QByteArray::number(server.port);
        QVERIFY2(received.contains("<href>http://" + address + "/</href>"), received.constData());
    }
}

void TestPropFind::hrefsOverTls()
{
    const QString home = live->home.path();
    const QString arguments =
        QStringLiteral("req -x509 -nodes -subj /CN=test -keyout %1/key -out %1/certificate");
    QProcess openssl;
    openssl.start(QStringLiteral("openssl"), arguments.arg(home).split(QLatin1Char(' ')));
    QVERIFY(openssl.waitForFinished());
    live->profile->privateKeyFile = home + QLatin1String("/key");
    live->profile->publicKeyFile = home + QLatin1String("/certificate");
    live->profile->sslMode = Qt::Checked;
    live->server->profileEdited(live->profile);

    auto socket = std::make_unique<QSslSocket>();
    QSslSocket *tls = socket.get();
    tls->setPeerVerifyMode(QSslSocket::VerifyNone);
    connect(tls, &QAbstractSocket::connected, tls, &QSslSocket::startClientEncryption);
    RawClient client(live->port(), std::move(socket));
    QTRY_VERIFY(tls->isEncrypted());
    const QByteArray body = client.exchange(rawRequest("PROPFIND", "/", depth("0"))).body;
    QVERIFY2(body.contains("<href>https://127.0.0.1:"), body.constData());
}

QTEST_GUILESS_MAIN(TestPropFind)

#include "tst_propfind.moc"
