#include "classic/pages/BrowserPages.h"
#include "classic/pages/Routes.h"
#include "config/Profile.h"
#include "server/Connection.h"
#include "tests/support/LiveServer.h"

#include <QDateTime>
#include <QDir>
#include <QImage>
#include <QTest>

#include <filesystem>

namespace {

const QByteArray asClient = "User-Agent: mc\r\n";
const QByteArray asLastRequest = asClient + "Connection: close\r\n";

Routes allRoutes()
{
    Routes rows = pageRoutes();
    const Routes base = fileRoutes();
    rows.insert(rows.end(), base.begin(), base.end());
    return rows;
}

QByteArray seconds(const QString &path)
{
    return QByteArray::number(QFileInfo(path).lastModified().toSecsSinceEpoch());
}

/// `count` names of one empty file in the folder `name` of the share: quicker than as many files.
void addFiles(const LiveServer &server, const QString &name, int count)
{
    server.addFile(name + QLatin1String("/file"), {});
    const std::string first = server.sharePath(name + QLatin1String("/file")).toStdString();
    for (int i = 1; i < count; ++i)
        std::filesystem::create_hard_link(first, first + std::to_string(i));
}

} // namespace

class TestClientListing : public QObject
{
    Q_OBJECT
private Q_SLOTS:
    void init();
    void cleanup();
    void records();
    void listings_data();
    void listings();
    void orderIsTheFoldersOwn();
    void oddEntries();
    void hiddenEntriesFollowTheSession();
    void pictureReferences();
    void previewsAreSwitchedInMemory();
    void linksInALoop();
    void requestsOnOneConnectionStartAfresh();
    void aLargeTreeHoldsNobodyUp();
    void aClientThatStopsReading();
    void aClientThatGoesAway();

private:
    QByteArray list(const QByteArray &target) const;
    QByteArray names(const QByteArray &target) const;
    void addLongPaths() const;
    void answersOthers() const;

    std::unique_ptr<LiveServer> server;
};

void TestClientListing::init()
{
    server = std::make_unique<LiveServer>(allRoutes());
    server->profile->showImages = Qt::Unchecked;
    server->start();
}

void TestClientListing::cleanup()
{
    server.reset();
    BrowserPages::previews.clear();
}

QByteArray TestClientListing::list(const QByteArray &target) const
{
    RawClient client(server->port());
    client.send(rawRequest("PROPFIND", target, asLastRequest));
    return client.readToEnd();
}

/// The lines of a listing that are paths, each ended by a blank.
QByteArray TestClientListing::names(const QByteArray &target) const
{
    QByteArray paths;
    const QList<QByteArray> lines = list(target).split('\n');
    for (const QByteArray &line : lines) {
        if (line.startsWith('/'))
            paths += line.trimmed() + ' ';
    }
    return paths;
}

void TestClientListing::records()
{
    server->addFile(QStringLiteral("b.txt"), "hello");
    server->addFile(QStringLiteral("sub/\u00e4 b.txt"), "12");
    const QByteArray file = seconds(server->sharePath(QStringLiteral("b.txt")));
    const QByteArray nested = seconds(server->sharePath(QStringLiteral("sub/\u00e4 b.txt")));
    const QByteArray folder = seconds(server->sharePath(QStringLiteral("sub")));

    QCOMPARE(list("/"), "/b.txt\r\n5\r\n" + file + "\r\n\r\n/sub/\r\n" + folder + "\r\n\r\n");
    QCOMPARE(list("/sub/"), "/sub/\xc3\xa4 b.txt\r\n2\r\n" + nested + "\r\n\r\n\r\n");
    QCOMPARE(list("/b.txt"), "5\r\n" + file + "\r\n\r\n");
    QCOMPARE(list("/none/"), QByteArray("\r\n"));
    QCOMPARE(list("/b.txt/"), QByteArray("\r\n"));
    QCOMPARE(list("/b.txt%00"), QByteArray("\r\n"));
}

void TestClientListing::listings_data()
{
    QTest::addColumn<QByteArray>("target");
    QTest::addColumn<QByteArray>("paths");
    const auto row = [](const char *name, const char *target, const char *paths) {
        QTest::newRow(name) << QByteArray(target) << QByteArray(paths);
    };

    row("the top level", "/", "/a/ /empty/ /small.txt /z.JPG ");
    row("everything", "/?r=1", "/a/big.jpg /a/deep/x.txt /small.txt /z.JPG ");
    row("a subfolder", "/a/", "/a/big.jpg /a/deep/ ");
    row("a pattern", "/?p=*.jpg", "/a/ /empty/ /z.JPG ");
    row("folders pass every condition", "/?p=x&s1=1&s2=2&t=200001010000", "/a/ /empty/ ");
    row("a pattern in its case", "/?r=1&p=*.jpg&s=1", "/a/big.jpg ");
    row("a size below", "/?r=1&s1=100&s1o=<", "/a/deep/x.txt /small.txt /z.JPG ");
    row("pattern and size", "/?r=1&p=*.jpg&s1=100&s1o=>", "/a/big.jpg ");
    row("a time before all", "/?r=1&t=200001010000&to=>&p=txt", "/a/deep/x.txt /small.txt ");
}

