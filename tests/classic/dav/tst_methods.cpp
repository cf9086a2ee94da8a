#include "tests/classic/dav/DavTest.h"
#include "tests/support/Data.h"

#include <utility>
#include <vector>

#include <sys/stat.h>

/// The methods that answer with a status line, and COPY.
class TestMethods : public DavTest
{
    Q_OBJECT

private Q_SLOTS:
    void answers_data();
    void answers();
    void copyOfAFolder();
    void moveAcrossFileSystems();
    void oneConnection();
};

/// Each on a fresh share, which holds the working folder. A request is a method, a target, the path
/// of its Destination and its Overwrite. `there` and `gone` are looked for afterwards.
void TestMethods::answers_data()
{
    columns<QByteArray>({ "request", "status", "there", "gone" });
    const auto row = [](const char *name, const QByteArray &request, const QByteArray &status,
                        const QByteArray &there = "a.txt", const QByteArray &gone = "cwd/c") {
        QTest::newRow(name) << request << status << there << gone;
    };
    row("DELETE a file as a folder", "DELETE /b.txt/", "200 File deleted", "a.txt", "b.txt");
    row("DELETE a broken link", "DELETE /broken", "200 File deleted", "a.txt", "broken");
    row("DELETE a link", "DELETE /link/", "200 Dir deleted", "folder/sub/b.txt", "link");
    row("DELETE a tree", "DELETE /folder/", "200 Dir deleted", "a.txt", "folder");
    row("DELETE all", "DELETE /", "200 Dir deleted", "", "a.txt");
    row("DELETE a name cut at its NUL", "DELETE /a.txt%00", "200 Not exists");
    row("MKCOL with missing parents", "MKCOL /folder/x/y/", "201 Created", "folder/x/y");
    row("MKCOL by dots behind a link", "MKCOL /link/../x", "201 Created", "x", "folder/x");
    row("MKCOL on a file", "MKCOL /a.txt", "500 MKPATH Failed");
    row("MOVE a folder", "MOVE /folder/ /moved/", "201 Created", "moved/sub/b.txt", "folder");
    row("MOVE to other letters", "MOVE /b.txt /%C3%A4%20b&%23", "201 Created", "ä b&#", "b.txt");
    row("MOVE onto a file", "MOVE /missing /b.txt", "412 Name exists");
    row("MOVE onto a broken link", "MOVE /a.txt /broken", "412 Name exists");
    row("MOVE a folder into itself", "MOVE /folder /folder/sub/x", "500 Rename Failed", "folder");
    row("COPY nothing", "COPY /missing /c", "410 Gone");
    row("COPY to a missing folder", "COPY /a.txt /missing/", "500 File Copy Failed");
    row("COPY onto itself", "COPY /a.txt http://localhost:1/a.txt", "412 Precondition Failed");
    row("COPY into its own folder", "COPY /folder/inner.txt /folder", "412 Precondition Failed");
    row("COPY to a new name", "COPY /a.txt /missing/c", "201 Created", "cwd/c", "missing");
    row("COPY onto a file", "COPY /a.txt /b.txt", "204 No Content", "cwd/b.txt", "b.txt");
    row("COPY onto a file, kept", "COPY /a.txt /b.txt F", "412 Precondition Failed", "b.txt");
    row("COPY into a folder", "COPY /link/b.txt /", "204 No Content", "cwd/b.txt", "b.txt");
    row("COPY onto a taken name", "COPY /b.txt /a.txt", "500 File Copy Failed", "a.txt");
    row("COPY without Destination", "COPY /missing", "412 Precondition Failed");
}

void TestMethods::answers()
{
    live->addFile(QStringLiteral("cwd/a.txt"), "taken");
    QVERIFY(QDir::setCurrent(path("cwd")));
    QFETCH(QByteArray, request);
    QFETCH(QByteArray, there);
    QFETCH(QByteArray, gone);
    const QList<QByteArray> words = request.split(' ');
    const QByteArray keep = words.size() > 3 ? "Overwrite: " + words[3] + "\r\n" : "";
    QTEST(ask(words[0], words[1], destination(words.value(2)) + keep).status(), "status");
    QVERIFY((there.isEmpty() || isThere(there)) && !isThere(gone));
}

