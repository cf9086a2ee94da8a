#include "files/DiskWorker.h"
#include "files/HiddenUploads.h"
#include "standard/dav/Routes.h"
#include "standard/web/Routes.h"
#include "standard/web/UploadMetadata.h"
#include "tests/standard/StandardTest.h"
#include "tests/support/Data.h"
#include "tests/support/FullDisk.h"
#include "tests/support/SlowSync.h"

#include <QCryptographicHash>
#include <QDir>
#include <QScopeGuard>
#include <QStorageInfo>
#include <QTest>

#include <sys/socket.h>
#include <utime.h>

namespace standard {
namespace {

const QByteArray version = "Tus-Resumable: 1.0.0\r\n";
const QByteArray type = "Content-Type: application/offset+octet-stream\r\n";

QByteArray lengthLine(qint64 length)
{
    return "Upload-Length: " + QByteArray::number(length) + "\r\n";
}

/// Of a file with this path, and further pairs.
QByteArray metadata(const QByteArray &path, const QByteArray &more = {})
{
    return "Upload-Metadata: relativePath " + path.toBase64() + more + "\r\n";
}

QByteArray offsetLine(qint64 offset)
{
    return type + "Upload-Offset: " + QByteArray::number(offset) + "\r\n";
}

/// Does something at a look that is not the first.
class LateGuard final : public Guard
{
public:
    std::optional<Refusal> refusal(const Exchange &exchange, const std::vector<Change> &) override
    {
        if (then && asked++ > 0)
            then(exchange);
        return {};
    }

    std::function<void(const Exchange &)> then;
    int asked = 0;
};

class TusServer : public StandardServer
{
public:
    explicit TusServer(Routes routes = withDav(fileRoutes()))
        : StandardServer(withUploads(std::move(routes)))
    {
        addFile(QStringLiteral("a"), "old");
        addFile(QStringLiteral("f/a"), "old");
    }

    RawReply ask(const QByteArray &method, const QByteArray &target, const QByteArray &headers = {},
                 const QByteArray &body = {}) const
    {
        return replyTo(*this, method, target, version + headers, body);
    }

    /// The Location of a new upload.
    QByteArray begin(qint64 length, const QByteArray &path = "new", const QByteArray &headers = {},
                     const QByteArray &more = {}) const
    {
        return ask("POST", "/.quillon/tus/", lengthLine(length) + metadata(path, more) + headers)
            .header("Location");
    }

    QByteArray patch(const QByteArray &upload, qint64 offset, const QByteArray &body,
                     const QByteArray &headers = {}) const
    {
        return ask("PATCH", upload, offsetLine(offset) + headers, body).status().left(3);
    }

    QByteArray offset(const QByteArray &upload) const
    {
        return ask("HEAD", upload).header("Upload-Offset");
    }

