#include "classic/listing/Routes.h"
#include "config/Profile.h"
#include "files/FileDescriptor.h"
#include "tests/classic/pages/Fixtures.h"
#include "tests/files/Pictures.h"
#include "tests/support/Data.h"

#include <QDateTime>

static const QByteArray asLastRequest = "User-Agent: mc\r\nConnection: close\r\n";

#include <fcntl.h>
#include <sys/stat.h>

class TestClientListing : public QObject
{
    Q_OBJECT
private Q_SLOTS:
    void init();
    void cleanup() { server.reset(); }
    void records();
    void listings_data();
    void listings();
    void oddEntries();
    void pictureReferences();
    void links();
    void foldersDeeperThanAPathCanSay();
    void requestsOnOneConnectionStartAfresh();
    void aClientThatStopsReading();

private:
    QByteArray list(const QByteArray &target) const
    {
        RawClient client(server->port());
        client.send(rawRequest("PROPFIND", target, asLastRequest));
        return client.readToEnd();
    }
    QByteArray names(const QByteArray &target) const;
    QByteArray seconds(const char *name) const
    {
        const QFileInfo file(server->sharePath(QString::fromUtf8(name)));
        return QByteArray::number(file.lastModified().toSecsSinceEpoch());
    }
    void link(const char *target, const char *name) const
    {
        QVERIFY(QFile::link(QLatin1String(target), server->sharePath(QLatin1String(name))));
    }
    void add(const QByteArray &name, const QByteArray &content = {}) const
    {
        server->addFile(QString::fromUtf8(name), content);
    }

    std::unique_ptr<LiveServer> server;
};

void TestClientListing::init()
{
    server =
        std::make_unique<LiveServer>(withFiles(listingRoutes()), QLatin1String(QUILLON_PREVIEW));
    server->profile->showImages = Qt::Unchecked;
    server->start();
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
    add("b.txt", "hello");
    add("sub/\xc3\xa4 b", "12");
    QCOMPARE(list("/"),
             "/b.txt\r\n5\r\n" + seconds("b.txt") + "\r\n\r\n/sub/\r\n" + seconds("sub")
                 + "\r\n\r\n");
    QCOMPARE(list("/sub/"),
             "/sub/\xc3\xa4 b\r\n2\r\n" + seconds("sub/\xc3\xa4 b") + "\r\n\r\n\r\n");
    QCOMPARE(list("/b.txt"), "5\r\n" + seconds("b.txt") + "\r\n\r\n");
    for (const char *missing : { "/none/", "/b.txt/", "/b.txt%00" })
        QCOMPARE(list(missing), QByteArray("\r\n"));
}

void TestClientListing::listings_data()
{
    columns<QByteArray>({ "target", "paths" });
    row("the top level", "/", "/10 /9 /_x /a/ /A1 /empty/ /z.JPG /\xc3\xa4 ");
    row("everything", "/?r=1",
        "/10 /9 /_x /a/.hidden /a/big.jpg /a/deep/x.txt /A1 /z.JPG /\xc3\xa4 ");
    row("a subfolder", "/a/", "/a/.hidden /a/big.jpg /a/deep/ ");
    row("folders pass every condition", "/?p=*.x&s1=1&s2=2&t=200001010000", "/a/ /empty/ ");
    row("a pattern in its case", "/?r=1&p=*.jpg&s=1", "/a/big.jpg ");
    row("a pattern, a size and a time", "/?r=1&p=*.jpg&s1=2&s1o=<&t=200001010000&to=>", "/z.JPG ");
}

void TestClientListing::listings()
{
    QFETCH(QByteArray, target);
    for (const char *name : { "a/.hidden", "a/deep/x.txt", "z.JPG", "A1", "\xc3\xa4", "10", "9" })
        add(name, "x");
    for (const char *name : { "a/big.jpg", "_x" })
        add(name, "large");
    QVERIFY(QDir().mkpath(server->sharePath(QStringLiteral("empty"))));
    QTEST(names(target), "paths");
}

