#include "files/HiddenUploads.h"
#include "files/Share.h"
#include "standard/http/Patch.h"
#include "standard/web/RemovedEntries.h"
#include "standard/web/Routes.h"
#include "tests/standard/StandardTest.h"
#include "tests/support/Data.h"
#include "tests/support/FullDisk.h"

#include <QDateTime>
#include <QDir>
#include <QStorageInfo>
#include <QTest>

#include <sys/stat.h>
#include <unistd.h>
#include <utime.h>

namespace standard {
namespace {

/// "late" is locked by others as soon as work on it has begun.
class TestGuard final : public Guard
{
public:
    std::optional<Refusal> refusal(const Exchange &, const std::vector<Change> &changes) override
    {
        for (const Change &change : changes) {
            if (change.path == "late" && asked++ > 0)
                return Refusal{ Status::Locked };
        }
        return {};
    }

    int asked = 0; ///< about "late"
};

QByteArray destination(const char *path)
{
    return QByteArray("Destination: ") + path + "\r\n";
}

} // namespace

class TestChanges : public QObject
{
    Q_OBJECT
private Q_SLOTS:
    void putMakesAndReplaces();
    void putIsRefusedBeforeItsBody_data();
    void putIsRefusedBeforeItsBody();
    void putsInOneStream();
    void brokenUploadLeavesOldFile();
    void brokenChunksLeaveOldFile();
    void timeOfUploadAndCopy();
    void updateRanges();
    void patchWritesInPlace();
    void deleteFolders();
    void deletedComesBack();
    void padIsShared();
    void copyAndMove_data();
    void copyAndMove();
    void failedCopyKeepsOldTree();
    void guardIsAskedAgainInTheEnd();
    void whatOthersSaveMeanwhileStays();
    void quittingLeavesOldTree();
    void requestStaysWithWhatWasServed();
    void namesOfUploadsAreKept();
    void moveToAnotherFileSystem();
    void optionsTellWhatWorks();
};

void TestChanges::putMakesAndReplaces()
{
    StandardServer server;
    const RawReply made = replyTo(server, "PUT", "/a%C3%A4.txt", {}, "one");
    QCOMPARE(made.status(), QByteArray("201 Created"));
    const QString path = server.sharePath(QString::fromUtf8("a\xc3\xa4.txt"));
    QCOMPARE(readFile(path), QByteArray("one"));
    ::chmod(QFile::encodeName(path).constData(), 0640);

    const QByteArray tag = made.header("ETag");
    const RawReply get = replyTo(server, "GET", "/a%C3%A4.txt");
    // Of the mode alone, the tag of another version.
    QVERIFY(!tag.isEmpty() && get.header("ETag") != tag);
    const RawReply replaced =
        replyTo(server, "PUT", "/a%C3%A4.txt", "If-Match: " + get.header("ETag") + "\r\n", "two");
    QCOMPARE(replaced.status(), QByteArray("204 No Content"));
    QCOMPARE(readFile(path), QByteArray("two"));
    QCOMPARE(int(QFile::permissions(path)) & 0xfff, 0x640);
    QCOMPARE(replyTo(server, "HEAD", "/a%C3%A4.txt").header("ETag"), replaced.header("ETag"));
    QCOMPARE(server.status("PUT", "/empty"), 201);
}

void TestChanges::putIsRefusedBeforeItsBody_data()
{
    columnsOf<QByteArray, QByteArray, int>("target", "headers", "status");

    row("stands already", "/a", "If-None-Match: *\r\n", 412);
    row("missing", "/new", "If-Match: *\r\n", 412);
    row("part", "/a", "Content-Range: bytes 0-1/2\r\n", 400);
    row("no such folder", "/no/a", "", 409);
    row("folder", "/f", "", 405);
    row("name of a folder", "/new/", "", 405);
    row("what is shared", "/", "", 405);
    row("larger than the disk", "/new",
        "Transfer-Encoding: chunked\r\nX-Expected-Entity-Length: 9000000000000000\r\n", 507);
}

void TestChanges::putIsRefusedBeforeItsBody()
{
    QFETCH(const QByteArray, target);
    QFETCH(QByteArray, headers);
    StandardServer server;
    server.addFile(QStringLiteral("a"), "old");
    server.addFile(QStringLiteral("f/x"), "x");
    if (!headers.contains("chunked"))
        headers += "Content-Length: 3\r\n";
    RawClient client(server.port());
    const RawReply reply =
        client.exchange(rawRequest("PUT", target, headers + "Expect: 100-continue\r\n"));
    QTEST(reply.status().left(3).toInt(), "status");
    QCOMPARE(server.fileContent(QStringLiteral("a")), QByteArray("old"));
    QVERIFY(!QFile::exists(server.sharePath(QStringLiteral("new"))));
}

/// Each has to end at its own last byte, and none has one of another that the disk did not take.
void TestChanges::putsInOneStream()
{
    const StandardServer server;
    const QByteArray large = QByteArray(99, 'x').repeated(9999);
    RawClient client(server.port());
    {
        const FullDisk disk(100000);
        client.send(rawRequest("PUT", "/1", {}, large));
        QCOMPARE(client.reply().status(), QByteArray("507 Insufficient Storage"));
    }
    client.send(rawRequest("PUT", "/2", {}, large) + rawRequest("PUT", "/3", {}, "three"));
    for (const char byte : rawRequest("PUT", "/4", {}, "four")) {
        client.send({ 1, byte });
        QTest::qWait(1);
    }
    for (int i = 2; i <= 4; ++i)
        QCOMPARE(client.reply().status(), QByteArray("201 Created"));
    QCOMPARE(server.fileContent(QStringLiteral("2")), large);
    QCOMPARE(server.fileContent(QStringLiteral("3")), QByteArray("three"));
    QCOMPARE(server.fileContent(QStringLiteral("4")), QByteArray("four"));
}

void TestChanges::brokenUploadLeavesOldFile()
{
    StandardServer server;
    server.addFile(QStringLiteral("a"), "old");
    {
        RawClient client(server.port());
        client.send(rawRequest("PUT", "/a", "Expect: 100-continue\r\nContent-Length: 10\r\n"));
        QCOMPARE(client.reply().status(), QByteArray("100 Continue"));
        client.send("12345");
        // Nobody sees what has not arrived whole.
        QCOMPARE(replyTo(server, "GET", "/a").body, QByteArray("old"));
    }
    QTRY_COMPARE(server.server->connectionCount(), 0);
    QCOMPARE(server.fileContent(QStringLiteral("a")), QByteArray("old"));
    QCOMPARE(namesIn(server.sharePath()), QStringLiteral("a"));
    QCOMPARE(server.status("PUT", "/a", {}, "new"), 204);
}

void TestChanges::brokenChunksLeaveOldFile()
{
    StandardServer server;
    server.addFile(QStringLiteral("a"), "old");
    RawClient client(server.port());
    client.send(rawRequest("PUT", "/a", "Transfer-Encoding: chunked\r\n") + "5\r\nHelloX\r\n");
    const RawReply bad = client.reply();
    QCOMPARE(bad.status(), QByteArray("400 Bad Request"));
    QCOMPARE(bad.header("Connection"), QByteArray("close"));
    QCOMPARE(server.fileContent(QStringLiteral("a")), QByteArray("old"));
}

void TestChanges::timeOfUploadAndCopy()
{
    StandardServer server;
    QCOMPARE(server.status("MKCOL", "/f"), 201);
    const QByteArray time = "Sun, 06 Nov 1994 08:49:37 GMT";
    const RawReply reply = replyTo(server, "PUT", "/f/a", "X-OC-Mtime: 784111777.5\r\n", "one");
    QCOMPARE(reply.header("X-OC-Mtime"), QByteArray("accepted"));
    QCOMPARE(reply.header("Last-Modified"), time);
    QCOMPARE(replyTo(server, "HEAD", "/f/a").header("ETag"), reply.header("ETag"));
    for (const char *bad : { "x", "nan", "-1", "1e300" }) {
        const QByteArray headers = QByteArray("X-OC-Mtime: ") + bad + "\r\n";
        QVERIFY(replyTo(server, "PUT", "/a", headers, "2").header("X-OC-Mtime").isEmpty());
    }
    // A copy keeps what belongs to the file.
    ::chmod(QFile::encodeName(server.sharePath(QStringLiteral("f/a"))).constData(), 0750);
    QCOMPARE(server.status("COPY", "/f", destination("/g")), 201);
    const RawReply copy = replyTo(server, "GET", "/g/a");
    QCOMPARE(copy.body, QByteArray("one"));
    QCOMPARE(copy.header("Last-Modified"), time);
    QVERIFY(QFileInfo(server.sharePath(QStringLiteral("g/a"))).isExecutable());
}

void TestChanges::updateRanges()
{
    // -1: told by the body
    for (const auto &[value, first, count] :
         { std::tuple("bytes=2-4", 2, 3), std::tuple("bytes=10-", 10, -1),
           std::tuple("bytes=-3", 7, -1), std::tuple("bytes=-30", 0, -1),
           std::tuple("append", 10, -1) }) {
        const std::optional<UpdateRange> range = updateRange(value, 10);
        QVERIFY2(range && range->first == first && range->count.value_or(-1) == count, value);
    }
    for (const char *bad : { "bytes=11-", "bytes=4-2", "bytes=", "bytes=-", "2-4", "bytes=a-b",
                             "bytes=+1-2", "bytes=0-9223372036854775807" })
        QVERIFY2(!updateRange(bad, 10), bad);
}

void TestChanges::patchWritesInPlace()
{
    StandardServer server;
    server.addFile(QStringLiteral("a"), "0123456789");
    const QByteArray type = "Content-Type: Application/X-SabreDAV-PartialUpdate; a=b\r\n";
    const QByteArray tag = replyTo(server, "HEAD", "/a").header("ETag");
    const RawReply done =
        replyTo(server, "PATCH", "/a",
                type + "If-Match: " + tag + "\r\nX-Update-Range: bytes=2-4\r\n", "abc");
    QCOMPARE(done.status(), QByteArray("204 No Content"));
    QVERIFY(done.header("ETag") != tag);
    QCOMPARE(replyTo(server, "HEAD", "/a").header("ETag"), done.header("ETag"));
    const QByteArray append = "X-Update-Range: append\r\n";
    QCOMPARE(server.status("PATCH", "/a", type + append, "!"), 204);
    QCOMPARE(server.status("PATCH", "/a", type + append + "If-Match: " + tag + "\r\n", "x"), 412);
    QCOMPARE(server.status("PATCH", "/a", type + "X-Update-Range: bytes=2-3\r\n", "xxx"), 400);
    QCOMPARE(server.status("PATCH", "/a", append, "x"), 415);
    QCOMPARE(server.fileContent(QStringLiteral("a")), QByteArray("01abc56789!"));

    // Nothing takes the place of what is written to but another program's file.
    server.addFile(QStringLiteral("b"), "other");
    RawClient client(server.port());
    client.send(rawRequest("PATCH", "/a",
                           type + append
                               + "Expect: 100-continue\r\n"
                                 "Content-Length: 1\r\n"));
    QCOMPARE(client.reply().status(), QByteArray("100 Continue"));
    QCOMPARE(server.status("MOVE", "/b", destination("/a")), 423);
    QCOMPARE(server.status("COPY", "/b", destination("/a")), 423);
    QVERIFY(QFile::remove(server.sharePath(QStringLiteral("a"))));
    client.send("x");
    QCOMPARE(client.reply().status(), QByteArray("409 Conflict"));
}

void TestChanges::deletedComesBack()
{
    StandardServer server({ { "f", "x" } }, withUndo(fileRoutes()));
    server.askForLogin("me:a you:b");
    const auto undo = [&server](const QByteArray &place, const char *account) {
        return server.status("POST", place, basicLogin(account));
    };
    const QByteArray place =
        replyTo(server, "DELETE", "/f", basicLogin("me:a") + "Quillon-Undo: ?1\r\n")
            .header("Location");
    QCOMPARE(server.status("GET", "/f", basicLogin("me:a")), 404);
    QCOMPARE(undo(place, "you:b"), 404);
    server.addFile(QStringLiteral("f"), "new");
    QCOMPARE(undo(place, "me:a"), 409);
    QFile::remove(server.sharePath(QStringLiteral("f")));
    QCOMPARE(undo(place, "me:a"), 204);
    QCOMPARE(server.fileContent(QStringLiteral("f")), QByteArray("x"));
    QCOMPARE(undo(place, "me:a"), 404);

    // Nor to where nobody has asked whether it may stand.
    server.addFile(QStringLiteral("s/f"), "y");
    const QByteArray moved =
        replyTo(server, "DELETE", "/s/f", basicLogin("me:a") + "Quillon-Undo: ?1\r\n")
            .header("Location");
    QVERIFY(QFile::rename(server.sharePath("s"_q), server.sharePath("t"_q)));
    QCOMPARE(undo(moved, "me:a"), 409);
    QVERIFY(!QFile::exists(server.sharePath("t/f"_q)));
    QVERIFY(QDir(server.sharePath("t"_q)).removeRecursively());

    auto share = Share::at(server.sharePath(), {}, Share::Links::Followed);
    QVERIFY(share);
    RemovedEntries().keep({ {}, {}, {}, "a", share->place("f"), {} });
    QCOMPARE(namesIn(server.sharePath()), QString()); // an end leaves nothing
}

void TestChanges::padIsShared()
{
    StandardServer server({}, withPad(fileRoutes()));
    const auto write = [&server](const QByteArray &text, const QByteArray &headers = {}) {
        return server.status("PUT", "/.quillon/pad", headers, text);
    };
    QCOMPARE(write("a"), 404);
    server.profile->scratchPad = 1;
    QCOMPARE(write("a"), 204);
    QCOMPARE(server.sink.deeds.size(), 1); // the refusal: it is no file
    const RawReply first = replyTo(server, "GET", "/.quillon/pad");
    QCOMPARE(first.body, QByteArray("a"));
    const QByteArray seen = "If-Match: " + first.header("ETag") + "\r\n";
    QCOMPARE(write("b", seen), 204);
    QCOMPARE(write("c", seen), 412);
    QCOMPARE(write("\xff"), 415);
    QCOMPARE(write(QByteArray(64 * 1024 + 1, 'x')), 413);
    QCOMPARE(replyTo(server, "GET", "/.quillon/pad").body, QByteArray("b"));
    server.profile->enableUpload = Qt::Unchecked;
    QCOMPARE(write("d"), 403);
}

void TestChanges::deleteFolders()
{
    StandardServer server;
    server.addFile(QStringLiteral("f/g/x"), "x");
    QVERIFY(QFile::link(QStringLiteral("/etc"), server.sharePath(QStringLiteral("f/link"))));

    QCOMPARE(server.status("DELETE", "/f", "Depth: 0\r\n"), 400);
    QCOMPARE(server.status("DELETE", "/f/g/x/"), 404);
    QCOMPARE(server.status("DELETE", "/"), 403);
    QCOMPARE(server.status("DELETE", "/f"), 204);
    QVERIFY(!QFile::exists(server.sharePath(QStringLiteral("f")))
            && QFile::exists(QStringLiteral("/etc")));
    server.profile->enableUpload = Qt::Unchecked;
    for (const char *method : { "MKCOL", "PUT", "PATCH", "COPY", "MOVE" })
        QCOMPARE(server.status(method, "/f"), 403);
}

void TestChanges::copyAndMove_data()
{
    // the status of either method
    columnsOf<QByteArray, QByteArray, int, int>("source", "headers", "copied", "moved");

    row("onto a folder", "/a", destination("/g"), 204, 204);
    row("folder to a new name with a slash", "/f", destination("/new/"), 201, 201);
    row("folder onto a folder", "/f/", destination("/g/"), 204, 204);
    row("folder onto a file", "/f", destination("/b"), 204, 204);
    row("missing", "/no", destination("/new"), 404, 404);
    row("onto itself", "/a", destination("/./a"), 403, 403);
    row("folder into itself", "/f", destination("/f/new"), 409, 409);
    row("folder onto the one that holds it", "/f/sub", destination("/f"), 409, 409);
    row("what is shared", "/", destination("/new"), 409, 409);
    row("without a destination", "/a", "", 400, 400);
    row("by a name of ours", "/a", destination("http://localhost/new"), 201, 201);
    row("by another port", "/a", destination("http://localhost:1/new"), 502, 502);
    row("badly encoded", "/a", destination("/%zz"), 400, 400);
    row("folder with a strange depth", "/f", "Depth: 1\r\n" + destination("/new"), 400, 400);
    row("depth in another case", "/f", "Depth: Infinity\r\n" + destination("/new"), 201, 201);
}

void TestChanges::copyAndMove()
{
    QFETCH(const QByteArray, source);
    QFETCH(const QByteArray, headers);
    for (const QByteArray &method : { QByteArray("COPY"), QByteArray("MOVE") }) {
        StandardServer server;
        server.addFile(QStringLiteral("a"), "A");
        server.addFile(QStringLiteral("b"), "B");
        server.addFile(QStringLiteral("f/.x"), "X");
        server.addFile(QStringLiteral("g/y"), "Y");
        QVERIFY(QDir().mkpath(server.sharePath(QStringLiteral("f/sub/empty"))));
        const QString from = server.sharePath(QString::fromUtf8(source.mid(1)));
        const int status = server.status(method, source, headers);
        QTEST(status, method == "COPY" ? "copied" : "moved");
        const bool done = status < 300;
        QCOMPARE(QFile::exists(from), source != "/no" && !(done && method == "MOVE"));
        if (!done) {
            QCOMPARE(server.fileContent(QStringLiteral("b")), QByteArray("B"));
            QCOMPARE(server.fileContent(QStringLiteral("g/y")), QByteArray("Y"));
            continue;
        }
        const QList<QByteArray> words = headers.trimmed().replace('/', ' ').simplified().split(' ');
        const QString to = QString::fromUtf8(words.constLast());
        if (source == "/a") {
            QCOMPARE(server.fileContent(to), QByteArray("A"));
            continue;
        }
        QCOMPARE(server.fileContent(to + QLatin1String("/.x")), QByteArray("X"));
        QVERIFY(QFile::exists(server.sharePath(to + QLatin1String("/sub/empty"))));
        QVERIFY(!QFile::exists(server.sharePath(to + QLatin1String("/y"))));
        // What was moved aside goes in the end.
        QTRY_VERIFY(!namesIn(server.sharePath()).contains(QLatin1String(".rec")));
    }
}

void TestChanges::failedCopyKeepsOldTree()
{
    StandardServer server;
    server.addFile(QStringLiteral("f/small"), "1");
    server.addFile(QStringLiteral("f/large"), QByteArray(300000, 'x'));
    server.addFile(QStringLiteral("g/old"), "old");
    const FullDisk full(100000);
    for (const char *to : { "/g", "/new" })
        QCOMPARE(server.status("COPY", "/f", destination(to)), 507);
    QCOMPARE(server.fileContent(QStringLiteral("g/old")), QByteArray("old"));
    QCOMPARE(namesIn(server.sharePath()), QStringLiteral("f g"));
}

void TestChanges::guardIsAskedAgainInTheEnd()
{
    Routes routes = fileRoutes();
    const auto guard = std::make_shared<TestGuard>();
    routes.guard = guard;
    StandardServer server(routes);
    server.addFile(QStringLiteral("late"), "theirs");
    server.addFile(QStringLiteral("f/a"), "ours");
    for (const char *method : { "PUT", "COPY" }) {
        guard->asked = 0;
        QCOMPARE(server.status(method, method[0] == 'P' ? "/late" : "/f", destination("/late")),
                 423);
        QCOMPARE(server.fileContent(QStringLiteral("late")), QByteArray("theirs"));
    }
    QTRY_COMPARE(namesIn(server.sharePath()), QStringLiteral("f late"));
}

void TestChanges::whatOthersSaveMeanwhileStays()
{
    StandardServer server;
    for (const auto &[headers, removed] :
         { std::pair("", false), std::pair("", true), std::pair("If-Match: *\r\n", false) }) {
        server.addFile(QStringLiteral("a"), "old");
        RawClient client(server.port());
        client.send(rawRequest(
            "PUT", "/a", headers + QByteArray("Expect: 100-continue\r\nContent-Length: 3\r\n")));
        QCOMPARE(client.reply().status(), QByteArray("100 Continue"));
        QFile editor(server.sharePath(QStringLiteral("a")));
        QVERIFY(editor.open(QIODevice::ReadWrite) && editor.write("saved in place") > 0);
        editor.close();
        QVERIFY(!removed || editor.remove());
        client.send("new");
        QCOMPARE(client.reply().status(),
                 *headers ? QByteArray("412 Precondition Failed") : QByteArray("409 Conflict"));
        QCOMPARE(server.fileContent(QStringLiteral("a")),
                 QByteArray(removed ? "" : "saved in place"));
    }
}

void TestChanges::quittingLeavesOldTree()
{
    const QTemporaryDir shared;
    const QString old = shared.filePath(QStringLiteral("backup/old"));
    writeFile(old, "old");
    writeFile(shared.filePath(QStringLiteral("big/file")), "x");
    QVERIFY(QFile::resize(shared.filePath(QStringLiteral("big/file")), qint64(4) << 30));
    {
        StandardServer server;
        server.server->setShared(shared.path());
        RawClient replacing(server.port());
        RawClient making(server.port());
        replacing.send(rawRequest("COPY", "/big", destination("/backup")));
        making.send(rawRequest("COPY", "/big", destination("/new")));
        QTRY_COMPARE(namesIn(shared.path()).count(QLatin1String(".rec")), 2);
    }
    QCOMPARE(readFile(old), QByteArray("old"));
    QVERIFY(!QFile::exists(shared.filePath(QStringLiteral("new"))));
}

void TestChanges::requestStaysWithWhatWasServed()
{
    StandardServer server;
    const QTemporaryDir other;
    server.addFile(QStringLiteral("a"), "old");
    writeFile(other.filePath(QStringLiteral("a")), "other");
    RawClient client(server.port());
    client.send(rawRequest("PUT", "/a", "Expect: 100-continue\r\nContent-Length: 3\r\n"));
    QCOMPARE(client.reply().status(), QByteArray("100 Continue"));
    server.server->setShared(other.path());
    client.send("new");
    QCOMPARE(client.reply().status(), QByteArray("204 No Content"));
    QCOMPARE(server.fileContent(QStringLiteral("a")), QByteArray("new"));
    QCOMPARE(client.exchange(rawRequest("GET", "/a")).body, QByteArray("other"));
}

void TestChanges::namesOfUploadsAreKept()
{
    StandardServer server;
    const QByteArray hidden = hiddenUploadName();
    server.addFile(QStringLiteral("f/") + QString::fromLatin1(hidden), "half");
    server.addFile(QStringLiteral("f/a"), "A");
    const QByteArray path = "/f/" + hidden;
    for (const char *method : { "PUT", "DELETE", "MKCOL" })
        QCOMPARE(server.status(method, path), 403);
    QCOMPARE(server.status("MOVE", "/f/a", "Destination: " + path + "\r\n"), 403);
    QCOMPARE(server.status("COPY", "/f", destination("/g")), 201);
    QCOMPARE(namesIn(server.sharePath(QStringLiteral("g"))), QStringLiteral("a"));
    QCOMPARE(namesIn(server.sharePath(QStringLiteral("f"))).toUtf8(), hidden + " a");
}

void TestChanges::moveToAnotherFileSystem()
{
    StandardServer server;
    const QTemporaryDir other(QStringLiteral("/dev/shm/moved-XXXXXX"));
    if (!other.isValid() || QStorageInfo(other.path()) == QStorageInfo(server.sharePath()))
        QSKIP("there is no other file system");
    const QByteArray from = (server.sharePath() + QLatin1String("/f")).toUtf8();
    server.server->setShared(QStringLiteral("/"));
    for (const char *name : { "/new", "/old" }) {
        server.addFile(QStringLiteral("f/sub/a"), "A");
        writeFile(other.filePath(QStringLiteral("old/x")), "X");
        const QByteArray pipe = QFile::encodeName(server.sharePath(QStringLiteral("f/pipe")));
        QCOMPARE(::mkfifo(pipe.constData(), 0600), 0);
        const auto move = [&] {
            return replyTo(server, "MOVE", from, destination(other.path().toUtf8() + name))
                .status();
        };
        // Not all of it can be copied, so nothing is moved.
        QCOMPARE(move(), QByteArray("403 Forbidden"));
        QCOMPARE(server.fileContent(QStringLiteral("f/sub/a")), QByteArray("A"));
        QCOMPARE(readFile(other.filePath(QStringLiteral("old/x"))), QByteArray("X"));
        QVERIFY(::unlink(pipe.constData()) == 0);
        // Somebody may still go on with it, until it is old.
        const QString half =
            server.sharePath(QStringLiteral("f/sub/") + QString::fromLatin1(hiddenUploadName()));
        writeFile(half, "half");
        QCOMPARE(move(), QByteArray("423 Locked"));
        const utimbuf yesterday{ ::time(nullptr) - 90000, ::time(nullptr) - 90000 };
        QCOMPARE(::utime(QFile::encodeName(half).constData(), &yesterday), 0);
        QCOMPARE(move().left(2), QByteArray("20"));
        QVERIFY(!QFile::exists(server.sharePath(QStringLiteral("f"))));
        const QString moved = other.path() + QLatin1String(name);
        QCOMPARE(readFile(moved + QLatin1String("/sub/a")), QByteArray("A"));
        QVERIFY(!QFile::exists(moved + QLatin1String("/x")));
        QTRY_VERIFY(!namesIn(other.path()).contains(QLatin1String(".rec")));
    }
}

void TestChanges::optionsTellWhatWorks()
{
    StandardServer server;
    server.addFile(QStringLiteral("a"), "A");
    const auto allowed = [&server](const char *target) {
        return replyTo(server, "OPTIONS", target).header("Allow");
    };
    QCOMPARE(allowed("/a"), QByteArray("OPTIONS, GET, HEAD, PUT, PATCH, DELETE, COPY, MOVE"));
    QCOMPARE(allowed("/"), QByteArray("OPTIONS, GET, HEAD"));
    QCOMPARE(allowed("/new"), QByteArray("OPTIONS, PUT, MKCOL"));
    QCOMPARE(allowed("*"), QByteArray("OPTIONS, GET, HEAD, PUT, PATCH, DELETE, MKCOL, COPY, MOVE"));
    server.profile->enableDelete = Qt::Unchecked;
    server.profile->enableUpload = Qt::Unchecked;
    const RawReply unknown = replyTo(server, "PROPFIND", "/a");
    QCOMPARE(unknown.status(), QByteArray("405 Method Not Allowed"));
    QCOMPARE(unknown.header("Allow"), QByteArray("OPTIONS, GET, HEAD"));
}

} // namespace standard

QTEST_GUILESS_MAIN(standard::TestChanges)
#include "tst_changes.moc"