void TestClientListing::listings()
{
    QFETCH(QByteArray, target);
    server->addFile(QStringLiteral("a/big.jpg"), QByteArray(1000, 'x'));
    server->addFile(QStringLiteral("a/deep/x.txt"), "x");
    server->addFile(QStringLiteral("small.txt"), "small");
    server->addFile(QStringLiteral("z.JPG"), "z");
    QVERIFY(QDir().mkpath(server->sharePath(QStringLiteral("empty"))));

    QTEST(names(target), "paths");
}

void TestClientListing::orderIsTheFoldersOwn()
{
    for (const char *file : { "b", "A1", "a10", "a2", "_x", "Zz", "z", "\xc3\xa4", "10", "9" })
        server->addFile(QString::fromUtf8(file), {});
    const QStringList sorted = QDir(server->sharePath()).entryList(QDir::Files);
    QCOMPARE(names("/"), "/" + sorted.join(QLatin1String(" /")).toUtf8() + " ");
}

void TestClientListing::oddEntries()
{
    const QDir share(server->sharePath());
    server->addFile(QStringLiteral("file"), {});
    server->addFile(QStringLiteral("line\r\nbreak"), {});
    server->addFile(QStringLiteral("lines\r\n/of/file"), {});
    QVERIFY(QFile::link(QStringLiteral("nowhere"), share.filePath(QStringLiteral("broken link"))));
    QVERIFY(QFile::link(QStringLiteral("file"), share.filePath(QStringLiteral("link"))));
    QFile old(share.filePath(QStringLiteral("old")));
    QVERIFY(old.open(QIODevice::WriteOnly));
    const QDateTime before1970(QDate(1960, 1, 1), QTime(0, 0));
    QVERIFY(old.setFileTime(before1970, QFileDevice::FileModificationTime));

    QCOMPARE(names("/?r=1"), QByteArray("/file /link /old "));
    // Clients read 32 bits without a sign.
    QVERIFY(list("/").contains("/old\r\n0\r\n4294967295\r\n"));
}

void TestClientListing::hiddenEntriesFollowTheSession()
{
    server->addFile(QStringLiteral(".hidden/file"), {});
    server->addFile(QStringLiteral("file"), {});
    QCOMPARE(names("/?r=1"), QByteArray("/.hidden/file /file "));

    RawClient client(server->port());
    client.exchange(rawRequest("GET", "/file"));
    server->server->connections.constFirst()->httpRequest().session()->showHidden = false;
    client.send(rawRequest("PROPFIND", "/?r=1", asLastRequest));
    QVERIFY(client.readToEnd().startsWith("/file\r\n"));
}

void TestClientListing::pictureReferences()
{
    server->profile->showImages = Qt::Checked;
    QImage picture(300, 300, QImage::Format_RGB32);
    picture.fill(Qt::red);
    const QString large = server->sharePath(QStringLiteral("sub/large.png"));
    server->addFile(QStringLiteral("sub/small.png"), "small");
    server->addFile(QStringLiteral("sub/broken.png"), QByteArray(20000, 'x'));
    QVERIFY(picture.save(large));
    QFile file(large);
    QVERIFY(file.open(QIODevice::Append) && file.resize(30000));

    const QByteArray making = "\r\n/_t/\r\n";
    const QByteArray done = "\r\n/_t/" + large.toUtf8() + "\r\n";
    const QByteArray first = list("/?r=1");
    QCOMPARE(first.count(making), 2);
    QVERIFY(first.contains("\r\n/sub/small.png\r\n\r\n"));

    QTRY_VERIFY(!list("/sub/").contains(making));
    const QByteArray last = list("/sub/");
    QVERIFY(last.contains(done));
    QVERIFY(last.startsWith("/sub/broken.png\r\n20000\r\n"));
    QVERIFY(last.contains("\r\n\r\n/sub/large.png"));
    QVERIFY(list("/sub/large.png").endsWith(done));
    QVERIFY(list("/sub/small.png").endsWith("\r\n/sub/small.png\r\n"));
}

