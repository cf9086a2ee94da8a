#include "classic/dav/Routes.h"
#include "tests/support/LiveServer.h"

#include <QDir>
#include <QTest>

#include <utility>
#include <vector>

#include <sys/stat.h>

namespace {

Routes allRoutes()
{
    Routes rows = davRoutes();
    const Routes base = fileRoutes();
    rows.insert(rows.end(), base.begin(), base.end());
    return rows;
}

/// A header line; none for an empty value.
QByteArray destination(const QByteArray &value)
{
    return value.isEmpty() ? QByteArray() : "Destination: " + value + "\r\n";
}

} // namespace

/// The methods that answer with a status line, and COPY.
class TestMethods : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();

    void headerBlock();
    void answers_data();
    void answers();
    void refusedByProfile();
    void deleteLeavesWhatLinksLeadTo();
    void copyGoesToTheWorkingFolder_data();
    void copyGoesToTheWorkingFolder();
    void copyOfAFolder();
    void copyOfAFolderIntoItsNest();
    void moveAcrossFileSystems();
    void oneConnection();

private:
    bool isThere(const QString &name) const { return QFileInfo::exists(live->sharePath(name)); }
    RawReply ask(const QByteArray &method, const QByteArray &target, const QByteArray &headers = {},
                 const QByteArray &body = {}) const
    {
        return client->exchange(rawRequest(method, target, headers, body));
    }

    std::unique_ptr<LiveServer> live;
    std::unique_ptr<RawClient> client;
    std::unique_ptr<QTemporaryDir> workingFolder;
};

void TestMethods::init()
{
    client.reset();
    live.reset(); // before the next one: it gives the home folder back
    workingFolder = std::make_unique<QTemporaryDir>();
    QVERIFY(QDir::setCurrent(workingFolder->path()));
    live = std::make_unique<LiveServer>(allRoutes());
    live->addFile(QStringLiteral("a.txt"), "alpha");
    live->addFile(QStringLiteral("b.txt"), "beta");
    live->addFile(QStringLiteral("folder/inner.txt"), "inner");
    live->addFile(QStringLiteral("folder/sub/b.txt"), "deep");
    live->addFile(QStringLiteral("folder/.hidden"), "hidden");
    QVERIFY(QFile::link(live->sharePath(QStringLiteral("nowhere")),
                        live->sharePath(QStringLiteral("broken"))));
    live->start();
    client = std::make_unique<RawClient>(live->port());
}

void TestMethods::headerBlock()
{
    const RawReply reply = ask("OPTIONS", "/missing", "Cookie: ID=5\r\n");
    QCOMPARE(reply.head,
             QByteArray("HTTP/1.1 200 OK\r\nServer: Quillon_4\r\nCache-Control: no-cache\r\n"
                        "Set-Cookie: ID=5\r\nAccept-Ranges: bytes\r\nDAV: 1,2\r\n"
                        "Allow: GET, POST, PUT, DELETE, OPTIONS, PROPFIND, COPY, MOVE, MKCOL, "
                        "HEAD, LOCK, UNLOCK\r\nContent-Length: 0"));
}

/// Each on a fresh share. A request is a method, a target and the path of its Destination.
/// `there` and `gone` are looked for afterwards.
void TestMethods::answers_data()
{
    QTest::addColumn<QByteArray>("request");
    QTest::addColumn<QByteArray>("status");
    QTest::addColumn<QString>("there");
    QTest::addColumn<QString>("gone");
    const auto row = [](const char *name, const char *request, const char *status,
                        const char *there = "a.txt", const char *gone = "c") {
        QTest::newRow(name) << QByteArray(request) << QByteArray(status) << QString::fromUtf8(there)
                            << QString::fromUtf8(gone);
    };
    row("HEAD of a name cut at its NUL", "HEAD /a.txt%00", "404 Not Found");
    row("LOCK of a folder", "LOCK /folder/", "200 Locked");
    row("DELETE by dots inside", "DELETE /folder/../b.txt", "200 File deleted", "a.txt", "b.txt");
    row("DELETE a tree", "DELETE /folder/", "200 Dir deleted", "a.txt", "folder");
    row("DELETE a name cut at its NUL", "DELETE /a.txt%00", "200 Not exists");
    row("DELETE by dots outside", "DELETE /folder/../../a.txt", "403 Forbidden");
    row("MKCOL with missing parents", "MKCOL /folder/x/y/", "201 Created", "folder/x/y");
    row("MKCOL of an existing folder", "MKCOL /folder", "201 Created", "folder/inner.txt");
    row("MKCOL on a file", "MKCOL /a.txt", "500 MKPATH Failed");
    row("MKCOL of a name cut at its NUL", "MKCOL /c%00y", "500 MKPATH Failed");
    row("MOVE a folder", "MOVE /folder/ /moved/", "201 Created", "moved/sub/b.txt", "folder");
    row("MOVE to other letters", "MOVE /b.txt /%C3%A4%20b&%23", "201 Created", "ä b&#", "b.txt");
    row("MOVE onto a file", "MOVE /a.txt /b.txt", "412 Name exists");
    row("MOVE onto a broken link", "MOVE /a.txt /broken", "412 Name exists");
    row("MOVE a folder into itself", "MOVE /folder /folder/sub/x", "500 Rename Failed", "folder");
    row("MOVE to a name cut at its NUL", "MOVE /a.txt /c%00", "500 Rename Failed");
    row("MOVE to a path that begins nowhere", "MOVE /a.txt c", "400 Bad Request");
    row("MOVE by dots outside", "MOVE /a.txt /folder/%2e%2e/../c", "403 Forbidden");
    row("COPY nothing", "COPY /missing /c", "410 Gone");
    row("COPY to a name cut at its NUL", "COPY /a.txt /c%00", "500 File Copy Failed");
    row("COPY to a missing folder", "COPY /a.txt /missing/", "500 File Copy Failed");
    row("COPY onto itself", "COPY /a.txt http://localhost:1/a.txt", "412 Precondition Failed");
    row("COPY into its own folder", "COPY /folder/inner.txt /folder", "412 Precondition Failed");
    row("COPY without Destination", "COPY /missing", "412 Precondition Failed");
}