void TestClientListing::oddEntries()
{
    for (const char *name : { "file", "line\r\nbreak", "lines\r\n/of/file", "old" })
        add(name);
    link("nowhere", "broken link");
    link("file", "link");
    link("/dev/null", "no file");
    QFile old(server->sharePath(QStringLiteral("old")));
    QVERIFY(old.open(QIODevice::ReadWrite));
    const QDateTime before1970(QDate(1960, 1, 1), QTime(0, 0));
    QVERIFY(old.setFileTime(before1970, QFileDevice::FileModificationTime));

    QCOMPARE(names("/?r=1"), QByteArray("/file /link /no file /old "));
    // Clients read 32 bits without a sign.
    QVERIFY(list("/").contains("/old\r\n0\r\n4294967295\r\n"));
}

void TestClientListing::pictureReferences()
{
    QCOMPARE(list("/?i=1"), QByteArray()); // previews from now on
    add("sub/small.png", "small");
    add("sub/broken.png", QByteArray(20000, 'x'));
    add("sub/large.png", encoded(noise(200, 200), "PNG"));
    const QByteArray making = "\r\n/_t/\r\n";
    QCOMPARE(list("/?r=1").count(making), 2);

    QTRY_VERIFY(!list("/sub/").contains(making));
    const QByteArray done =
        "\r\n/_t/" + server->sharePath().toUtf8() + "/sub/large.png\r\n/sub/small.png\r\n";
    const QByteArray all = list("/sub/");
    QVERIFY(all.contains(done) && all.endsWith("\r\n/sub/small.png\r\n\r\n"));
    QVERIFY(all.contains("/sub/broken.png\r\n20000\r\n" + seconds("sub/broken.png") + "\r\n\r\n"));
    QVERIFY(list("/sub/small.png").endsWith("\r\n/sub/small.png\r\n"));
    list("/?i=0");
    QVERIFY(!list("/sub/").contains(done));
}

void TestClientListing::links()
{
    const QTemporaryDir outside;
    QVERIFY(QDir(outside.path()).mkpath(QStringLiteral("secret/in")));
    add("a/one");
    add("b/two");
    link(".", "a/itself");
    link("..", "a/up");
    link("../b", "a/to b");
    link("../a", "b/to a");
    link(qPrintable(outside.filePath(QStringLiteral("secret/in"))), "c");
    QCOMPARE(names("/?r=1"), QByteArray("/a/one /a/to b/two /b/to a/one /b/two "));
    QCOMPARE(names("/c/../"), QByteArray("/c/../a/ /c/../b/ /c/../c/ "));
}

void TestClientListing::foldersDeeperThanAPathCanSay()
{
    const QByteArray name(200, 'd');
    FileDescriptor folder(::open(server->sharePath().toUtf8().constData(), O_PATH));
    for (int depth = 0; depth < 30; ++depth) {
        QCOMPARE(::mkdirat(folder.get(), name.constData(), 0700), 0);
        folder.reset(::openat(folder.get(), name.constData(), O_PATH));
        // Behind the folder in the order, so that the way up is needed too.
        const FileDescriptor file(::openat(folder.get(), "e", O_CREAT | O_WRONLY, 0600));
        QVERIFY(file.isOpen());
    }
    const QByteArray found = names("/?r=1&p=e");
    QCOMPARE(found.count("/e "), 30);
    QVERIFY(found.startsWith('/' + (name + '/').repeated(30) + "e "));
}

void TestClientListing::requestsOnOneConnectionStartAfresh()
{
    add("sub/file");
    QByteArray requests;
    for (const char *target : { "/?r=1&p=FILE&s1=1&s1o=<", "/?i=0", "/", "/sub/file" })
        requests += rawRequest("PROPFIND", target, "User-Agent: mc\r\n");
    RawClient client(server->port());
    client.send(requests + rawRequest("PROPFIND", "/?r=1", asLastRequest));
    const QByteArray all = list("/?r=1");
    QCOMPARE(client.readToEnd(), all + list("/") + list("/sub/file") + all);
}

void TestClientListing::aClientThatStopsReading()
{
    addManyFiles(*server);
    for (const bool returns : { true, false }) {
        RawClient client(server->port());
        QVERIFY(waitsAndServes(*server, client, rawRequest("PROPFIND", "/?r=1", asLastRequest)));
        client.socket->setReadBufferSize(0);
        if (returns)
            QCOMPARE(client.readToEnd().count("/file"), 12000);
        client.socket->abort();
        QTRY_COMPARE(server->server->connectionCount(), 0);
    }
}

QTEST_GUILESS_MAIN(TestClientListing)
#include "tst_clientlisting.moc"
