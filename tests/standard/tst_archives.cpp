#include "files/FileSums.h"
#include "files/HiddenUploads.h"
#include "files/ZipReader.h"
#include "standard/web/Routes.h"
#include "tests/standard/StandardTest.h"
#include "tests/support/Data.h"

#include <QProcess>
#include <QTest>

#include <atomic>
#include <cstdio>

namespace standard {

namespace {

constexpr auto wholeFolder = "/?archive=zip";
constexpr auto formHeader = "Content-Type: application/x-www-form-urlencoded\r\n";
constexpr qint64 largeBytes = qint64(64) << 20;

class ArchiveServer : public StandardServer
{
public:
    explicit ArchiveServer(Files files = {})
        : StandardServer(files, withArchives(fileRoutes()))
    {
    }

    /// A file of that size, without content.
    QString addLarge(const char *name, qint64 size) const
    {
        addFile(QString::fromUtf8(name), {});
        const QString path = sharePath(QString::fromUtf8(name));
        return QFile::resize(path, size) ? path : QString();
    }

    void addLink(const char *name, const char *target) const
    {
        QVERIFY(QFile::link(QString::fromUtf8(target), sharePath(QString::fromUtf8(name))));
    }

    /// Some of the bytes of the archive, or all of them.
    QByteArray archive(const QByteArray &range = {}) const
    {
        return replyTo(*this, "GET", wholeFolder,
                       range.isEmpty() ? range : "Range: bytes=" + range + "\r\n")
            .body;
    }
};

/// What Python's own reader makes of an archive: what is broken, then what `expression` makes of
/// the archive `z`.
QByteArray judged(const QString &path, const char *expression, bool withContent = true)
{
    const QByteArray script = QByteArray("import sys, zipfile\nz = zipfile.ZipFile(sys.argv[1])\n")
        + (withContent ? "assert z.testzip() is None\n" : "") + "print(" + expression + ", end='')";
    QProcess python;
    python.start(QStringLiteral(TEST_PYTHON),
                 { QStringLiteral("-c"), QString::fromUtf8(script), path });
    python.waitForFinished();
    return python.readAllStandardOutput() + python.readAllStandardError();
}

QByteArray judged(const QByteArray &archive, const char *expression)
{
    const QTemporaryDir folder;
    const QString path = folder.filePath(QStringLiteral("a.zip"));
    writeFile(path, archive);
    return judged(path, expression);
}

/// A range of an archive, as the server reads it.
QByteArray rangeOf(const ZipReader::Source &source, qint64 first, qint64 count)
{
    ZipReader reader(source, first, count);
    const std::atomic<bool> cancelled{ false };
    QByteArray all;
    while (!reader.isAtEnd()) {
        reader.run(Budget::ofWorker(cancelled));
        all += reader.takePiece();
    }
    return reader.hasFailed() ? QByteArray() : all;
}

} // namespace

class TestArchives : public QObject
{
    Q_OBJECT
private Q_SLOTS:
    void holdsWhatVisitorsSee();
    void rangesMakeTheWhole();
    void unchangedOneIsNotSentAgain();
    void changeEndsConnection_data();
    void changeEndsConnection();
    void selection_data();
    void selection();
    void tooManyEntriesAreRefused();
    void plansShareTheirMemory();
    void largeFilesAndOffsets();
    void ownerIsToldOfADownload();
};

void TestArchives::holdsWhatVisitorsSee()
{
    const ArchiveServer server({ { "b.txt", "hello" },
                                 { "gr\xc3\xbc\xc3\x9f/x", "1" },
                                 { "new\nline<&\".txt", "" },
                                 { "..\\..\\evil", "2" },
                                 { ".quillon/secret", "3" },
                                 { "gr\xc3\xbc\xc3\x9f/.quillon/file", "4" } });
    server.addFile(QString::fromUtf8(hiddenUploadName()), "5");
    server.addFile(QString::fromLatin1("z"), "6");
    // A name that is no text.
    const QByteArray top = QFile::encodeName(server.sharePath());
    QCOMPARE(std::rename((top + "/z").constData(), (top + "/lat\xfc").constData()), 0);
    QVERIFY(QDir().mkpath(server.sharePath(QStringLiteral("empty/deep"))));
    server.addLink("out", "/etc/passwd");
    server.addLink("in", "b.txt");
    server.addLink("empty/loop", "..");
    QFile file(server.sharePath(QStringLiteral("b.txt")));
    QVERIFY(file.open(QIODevice::ReadWrite));
    QVERIFY(file.setFileTime(QDateTime::fromSecsSinceEpoch(1000000000),
                             QFileDevice::FileModificationTime));
    file.close();
    server.profile->strict = 1;
    server.server->setShared(server.sharePath());

    const RawReply reply = replyTo(server, "GET", wholeFolder);
    QCOMPARE(reply.header("Content-Length").toInt(), reply.body.size());
    QCOMPARE(reply.header("Content-Type"), QByteArray("application/zip"));
    QCOMPARE(reply.header("Content-Disposition"),
             "attachment; filename=\"" + QFileInfo(server.sharePath()).fileName().toUtf8()
                 + ".zip\"");
    QCOMPARE(judged(reply.body, "*[ascii(i.filename) for i in z.infolist()], sep='|'"),
             QByteArray("'..\\uff3c..\\uff3cevil'|'b.txt'|'empty/'|'empty/deep/'|'gr\\xfc\\xdf/'|"
                        "'gr\\xfc\\xdf/.quillon/'|'gr\\xfc\\xdf/.quillon/file'|"
                        "'gr\\xfc\\xdf/x'|'in'|'lat\\u207f'|'new\\nline<&\".txt'"));
    // The time in UTC.
    QCOMPARE(judged(reply.body, "z.read('in'), z.getinfo('b.txt').extra.hex()"),
             QByteArray("b'hello' 555405000100ca9a3b"));
    QCOMPARE(replyTo(server, "GET", "/gr%C3%BC%C3%9F?archive=zip").header("Content-Disposition"),
             QByteArray("attachment; filename=\"gr____.zip\"; "
                        "filename*=UTF-8''gr%C3%BC%C3%9F.zip"));
    QVERIFY(replyTo(server, "GET", "/").body.contains(R"(href="?archive=zip">Download as zip<)"));
    QCOMPARE(judged(replyTo(server, "GET", "/empty/deep/?archive=zip").body, "z.namelist()"),
             QByteArray("[]"));
    QCOMPARE(server.status("GET", "/b.txt?archive=zip"), 400);
    QCOMPARE(server.status("GET", "/missing/?archive=zip"), 404);
    QCOMPARE(std::remove((top + "/lat\xfc").constData()), 0); // the toolkit can't
    server.profile->showFolders = Qt::Unchecked;
    QCOMPARE(server.status("GET", wholeFolder), 403);
}

void TestArchives::rangesMakeTheWhole()
{
    QByteArray large;
    for (int i = 0; large.size() < (30 << 20); ++i)
        large += QByteArray::number(i).repeated(20);
    const ArchiveServer server({ { "a", "one" }, { "large", large }, { "z/zero", "" } });
    const int size = replyTo(server, "HEAD", wholeFolder).header("Content-Length").toInt();
    // The directory first: nobody has read the files yet.
    const QByteArray end = server.archive("-200");
    const QByteArray middle = server.archive("20000000-20000009");
    const QByteArray all = server.archive();
    QCOMPARE(all.size(), size);
    QCOMPARE(judged(all, "z.read('large')[-5:] + z.read('a')"), "b'" + large.right(5) + "one'");
    QCOMPARE(end, all.right(200));
    QCOMPARE(middle, all.mid(20000000, 10));
    server.addFile(QStringLiteral("a"), "two");
    const QByteArray other = server.archive("25000000-");
    const QByteArray changed = server.archive();
    QCOMPARE(server.archive("0-24999999") + other, changed);
    for (int first = size - 400; first < size; first += 7)
        QCOMPARE(server.archive(QByteArray::number(first) + '-'), changed.mid(first));
}

void TestArchives::unchangedOneIsNotSentAgain()
{
    const ArchiveServer server({ { "d/a", "one" } });
    const RawReply first = replyTo(server, "GET", wholeFolder);
    const QByteArray tag = first.header("ETag");
    const auto get = [&server, tag](const char *field, const char *more = "") {
        return replyTo(server, "GET", wholeFolder, field + (": " + tag) + "\r\n" + more);
    };
    QCOMPARE(get("If-None-Match").status(), QByteArray("304 Not Modified"));
    QCOMPARE(get("If-Range", "Range: bytes=5-\r\n").body, first.body.mid(5));
    server.addFile(QStringLiteral("d/a"), "two"); // of the same size
    QCOMPARE(get("If-None-Match").status(), QByteArray("200 OK"));
    QCOMPARE(get("If-Range", "Range: bytes=5-\r\n").body.size(), first.body.size());
    QCOMPARE(server.status("GET", wholeFolder, "Range: bytes=9999-\r\n"), 416);
}

void TestArchives::changeEndsConnection_data()
{
    columnsOf<QByteArray, qint64>("name", "size"); // -1: removed, 0: written to
    row("the one on its way grows", "a", largeBytes + 1);
    row("the one on its way shrinks", "a", qint64(1));
    row("the one on its way is written to", "a", qint64(0));
    row("the one on its way vanishes", "a", qint64(-1));
    row("the next one grows", "b", largeBytes);
    row("the next one vanishes", "b", qint64(-1));
}

void TestArchives::changeEndsConnection()
{
    QFETCH(const QByteArray, name);
    QFETCH(const qint64, size);
    const ArchiveServer server({ { "b", "content" } });
    server.addLarge("a", largeBytes);
    RawClient client(server.port());
    client.socket->setReadBufferSize(1024);
    client.send(rawRequest("GET", wholeFolder));
    QTRY_VERIFY(client.socket->bytesAvailable() > 0);
    QFile file(server.sharePath(QString::fromUtf8(name)));
    if (size < 0) {
        QVERIFY(file.remove());
    } else if (size > 0) {
        QVERIFY(file.resize(size));
    } else {
        QVERIFY(file.open(QIODevice::ReadWrite) && file.seek(largeBytes - 1));
        QCOMPARE(file.write("x"), 1);
        file.close();
    }
    client.socket->setReadBufferSize(0);
    const QByteArray all = client.readToEnd();
    const int head = int(all.indexOf("\r\n\r\n"));
    const RawReply reply{ all.left(head), all.mid(head + 4) };
    QVERIFY(reply.body.size() < reply.header("Content-Length").toInt());
    QVERIFY(!client.isOpen());
    QTRY_COMPARE(server.sink.deeds.size(), 1);
    QVERIFY(!server.sink.deeds[0].isWhole);
}

void TestArchives::selection_data()
{
    columnsOf<QByteArray, QByteArray, int, QByteArray>("headers", "body", "status", "names");
    row("some", formHeader, "name=b&x=y&name=d/&name=b", 200, "['b', 'd/', 'd/x y']");
    row("in the encoding of forms", formHeader, "name=gr%C3%BC+c", 200, "['gr\xc3\xbc c']");
    row("none", formHeader, "", 400, "");
    row("the folder above", formHeader, "name=..", 400, "");
    row("climbing", formHeader, "name=d/../../x", 400, "");
    row("climbing, encoded", formHeader, "name=%2e%2e%2fx", 400, "");
    row("from the top", formHeader, "name=%2Fetc%2Fpasswd", 400, "");
    row("cut off by a NUL", formHeader, "name=b%00", 400, "");
    row("one of them is gone", formHeader, "name=b&name=gone", 404, "");
    row("a link out", formHeader, "name=out", 404, "");
    row("reserved", formHeader, "name=.quillon", 404, "");
    row("not a form", "Content-Type: text/plain\r\n", "name=b", 415, "");
    row("from another site", QByteArray(formHeader) + "Origin: http://evil.example\r\n", "name=b",
        403, "");
}

void TestArchives::selection()
{
    QFETCH(const QByteArray, headers);
    QFETCH(const QByteArray, body);
    const ArchiveServer server({ { "b", "1" },
                                 { "d/x y", "2" },
                                 { "gr\xc3\xbc c", "3" },
                                 { "left", "4" },
                                 { ".quillon/x", "5" } });
    server.addLink("out", "/etc/passwd");
    server.profile->strict = 1;
    server.server->setShared(server.sharePath());
    const RawReply reply = replyTo(server, "POST", wholeFolder, headers, body);
    QTEST(reply.status().left(3).toInt(), "status");
    if (reply.status() == "200 OK")
        QTEST(judged(reply.body, "z.namelist()"), "names");
    // Without the query there is no such method.
    QCOMPARE(server.status("POST", "/", formHeader, "name=b"), 405);
}

void TestArchives::tooManyEntriesAreRefused()
{
    const ArchiveServer server;
    // Each of many links leads to many files.
    for (int i = 0; i < 320; ++i) {
        server.addFile(QStringLiteral("d/%1").arg(i), {});
        server.addLink(("l" + QByteArray::number(i)).constData(), "d");
    }
    const RawReply reply = replyTo(server, "GET", wholeFolder);
    QCOMPARE(reply.status(), QByteArray("507 Insufficient Storage"));
    QCOMPARE(server.status("GET", "/d/?archive=zip"), 200);
}

void TestArchives::plansShareTheirMemory()
{
    const ArchiveServer server;
    QString deep;
    for (int i = 0; i < 12; ++i)
        deep += QString(250, QLatin1Char('d')) + QLatin1Char('/');
    for (int i = 0; i < 10; ++i)
        server.addFile(deep + QString::number(i), {});
    MemoryBudget &memory = *server.engine.setup()->archiveMemory;
    const qint64 unused = memory.unused();
    // Enough for the names, but not for as many paths.
    std::optional<MemoryBudget::Part> others(std::in_place, memory, unused - 10000);
    QCOMPARE(judged(server.archive(), "len(z.infolist()), sorted(z.namelist()) == z.namelist()"),
             QByteArray("22 True"));
    QTRY_COMPARE(memory.unused(), 10000); // what was made is gone
    QVERIFY(others->resize(unused - 5000));
    const RawReply refused = replyTo(server, "GET", wholeFolder);
    QCOMPARE(refused.status(), QByteArray("503 Service Unavailable"));
    QCOMPARE(refused.header("Retry-After"), QByteArray("60"));
    QTRY_COMPARE(memory.unused(), 5000);
}

/// Whatever needs 64 bits: a size, an offset, a count.
void TestArchives::largeFilesAndOffsets()
{
    const ArchiveServer server({ { "b", "behind" } });
    const QString path = server.addLarge("a", qint64(5) << 30);
    const std::shared_ptr<const Share> share =
        std::make_shared<Share>(*Share::at(server.sharePath(), {}, Share::Links::Beneath));
    ZipEntries entries{ { "a", share->facts("a") }, { "b", share->facts("b") } };
    ZipEntry folder{ "c/", share->facts({}) };
    for (int i = 0; i < 70000; ++i) {
        folder.name = "c" + std::to_string(i) + '/';
        entries.push_back(folder);
    }
    const auto sums = std::make_shared<FileSums>();
    sums->keep(entries[0].facts, { 0x12345678, entries[0].size() });
    ZipLayoutMaker maker(entries, 0);
    while (!maker.placeNext()) { }
    const ZipReader::Source source{ share, {}, maker.take(), sums };
    const qint64 size = source.layout->size();
    const qint64 second = source.layout->entry(1).offset;

    // In a file without the content of the first one.
    const QTemporaryDir folderOfArchive;
    QFile archive(folderOfArchive.filePath(QStringLiteral("a.zip")));
    QVERIFY(archive.open(QIODevice::WriteOnly));
    archive.write(rangeOf(source, 0, 100));
    QVERIFY(archive.seek(second - 24));
    archive.write(rangeOf(source, second - 24, size - second + 24));
    QCOMPARE(archive.pos(), size);
    archive.close();
    QCOMPARE(judged(archive.fileName(),
                    "len(z.infolist()), z.getinfo('a').file_size, hex(z.getinfo('a').CRC),"
                    "z.getinfo('b').header_offset > 2**32, z.read('b')",
                    false),
             QByteArray("70002 5368709120 0x12345678 True b'behind'"));
    QVERIFY(rangeOf(source, second - 24, 24).startsWith("PK\x07\x08\x78\x56\x34\x12"));
    QVERIFY(QFile::resize(path, 1));
    QVERIFY(rangeOf(source, 0, 100).isEmpty());
}

void TestArchives::ownerIsToldOfADownload()
{
    const ArchiveServer server({ { "d/b", "content" } });
    server.addLarge("d/a", largeBytes);
    RawClient client(server.port());
    client.socket->setReadBufferSize(1024);
    client.send(rawRequest("POST", "/d/?archive=zip&/", formHeader, "name=a&name=b"));
    const auto transfer = [&server] {
        const std::vector<Visit> visits = server.server->visits();
        return visits.empty() ? std::nullopt : visits.front().transfer;
    };
    QTRY_VERIFY(transfer() && transfer()->done > (1 << 14));
    QVERIFY(!transfer()->isUpload && transfer()->left > largeBytes / 2);
    QCOMPARE(transfer()->path, QByteArray("/d/?archive=zip"));
    client.socket->setReadBufferSize(0);
    QVERIFY(client.reply().body.size() > largeBytes);
    QTRY_COMPARE(server.sink.deeds.size(), 1);
    const Deed &deed = server.sink.deeds[0];
    QVERIFY(deed.isWhole && !deed.isFolder);
    QCOMPARE(deed.method + ' ' + deed.path, QByteArray("GET /d/?archive=zip"));
}

} // namespace standard

QTEST_GUILESS_MAIN(standard::TestArchives)
#include "tst_archives.moc"
