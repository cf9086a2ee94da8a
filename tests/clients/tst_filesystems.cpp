#include "standard/dav/Routes.h"
#include "tests/standard/StandardTest.h"
#include "tests/support/Litmus.h"

#include <QtTest>

namespace {

/// Whether a command succeeds; what it prints goes nowhere.
bool runs(const QStringList &words)
{
    QProcess process;
    process.start(words.constFirst(), words.mid(1));
    return process.waitForFinished() && process.exitStatus() == QProcess::NormalExit
        && process.exitCode() == 0;
}

/// A file system in an image or over a folder, mounted until this goes.
class Mounted
{
public:
    /// $0, $1 and $2 of the command stand for an image, an empty folder and `at`.
    Mounted(const QString &command, const QString &at)
        : point(at)
    {
        QFile image(folder.filePath(QStringLiteral("image")));
        const QString source = folder.filePath(QStringLiteral("source"));
        good = image.open(QIODevice::WriteOnly) && image.resize(qint64(64) << 20)
            && QDir().mkdir(source)
            && runs({ QStringLiteral("sh"), QStringLiteral("-c"), command, image.fileName(), source,
                      at });
    }
    // The server still holds it; it goes once nobody does.
    ~Mounted() { runs({ QStringLiteral("umount"), QStringLiteral("-l"), point }); }

    bool isGood() const { return good; }

private:
    const QTemporaryDir folder;
    const QString point;
    bool good = false;
};

} // namespace

/// Serves file systems that lack what others have, where this machine lets us mount them.
class FileSystemsTest : public QObject
{
    Q_OBJECT
private Q_SLOTS:
    void work_data();
    void work();

private:
    static void changesEverything(const LiveServer &server);
};

void FileSystemsTest::work_data()
{
    QTest::addColumn<QString>("command");
    // Neither permissions, links, attributes, case nor fractions of seconds.
    QTest::newRow("vfat") << QStringLiteral("mkfs.vfat $0 && mount -o loop -t vfat $0 $2");
    QTest::newRow("exFAT in a program")
        << QStringLiteral("mkfs.exfat $0 && mount.exfat-fuse $(losetup -f --show $0) $2; result=$?;"
                          " losetup -d $(losetup -j $0 | cut -d: -f1); exit $result");
    // Neither unnamed files nor renaming without replacing.
    QTest::newRow("FUSE") << QStringLiteral("bindfs $1 $2");
}

void FileSystemsTest::work()
{
    QFETCH(const QString, command);
    LiveServer server(standard::standardFaces(standard::withDav(standard::fileRoutes())));
    const Mounted mounted(command, server.share.path());
    if (!mounted.isGood())
        QSKIP("this machine can't mount it");
    server.start();
    changesEverything(server);
    if (hasProgram(QStringLiteral("litmus")))
        passesLitmus(QStringLiteral("http://127.0.0.1:%1/").arg(server.port()), {});
    const QString left = namesIn(server.share.path());
    QVERIFY2(!left.contains(QLatin1String(".receiving")), qPrintable(left));
}

void FileSystemsTest::changesEverything(const LiveServer &server)
{
    // All within two seconds, which is one moment for some of them.
    QByteArrayList tags;
    const auto change = [&](const char *method, const QByteArray &headers) {
        const RawReply reply = replyTo(server, method, "/a", headers, "xy");
        QVERIFY2(reply.status().startsWith('2'), reply.head.constData());
        const QByteArray tag = reply.header("ETag");
        QVERIFY2(!tags.contains(tag), tag.constData());
        QCOMPARE(replyTo(server, "HEAD", "/a").header("ETag"), tag);
        tags.append(tag);
    };
    const QByteArray partial = "Content-Type: application/x-sabredav-partialupdate\r\n"
                               "X-Update-Range: bytes=0-1\r\n";
    for (int i = 0; i < 3; ++i)
        change("PUT", {});
    for (int i = 0; i < 3; ++i)
        change("PATCH", partial + "If-Match: " + tags.constLast() + "\r\n");

    const RawReply dated = replyTo(server, "PUT", "/b", "X-OC-Mtime: 1600000000\r\n", "b");
    QCOMPARE(dated.header("X-OC-Mtime"), QByteArray("accepted"));
    QCOMPARE(replyTo(server, "HEAD", "/b").header("Last-Modified"),
             QByteArray("Sun, 13 Sep 2020 12:26:40 GMT"));
    const auto status = [&server](const char *method, const char *target, const char *to) {
        return replyTo(server, method, target, QByteArray("Destination: ") + to + "\r\n").status();
    };
    QVERIFY(status("MOVE", "/b", "/B").startsWith("20"));
    // An old file is not taken for an abandoned one while it is copied.
    QCOMPARE(status("COPY", "/B", "/c"), QByteArray("201 Created"));
    QCOMPARE(status("COPY", "/c", "/B"), QByteArray("204 No Content"));
    QCOMPARE(server.fileContent(QStringLiteral("c")), QByteArray("b"));
    QCOMPARE(status("COPY", "/a", "/B"), QByteArray("204 No Content"));
    QCOMPARE(server.fileContent(QStringLiteral("B")), QByteArray("xy"));
    QVERIFY(!QDir(server.share.path()).entryList().contains(QStringLiteral("b")));
    // What is open when it is deleted keeps a hidden name on some of them: what was just sent is
    // not held, and what somebody else holds keeps its folder but nobody waiting.
    QVERIFY(replyTo(server, "MKCOL", "/folder").status().startsWith("201"));
    QVERIFY(replyTo(server, "PUT", "/folder/sent", {}, "xy").status().startsWith("201"));
    QCOMPARE(replyTo(server, "GET", "/folder/sent").body, QByteArray("xy"));
    QVERIFY(replyTo(server, "DELETE", "/folder/sent").status().startsWith("204"));
    QDir folder(server.share.filePath(QStringLiteral("folder")));
    QCOMPARE(namesIn(folder.path()), QString());
    QVERIFY(replyTo(server, "PUT", "/folder/read", {}, "xy").status().startsWith("201"));
    QFile held(folder.filePath(QStringLiteral("read")));
    QVERIFY(held.open(QIODevice::ReadOnly));
    QVERIFY(!replyTo(server, "DELETE", "/folder").status().isEmpty());
    held.close();
    QVERIFY(folder.removeRecursively());
}

QTEST_GUILESS_MAIN(FileSystemsTest)
#include "tst_filesystems.moc"