void TestMethods::answers()
{
    QFETCH(QByteArray, request);
    QFETCH(QString, there);
    QFETCH(QString, gone);
    const QList<QByteArray> words = request.split(' ');
    QTEST(ask(words[0], words[1], destination(words.value(2))).status(), "status");
    QVERIFY(isThere(there) && !isThere(gone));
}

void TestMethods::refusedByProfile()
{
    live->server->config->enableDelete = Qt::Unchecked;
    live->server->config->enableUpload = Qt::Unchecked;
    QCOMPARE(ask("PUT", "/new.txt").status(), QByteArray("423 Read only"));
    QCOMPARE(ask("DELETE", "/a.txt").status(), QByteArray("423 Read-only"));
    QVERIFY(isThere(QStringLiteral("a.txt")) && !isThere(QStringLiteral("new.txt")));
}

void TestMethods::deleteLeavesWhatLinksLeadTo()
{
    const QString link = live->sharePath(QStringLiteral("link"));
    for (const QByteArray target : { "/link/", "/" }) {
        QVERIFY(QFile::link(live->home.path(), link));
        // By name "link/.." is the share; behind the link it would be the folder above another.
        QCOMPARE(ask("MKCOL", "/link/../beside").status(), QByteArray("201 Created"));
        QVERIFY(isThere(QStringLiteral("beside")));
        QCOMPARE(ask("DELETE", target).status(), QByteArray("200 Dir deleted"));
        QVERIFY(!QFileInfo(link).isSymLink() && QFileInfo::exists(live->home.path()));
    }
}

/// The destination's folder is not looked at; a file that stood there is gone all the same.
void TestMethods::copyGoesToTheWorkingFolder_data()
{
    QTest::addColumn<QByteArrayList>("request");
    QTest::addColumn<QString>("made");
    QTest::addColumn<bool>("oldStays");
    const QByteArray keep = "Overwrite: F\r\n";
    const QByteArray b = "folder/sub/b.txt";
    const auto row = [](const char *name, const QByteArrayList &request, const char *made,
                        bool oldStays) {
        QTest::newRow(name) << request << QString::fromLatin1(made) << oldStays;
    };
    row("to a new name", { "201 Created", "a.txt", "/missing/c" }, "c", true);
    row("onto a file", { "204 No Content", "a.txt", "/b.txt" }, "b.txt", false);
    row("onto a file, kept", { "412 Precondition Failed", "a.txt", "/b.txt", keep }, "", true);
    row("into a folder that has the name", { "204 No Content", b, "/" }, "b.txt", false);
    row("the same, kept", { "204 No Content", b, "/", keep }, "b.txt", true);
}

void TestMethods::copyGoesToTheWorkingFolder()
{
    QFETCH(QByteArrayList, request);
    QFETCH(QString, made);
    const QByteArray source = '/' + request[1];
    const QByteArray headers = destination(request[2]) + request.value(3);
    QCOMPARE(ask("COPY", source, headers).status(), request[0]);
    QTEST(isThere(QStringLiteral("b.txt")), "oldStays");
    QCOMPARE(QDir(workingFolder->path()).entryList(QDir::Files).join(QLatin1Char(' ')), made);
    if (made.isEmpty())
        return;
    // What is taken there stays.
    const RawReply again = ask("COPY", "/folder/inner.txt", destination("/x/" + made.toLatin1()));
    QCOMPARE(again.status(), QByteArray("500 File Copy Failed"));
    QFile copy(workingFolder->filePath(made));
    QVERIFY(copy.open(QIODevice::ReadOnly));
    QCOMPARE(copy.readAll(), live->fileContent(QString::fromLatin1(source)));
}