void TestClientListing::previewsAreSwitchedInMemory()
{
    server->addFile(QStringLiteral("small.png"), "small");
    QVERIFY(server->profile->save());
    const QByteArray before = server->home.profileBytes(QStringLiteral("Global.conf"));

    QCOMPARE(list("/?i=1"), QByteArray());
    QVERIFY(server->profile->showsThumbnails());
    QVERIFY(list("/").contains("\r\n/small.png\r\n"));
    QCOMPARE(server->home.profileBytes(QStringLiteral("Global.conf")), before);
    QCOMPARE(list("/?i=0"), QByteArray());
    QVERIFY(!server->profile->showsThumbnails());
    QVERIFY(!list("/?i=").isEmpty());
}

void TestClientListing::linksInALoop()
{
    server->addFile(QStringLiteral("a/one"), {});
    server->addFile(QStringLiteral("b/two"), {});
    const QDir share(server->sharePath());
    QVERIFY(QFile::link(QStringLiteral("."), share.filePath(QStringLiteral("a/itself"))));
    QVERIFY(QFile::link(QStringLiteral(".."), share.filePath(QStringLiteral("a/up"))));
    QVERIFY(QFile::link(QStringLiteral("../b"), share.filePath(QStringLiteral("a/to b"))));
    QVERIFY(QFile::link(QStringLiteral("../a"), share.filePath(QStringLiteral("b/to a"))));

    QCOMPARE(names("/?r=1"), QByteArray("/a/one /a/to b/two /b/to a/one /b/two "));
    QVERIFY(list("/").endsWith("\r\n\r\n"));
}

void TestClientListing::requestsOnOneConnectionStartAfresh()
{
    server->addFile(QStringLiteral("sub/file"), {});
    const QByteArray everything = list("/?r=1");
    const QByteArray top = list("/");
    const QByteArray single = list("/sub/file");

    RawClient client(server->port());
    client.send(rawRequest("PROPFIND", "/?r=1&p=FILE&s1=1&s1o=<", asClient)
                + rawRequest("PROPFIND", "/?i=0", asClient) + rawRequest("PROPFIND", "/", asClient)
                + rawRequest("PROPFIND", "/?r=1&s1=0", asClient)
                + rawRequest("PROPFIND", "/sub/file", asLastRequest));
    QCOMPARE(client.readToEnd(), everything + top + everything + single);
}

/// Records of more than 1 KB, so that a few thousand fill every buffer on the way.
void TestClientListing::addLongPaths() const
{
    const QString longName = QString(240, QLatin1Char('x')) + QLatin1Char('/');
    addFiles(*server, longName.repeated(4), 15000);
}

void TestClientListing::answersOthers() const
{
    server->addFile(QStringLiteral("page"), "hello");
    RawClient other(server->port());
    QCOMPARE(other.exchange(rawRequest("GET", "/page")).body, QByteArray("hello"));
    other.send(rawRequest("PROPFIND", "/page", asLastRequest));
    QVERIFY(other.readToEnd().startsWith("5\r\n"));
}

void TestClientListing::aLargeTreeHoldsNobodyUp()
{
    for (int i = 0; i < 30; ++i)
        addFiles(*server, QStringLiteral("folder %1").arg(i), 1000);
    RawClient client(server->port());
    client.send(rawRequest("PROPFIND", "/?r=1&p=file", asLastRequest));
    answersOthers();
    const qint64 sentByThen = server->server->sentBytes();

    const QByteArray listing = client.readToEnd();
    QCOMPARE(listing.count("/file"), 30000);
    QVERIFY2(sentByThen < listing.size() / 2, QByteArray::number(sentByThen).constData());
}

void TestClientListing::aClientThatStopsReading()
{
    addLongPaths();
    RawClient client(server->port());
    client.socket->setReadBufferSize(1);
    client.send(rawRequest("PROPFIND", "/?r=1", asLastRequest));
    QTRY_COMPARE(server->server->connectionCount(), 1);
    Channel &channel = server->server->connections.constFirst()->httpRequest().channel;
    QTRY_VERIFY(channel.isCongested());

    answersOthers();
    QVERIFY(channel.isCongested());
    QVERIFY(channel.socket().bytesToWrite() < 1200000);

    client.socket->setReadBufferSize(0);
    QCOMPARE(client.readToEnd().count("/file"), 15000);
}

void TestClientListing::aClientThatGoesAway()
{
    addLongPaths();
    for (const bool whilePaused : { false, true }) {
        RawClient client(server->port());
        client.socket->setReadBufferSize(1);
        client.send(rawRequest("PROPFIND", "/?r=1", asLastRequest));
        QTRY_COMPARE(server->server->connectionCount(), 1);
        Channel &channel = server->server->connections.constFirst()->httpRequest().channel;
        QTRY_VERIFY(whilePaused ? channel.isCongested() : client.socket->bytesAvailable() > 0);

        client.socket->abort();
        answersOthers();
        QTRY_COMPARE(server->server->connectionCount(), 0);
    }
}

QTEST_GUILESS_MAIN(TestClientListing)
#include "tst_clientlisting.moc"