/// The destination nests the names of the folders and then the whole path of each source; folders
/// are not made.
void TestMethods::copyOfAFolder()
{
    const QString inner = QStringLiteral("new") + path("folder/inner.txt");
    const QString deep = QStringLiteral("new/sub") + path("folder/sub/b.txt");
    live->addFile(inner, "outdated and longer");
    // A circle of links and a pipe would never end.
    QVERIFY(QFile::link(path("folder"), path("folder/sub/up")));
    QCOMPARE(::mkfifo(QFile::encodeName(path("folder/pipe")).constData(), 0600), 0);
    const auto element = [this](const char *name, const QByteArray &status) {
        return "<response><href>" + QFile::encodeName(path(name)) + "</href><status>HTTP/1.1 "
            + status + "</status></response>";
    };
    const std::vector<QByteArrayList> exchanges{
        { "Overwrite: F\r\n", "412 Precondition Failed", "412 Precondition Failed" },
        { "", "200 OK", "500 File copy error" },
        { "", "200 OK", "200 OK" },
    };
    for (const QByteArrayList &row : exchanges) {
        QCOMPARE(ask("COPY", "/folder", destination("/new") + row[0]).body,
                 "<?xml version=\"1.0\" encoding=\"utf-8\"?><multistatus xmlns>"
                     + element("folder/inner.txt", row[1]) + element("folder/sub/b.txt", row[2])
                     + "</multistatus>");
        if (row[0].isEmpty())
            QVERIFY(QDir().mkpath(QFileInfo(live->sharePath(deep)).path()));
    }
    QCOMPARE(live->fileContent(inner), QByteArray("inner"));
    QCOMPARE(live->fileContent(deep), QByteArray("deep"));
}

void TestMethods::moveAcrossFileSystems()
{
    const QTemporaryDir other(QStringLiteral("/dev/shm/move-XXXXXX"));
    if (!other.isValid())
        QSKIP("no second file system");
    QVERIFY(QFile::link(other.path(), path("card")));
    QCOMPARE(ask("MOVE", "/a.txt", destination("/card/c")).status(), QByteArray("201 Created"));
    QCOMPARE(content("card/c"), QByteArray("alpha"));
    QCOMPARE(ask("MOVE", "/folder", destination("/card/folder")).status(),
             QByteArray("500 Rename Failed"));
    QVERIFY(isThere("folder/inner.txt") && !isThere("a.txt"));
}

/// Each reply belongs to its request, whatever the one before left behind.
void TestMethods::oneConnection()
{
    QCOMPARE(ask("OPTIONS", "/missing", "Cookie: ID=5\r\n").head,
             QByteArray("HTTP/1.1 200 OK\r\nServer: Quillon_4\r\nCache-Control: no-cache\r\n"
                        "Set-Cookie: ID=5\r\nAccept-Ranges: bytes\r\nDAV: 1,2\r\n"
                        "Allow: GET, POST, PUT, DELETE, OPTIONS, PROPFIND, COPY, MOVE, MKCOL, "
                        "HEAD, LOCK, UNLOCK\r\nContent-Length: 0"));
    const std::vector<std::pair<QByteArray, QByteArray>> exchanges{
        { rawRequest("LOCK", "/a.txt", {}, "<D:lockinfo xmlns:D='DAV:'/>"), "200 Locked" },
        { rawRequest("PUT", "/a.txt", {}, "refused"), "412 Precondition Failed" },
        { rawRequest("DELETE", "/a.txt"), "200 File deleted" },
        { rawRequest("PUT", "/a.txt", {}, "again"), "201 Created" },
        { rawRequest("MOVE", "/a.txt", destination("/c.txt")), "201 Created" },
        { rawRequest("UNLOCK", "/missing"), "200 OK" },
    };
    for (const auto &[request, status] : exchanges)
        client->send(request);
    for (const auto &[request, status] : exchanges)
        QCOMPARE(client->reply().status(), status);
    QCOMPARE(content("c.txt"), QByteArray("again"));
}

QTEST_GUILESS_MAIN(TestMethods)

#include "tst_methods.moc"