void TestMethods::copyOfAFolder()
{
    const auto element = [this](const char *name, const char *status) {
        return "<response><href>" + QFile::encodeName(live->sharePath(QLatin1String(name)))
            + "</href><status>HTTP/1.1 " + status + "</status></response>";
    };
    for (const char *status : { "500 File copy error", "412 Precondition Failed" }) {
        const QByteArray keep = *status == '4' ? "Overwrite: F\r\n" : "";
        QCOMPARE(ask("COPY", "/folder", destination("/new") + keep).body,
                 "<?xml version=\"1.0\" encoding=\"utf-8\"?><multistatus xmlns>"
                     + element("folder/inner.txt", status) + element("folder/sub/b.txt", status)
                     + "</multistatus>");
    }
}

/// The destination nests the whole path of the source.
void TestMethods::copyOfAFolderIntoItsNest()
{
    const QString nest = QStringLiteral("new") + live->sharePath(QStringLiteral("folder"));
    const QString copy = nest + QStringLiteral("/inner.txt");
    live->addFile(copy, "outdated and longer");
    // A circle of links and a pipe would never end.
    QVERIFY(QFile::link(live->sharePath(QStringLiteral("folder")),
                        live->sharePath(QStringLiteral("folder/sub/up"))));
    const QString pipe = live->sharePath(QStringLiteral("folder/pipe"));
    QCOMPARE(::mkfifo(QFile::encodeName(pipe).constData(), 0600), 0);
    const QByteArray body = ask("COPY", "/folder", destination("/new")).body;
    QCOMPARE(body.count("<status>"), 2);
    QCOMPARE(body.count("<status>HTTP/1.1 200 OK<"), 1);
    QCOMPARE(live->fileContent(copy), QByteArray("inner"));
}

void TestMethods::moveAcrossFileSystems()
{
    QTemporaryDir other(QStringLiteral("/dev/shm/move-XXXXXX"));
    if (!other.isValid())
        QSKIP("no second file system");
    QVERIFY(QFile::link(other.path(), live->sharePath(QStringLiteral("card"))));
    QCOMPARE(ask("MOVE", "/a.txt", destination("/card/c")).status(), QByteArray("201 Created"));
    QCOMPARE(live->fileContent(QStringLiteral("card/c")), QByteArray("alpha"));
    const RawReply reply = ask("MOVE", "/folder", destination("/card/folder"));
    QCOMPARE(reply.status(), QByteArray("500 Rename Failed"));
    QVERIFY(isThere(QStringLiteral("folder/inner.txt")) && !isThere(QStringLiteral("a.txt")));
}

/// Each reply belongs to its request, whatever the one before left behind.
void TestMethods::oneConnection()
{
    const std::vector<std::pair<QByteArray, QByteArray>> exchanges{
        { rawRequest("LOCK", "/a.txt", {}, "<D:lockinfo xmlns:D='DAV:'/>"), "200 Locked" },
        { rawRequest("PUT", "/a.txt", {}, "refused"), "412 Precondition Failed" },
        { rawRequest("DELETE", "/a.txt"), "200 File deleted" },
        { rawRequest("PUT", "/a.txt", {}, "again"), "201 Created" },
        { rawRequest("COPY", "/folder", destination("/n")), "207 Multi-Status" },
        { rawRequest("COPY", "/folder/sub", destination("/n")), "207 Multi-Status" },
        { rawRequest("MOVE", "/a.txt", destination("/c.txt")), "201 Created" },
        { rawRequest("MOVE", "/b.txt"), "412 Precondition Failed" },
        { rawRequest("PROPFIND", "/c.txt"), "207 Multi-Status" },
        { rawRequest("PROPFIND", "/missing"), "404 Not Found" },
        { rawRequest("UNLOCK", "/missing"), "200 OK" },
    };
    for (const auto &exchange : exchanges)
        client->send(exchange.first);
    QByteArray bodies;
    for (const auto &exchange : exchanges) {
        const RawReply reply = client->reply();
        QCOMPARE(reply.status(), exchange.second);
        bodies += reply.body;
    }
    QCOMPARE(live->fileContent(QStringLiteral("c.txt")), QByteArray("again"));
    QCOMPARE(bodies.count("<status>HTTP/1.1 500 File copy error<"), 3);
    QCOMPARE(bodies.count("<getcontentlength>5<"), 1);
}

QTEST_GUILESS_MAIN(TestMethods)

#include "tst_methods.moc"