    QStringList hidden(const QString &folder = {}) const
    {
        return QDir(sharePath(folder))
            .entryList({ QStringLiteral(".rec*") }, QDir::Files | QDir::Hidden);
    }
};

} // namespace

class TestResumable : public QObject
{
    Q_OBJECT
private Q_SLOTS:
    void readsMetadata_data();
    void readsMetadata();
    void followsTheProtocol_data();
    void followsTheProtocol();
    void makesFilesInOneRequest();
    void goesOnAfterCutAndRestart();
    void isDoneThoughNobodyWaits();
    void checksumsAreKept();
    void fullDiskKeepsWhatCame();
    void nameIsTakenByTheRules();
    void isGivenUpInTime();
    void belongsToItsVisitor();
    void reservedNameIsOurs();
};

void TestResumable::readsMetadata_data()
{
    columnsOf<QByteArray, QByteArray, int>("field", "path", "modified");
    const auto pair = [](const char *key, const QByteArray &value) {
        return QByteArray(key) + ' ' + value.toBase64();
    };
    const QByteArray name = pair("filename", "a b");
    row("name, flag, type, time", name + ", flag,filetype dA==," + pair("mtime", "784111777.5"),
        "a b", 784111777);
    row("path of a folder that was dropped", name + ',' + pair("relativePath", "/d/a b"), "d/a b",
        -1);
    row("no path", name + ",relativePath", "a b", -1);
    row("bad time", name + ',' + pair("mtime", "nan"), "a b", -1);
    for (const char *bad : { "", ",", "filename", "filetype dA==", "filename !", "filename YQ= x",
                             "filename  YQ==", "filename YQ==,filename Yg==" })
        row(qPrintable(QStringLiteral("bad: %1").arg(QLatin1String(bad))), bad, "", -1);
    for (const QByteArray &path :
         { QByteArray("../a"), QByteArray("d/../../a"), QByteArray("d//a"), QByteArray("d/."),
           QByteArray("d/"), QByteArray("//a"), QByteArray("a\0b", 3), QByteArray(256, 'x'),
           QByteArray("x/").repeated(64) + 'x' })
        row(QByteArray("path of " + path.left(9).toPercentEncoding()).constData(),
            pair("relativePath", path), "", -1);
}

void TestResumable::readsMetadata()
{
    QFETCH(const QByteArray, field);
    const std::optional<UploadMetadata> read = parseUploadMetadata(field);
    QTEST(read ? read->path : QByteArray(), "path");
    QTEST(read ? int(read->modified.value_or(-1)) : -1, "modified");
}

void TestResumable::followsTheProtocol_data()
{
    // the target "@" is an upload of 10 bytes
    columnsOf<QByteArray, QByteArray, QByteArray, int>("method", "target", "headers", "status");

    const QByteArray tus = "/.quillon/tus";
    const QByteArray good = lengthLine(10) + metadata("new");
    row("no version", "POST", tus, good, 412);
    row("another version", "DELETE", "@", "Tus-Resumable: 0.2.2\r\n", 412);
    row("length is missing", "POST", tus, version + metadata("new"), 400);
    row("length is none", "POST", tus, version + "Upload-Length: -1\r\n" + metadata("new"), 400);
    row("no metadata", "POST", tus, version + lengthLine(1), 400);
    row("huge", "POST", tus, version + "Upload-Length: 99999999999999999999\r\n" + metadata("new"),
        413);
    row("more than the disk", "POST", tus, version + lengthLine(qint64(1) << 50) + metadata("new"),
        507);
    row("no such folder", "POST", tus + "/no", version + good, 404);
    row("a file as the folder", "POST", tus + "/a", version + good, 404);
    row("stands already", "POST", tus + "/f/", version + lengthLine(1) + metadata("a"), 412);
    row("replaces a folder", "POST", tus,
        version + "Overwrite: T\r\n" + lengthLine(1) + metadata("f"), 412);
    row("below a file", "POST", tus, version + lengthLine(1) + metadata("a/b"), 409);
    row("name of an upload", "POST", tus, version + lengthLine(1) + metadata(hiddenUploadName()),
        403);
    row("reserved name", "POST", tus, version + lengthLine(1) + metadata(".quillon/x"), 403);
    row("another method in disguise", "POST", "@",
        version + "X-HTTP-Method-Override: PATCH\r\n" + offsetLine(0), 400);
    row("type is missing", "PATCH", "@", version + "Upload-Offset: 0\r\n", 415);
    row("offset is missing", "PATCH", "@", version + type, 400);
    row("another offset", "PATCH", "@", version + offsetLine(1), 409);
    row("nothing more", "PATCH", "@", version + offsetLine(0), 204);
    row("too long", "PATCH", "@", version + "Content-Length: 11\r\n" + offsetLine(0), 413);
    row("unknown checksum", "PATCH", "@", version + "Upload-Checksum: md4 YQ==\r\n" + offsetLine(0),
        400);
    row("no such upload", "PATCH", tus + "/00", version + offsetLine(0), 404);
    row("download", "GET", "@", version, 405);
    row("given up", "DELETE", "@", version, 204);
}

void TestResumable::followsTheProtocol()
{
    QFETCH(const QByteArray, method);
    QFETCH(const QByteArray, target);
    QFETCH(const QByteArray, headers);
    TusServer server;
    const QByteArray upload = server.begin(10);
    RawClient client(server.port());
    const RawReply reply =
        client.exchange(rawRequest(method, target == "@" ? upload : target, headers));
    QTEST(reply.status().left(3).toInt(), "status");
    // Of all that is refused nothing is left.
    QTRY_COMPARE(server.hidden().size(),
                 reply.status().startsWith("204") && method == "DELETE" ? 0 : 2);
    QCOMPARE(server.fileContent(QStringLiteral("f/a")), QByteArray("old"));
}

void TestResumable::makesFilesInOneRequest()
{
    TusServer server;
    const QByteArray allow = server.ask("OPTIONS", "/.quillon/tus").head;
    QVERIFY(allow.contains("Tus-Version: 1.0.0\r\n") && allow.contains("sha256\r\n"));
    const QByteArray time = ",mtime " + QByteArray("784111777").toBase64();
    const RawReply whole = server.ask("POST", "/.quillon/tus/f",
                                      type + lengthLine(3) + metadata("d/e/new", time), "new");
    QCOMPARE(whole.status(), QByteArray("201 Created"));
    QCOMPARE(replyTo(server, "GET", "/f/d/e/new").header("Last-Modified"),
             QByteArray("Sun, 06 Nov 1994 08:49:37 GMT"));
    QCOMPARE(server.fileContent(QStringLiteral("f/d/e/new")), QByteArray("new"));
    QVERIFY(server.hidden(QStringLiteral("f/d/e")).isEmpty());
    // Its sender may not have heard of that.
    QCOMPARE(server.offset(whole.header("Location")), QByteArray("3"));

    QCOMPARE(server.offset(server.begin(0, "empty")), QByteArray("0"));
    QVERIFY(QFile::exists(server.sharePath(QStringLiteral("empty"))));
    const QByteArray upload = server.begin(3, "a", "Overwrite: T\r\n");
    QCOMPARE(server.patch(upload, 0, "new"), QByteArray("204"));
    QCOMPARE(server.fileContent(QStringLiteral("a")), QByteArray("new"));
    // As all new files when what it was to replace is gone.
    const QByteArray late = server.begin(3, "a", "Overwrite: T\r\n");
    QVERIFY(QFile::remove(server.sharePath(QStringLiteral("a"))));
    QCOMPARE(server.patch(late, 0, "new"), QByteArray("204"));
    QCOMPARE(QFile::permissions(server.sharePath(QStringLiteral("a"))),
             QFile::permissions(server.sharePath(QStringLiteral("empty"))));
    QVERIFY(server.hidden().isEmpty());
}

void TestResumable::goesOnAfterCutAndRestart()
{
    const QTemporaryDir shared;
    QByteArray upload;
    {
        TusServer server;
        server.server->setShared(shared.path());
        upload = server.begin(10);
        RawClient client(server.port());
        client.send(rawRequest("PATCH", upload, version + offsetLine(0) + "Content-Length: 10\r\n")
                    + "01234");
        QTRY_COMPARE(server.offset(upload), QByteArray("5"));
        QCOMPARE(server.server->visits().front().transfer->path, QByteArray("/new"));
        QCOMPARE(server.patch(upload, 5, "56789"), QByteArray("423"));
        QCOMPARE(server.ask("DELETE", upload).status(), QByteArray("423 Locked"));
        client.socket->abort();
        QTRY_COMPARE(server.server->connectionCount(), 0);
        QCOMPARE(server.patch(upload, 5, "5"), QByteArray("204"));
    }
    TusServer server;
    server.server->setShared(shared.path());
    QCOMPARE(server.offset(upload), QByteArray("6"));
    QCOMPARE(server.patch(upload, 6, "678"), QByteArray("204"));
    QCOMPARE(server.patch(upload, 9, "9"), QByteArray("204"));
    QCOMPARE(server.sink.deeds.size(), 1); // the owner hears of the file alone
    QCOMPARE(server.sink.deeds[0].method + server.sink.deeds[0].path, QByteArray("PUT/new"));
    QCOMPARE(readFile(shared.filePath(QStringLiteral("new"))), QByteArray("0123456789"));
}

void TestResumable::isDoneThoughNobodyWaits()
{
    const auto guard = std::make_shared<LateGuard>();
    std::atomic<bool> isThere = false;
    Routes routes = fileRoutes();
    routes.guard = guard;
    TusServer server(routes);
    const auto release = qScopeGuard([&isThere] { isThere = true; });
    server.profile->syncPolicy = SyncFileAndFolder;
    const QByteArray upload =
        server.begin(3, "new", "", ",mtime " + QByteArray("784111777").toBase64());
    RawClient client(server.port());
    // It has its name, and then the disk takes its time.
    guard->then = [&](const Exchange &exchange) {
        for (int i = 0; i < 2; ++i)
            exchange.service().setup.disk->run(std::make_shared<SlowSync>(isThere), nullptr, {});
        const linger none{ 1, 0 }; // as one that is gone, not one that waits for the answer
        ::setsockopt(int(client.socket->socketDescriptor()), SOL_SOCKET, SO_LINGER, &none,
                     sizeof none);
        client.socket->abort();
    };
    client.send(rawRequest("PATCH", upload, version + offsetLine(0), "new"));
    QTRY_COMPARE(server.fileContent(QStringLiteral("new")), QByteArray("new"));
    QTRY_COMPARE(server.server->connectionCount(), 0);
    isThere = true;
    QTRY_COMPARE(server.offset(upload), QByteArray("3"));
    QVERIFY(server.hidden().isEmpty());
    QCOMPARE(replyTo(server, "GET", "/new").header("Last-Modified"),
             QByteArray("Sun, 06 Nov 1994 08:49:37 GMT"));
}

void TestResumable::checksumsAreKept()
{
    TusServer server;
    const QByteArray upload = server.begin(10);
    const auto sum = [](const QByteArray &of) {
        return "Upload-Checksum: sha256 "
            + QCryptographicHash::hash(of, QCryptographicHash::Sha256).toBase64() + "\r\n";
    };
    QCOMPARE(server.patch(upload, 0, "01234", sum("01234")), QByteArray("204"));
    QCOMPARE(server.patch(upload, 5, "5x789", sum("56789")), QByteArray("460"));
    QCOMPARE(server.offset(upload), QByteArray("5"));
    {
        // What nobody can vouch for does not stay.
        RawClient client(server.port());
        client.send(rawRequest("PATCH", upload,
                               version + offsetLine(5) + sum("56789") + "Content-Length: 5\r\n")
                    + "5x7");
        QTRY_COMPARE(server.offset(upload), QByteArray("8"));
    }
    QTRY_COMPARE(server.server->connectionCount(), 0);
    QTRY_COMPARE(server.offset(upload), QByteArray("5"));
    QCOMPARE(server.patch(upload, 5, "56789", sum("56789")), QByteArray("204"));
    QCOMPARE(server.fileContent(QStringLiteral("new")), QByteArray("0123456789"));

    // What could not begin leaves nothing: nobody knows where it is.
    const QByteArray post = type + lengthLine(10) + metadata("other") + sum("01");
    QCOMPARE(server.ask("POST", "/.quillon/tus", post, "0x").status(),
             QByteArray("460 Checksum Mismatch"));
    {
        RawClient client(server.port());
        client.send(rawRequest("POST", "/.quillon/tus", version + post + "Content-Length: 5\r\n")
                    + "01");
        QTRY_COMPARE(server.hidden().size(), 2);
    }
    QTRY_VERIFY(server.hidden().isEmpty());
}

void TestResumable::fullDiskKeepsWhatCame()
{
    TusServer server;
    const QByteArray content(400000, 'x');
    const QByteArray upload = server.begin(content.size());
    {
        const FullDisk full(100000);
        QCOMPARE(server.patch(upload, 0, content), QByteArray("507"));
    }
    QCOMPARE(server.offset(upload), QByteArray("100000"));
    QCOMPARE(server.patch(upload, 100000, content.mid(100000)), QByteArray("204"));
    QCOMPARE(server.fileContent(QStringLiteral("new")), content);

    // What is only announced keeps nobody out.
    const qint64 most = QStorageInfo(server.sharePath()).bytesAvailable() / 10 * 9;
    const QByteArray huge = server.begin(most, "huge");
    QVERIFY(!server.begin(most, "another").isEmpty());
    QCOMPARE(server.patch(huge, 0, "x"), QByteArray("204"));
    QVERIFY(server.begin(most, "a third").isEmpty());
}

void TestResumable::nameIsTakenByTheRules()
{
    TusServer server;
    const QByteArray upload = server.begin(3);
    server.addFile(QStringLiteral("new"), "theirs");
    QCOMPARE(server.patch(upload, 0, "our"), QByteArray("412"));
    QVERIFY(QFile::remove(server.sharePath(QStringLiteral("new"))));
    const QByteArray token = replyTo(server, "LOCK", "/f", {}, lockBody).header("Lock-Token");
    QVERIFY(!token.isEmpty());
    const QByteArray post = lengthLine(3) + metadata("d/new");
    QCOMPARE(server.ask("POST", "/.quillon/tus/f", post).status(), QByteArray("423 Locked"));
    QVERIFY(!QFile::exists(server.sharePath(QStringLiteral("f/d"))));
    const QByteArray own = "If: </f> (" + token + ")\r\n";
    QCOMPARE(server.ask("POST", "/.quillon/tus/f", own + post).status(), QByteArray("201 Created"));

    // Whole, but for its name: who is told that all is here takes it for done.
    const QByteArray data = hiddenUploadName(upload.mid(upload.lastIndexOf('/') + 1));
    writeFile(server.sharePath(QString::fromLatin1(data)), "our");
    QCOMPARE(server.offset(upload), QByteArray("2"));
    QCOMPARE(server.patch(upload, 2, "r"), QByteArray("204"));
    QCOMPARE(server.fileContent(QStringLiteral("new")), QByteArray("our"));

    // Who only adds isn't told that the folder can't be one.
    server.addFile(QStringLiteral("h/o/me/a"), "old");
    server.askForLogin("d:1");
    server.profile->accountRights.insert(QStringLiteral("d"), { Rights(Right::Add), "/h/o/me" });
    const QByteArray mine = basicLogin("d:1");
    const QByteArray below = server.begin(3, "a/y/x", mine);
    QVERIFY(below.startsWith("/.quillon/tus/a/y/"));
    QCOMPARE(server.patch(below, 0, "our", mine), QByteArray("204"));
    QCOMPARE(server.fileContent(QStringLiteral("h/o/me/a (2)/y/x")), QByteArray("our"));
}

void TestResumable::isGivenUpInTime()
{
    TusServer server;
    const QByteArray upload = server.begin(3);
    const QByteArray other = server.begin(3, "other");
    QVERIFY(!upload.isEmpty() && !other.isEmpty());
    const utimbuf yesterday{ ::time(nullptr) - 90000, ::time(nullptr) - 90000 };
    const QByteArray id = upload.mid(upload.lastIndexOf('/') + 1);
    const QByteArray data = QFile::encodeName(server.sharePath()) + "/" + hiddenUploadName(id);
    QCOMPARE(::utime(data.constData(), &yesterday), 0);
    QCOMPARE(server.ask("HEAD", upload).status(), QByteArray("404 Not Found"));
    QTRY_COMPARE(server.hidden().size(), 2);
    for (int i = 1; i < 100; ++i)
        QVERIFY(!server.begin(1, QByteArray::number(i)).isEmpty());
    const auto oneMore = [&server] {
        return server.ask("POST", "/.quillon/tus/", lengthLine(1) + metadata("more")).status();
    };
    QCOMPARE(oneMore(), QByteArray("429 Too Many Requests"));
    QCOMPARE(server.ask("DELETE", other).status(), QByteArray("204 No Content"));
    QCOMPARE(oneMore(), QByteArray("201 Created"));
}

void TestResumable::belongsToItsVisitor()
{
    TusServer server;
    server.askForLogin("a:b c:d");
    const QByteArray a = basicLogin("a:b");
    const QByteArray c = basicLogin("c:d");
    const QByteArray upload = server.begin(3, "new", a);
    QCOMPARE(server.patch(upload, 0, "x", c), QByteArray("404"));
    QCOMPARE(server.patch(upload, 0, "new", a), QByteArray("204"));
    QVERIFY(server.ask("HEAD", upload, c).header("Upload-Offset").isEmpty());
    QCOMPARE(server.ask("HEAD", upload, a).header("Upload-Offset"), QByteArray("3"));
    // Who may put nothing there is told nothing.
    server.profile->everyone = Rights(Right::See);
    for (const char *folder : { "f", "missing" }) {
        const QByteArray target = QByteArray("/.quillon/tus/") + folder;
        QCOMPARE(server.ask("POST", target, a + lengthLine(1) + metadata("x")).status(),
                 QByteArray("403 Forbidden"));
    }
    for (const char *method : { "HEAD", "PATCH", "DELETE" })
        QCOMPARE(server.ask(method, upload, a).status(), QByteArray("403 Forbidden"));
}

void TestResumable::reservedNameIsOurs()
{
    TusServer server;
    server.addFile(QStringLiteral(".quillon/x"), "theirs");
    for (const char *method : { "GET", "PUT", "DELETE", "PROPFIND", "MKCOL" })
        QCOMPARE(server.status(method, "/.quillon/x"), 404);
    QCOMPARE(server.status("MOVE", "/a", "Destination: /.quillon/y\r\n"), 403);
    const QByteArray all = replyTo(server, "PROPFIND", "/", "Depth: 1\r\n").body;
    QVERIFY(all.contains("/a<") && !all.contains("quillon"));

    // For who has a home, there; it is but a name to others.
    server.addFile(QStringLiteral("f/.quillon/x"), "theirs");
    server.askForLogin("d:1");
    server.profile->accountRights.insert(QStringLiteral("d"), { {}, "/f" });
    const QByteArray mine = basicLogin("d:1");
    QCOMPARE(server.status("MOVE", "/a", mine + "Destination: /.quillon/y\r\n"), 403);
    QVERIFY(server.begin(1, ".quillon/y", mine).isEmpty());
    QVERIFY(server.begin(1, "y", mine).startsWith("/.quillon/tus/"));
    QVERIFY(!replyTo(server, "PROPFIND", "/", mine + "Depth: 1\r\n").body.contains("quillon"));
    server.askForLogin("e:2");
    QCOMPARE(server.status("GET", "/f/.quillon/x", basicLogin("e:2")), 200);
}

} // namespace standard

QTEST_GUILESS_MAIN(standard::TestResumable)
#include "tst_resumable.moc"
