#include "classic/pages/HTML_Element_Manager.h"

#include "classic/pages/Cell.h"
#include "classic/pages/Preview.h"
#include "tests/classic/pages/Pictures.h"
#include "tests/support/LiveServer.h"

#include <QDir>
#include <QFile>
#include <QTemporaryDir>
#include <QTest>

namespace {

QByteArray bigEndian(quint32 value, int size)
{
    QByteArray bytes;
    for (int shift = 8 * (size - 1); shift >= 0; shift -= 8)
        bytes.append(char((value >> unsigned(shift)) & 255U));
    return bytes;
}

/// The same JPEG with other dimensions in its frame header.
QByteArray withJpegSize(QByteArray jpeg, quint16 width, quint16 height)
{
    const int baseline = int(jpeg.indexOf("\xff\xc0"));
    const int frame = baseline < 0 ? int(jpeg.indexOf("\xff\xc2")) : baseline;
    return jpeg.replace(frame + 5, 4, bigEndian(height, 2) + bigEndian(width, 2));
}

quint32 crc32(const QByteArray &bytes)
{
    quint32 crc = ~0U;
    for (const char c : bytes) {
        crc ^= static_cast<unsigned char>(c);
        for (int bit = 0; bit < 8; ++bit)
            crc = (crc >> 1U) ^ (crc & 1U ? 0xedb88320U : 0U);
    }
    return ~crc;
}

/// The same PNG with other dimensions in its header chunk (ISO/IEC 15948).
QByteArray withPngSize(QByteArray png, quint32 width, quint32 height)
{
    png.replace(16, 8, bigEndian(width, 4) + bigEndian(height, 4));
    return png.replace(29, 4, bigEndian(crc32(png.mid(12, 17)), 4));
}

/// What the desktop client is told.
QByteArray reference(const ListedEntry &element)
{
    QByteArray text;
    element.toMC(&text, "/u/");
    return text;
}

/// What a browser is told.
QByteArray cell(const ListedEntry &element)
{
    ShortDates dates;
    QByteArray text;
    element.toHTML(&text, { "/u/", false, &dates });
    return text;
}

} // namespace

class TestPreviews : public QObject
{
    Q_OBJECT
private Q_SLOTS:
    void makesPreviews_data();
    void makesPreviews();
    void knowsJpegsHeldWhole_data();
    void knowsJpegsHeldWhole();
    void classifies_data();
    void classifies();
    void pendingBecomesReady();
    void brokenOnesDontStopTheOthers();
    void oneFileOnePreview();
    void clearWhileWorking();

private:
    QString addFile(const QString &name, const QByteArray &content) const;
    QStringList previewFiles() const;

    TestHome home;
    QTemporaryDir dir;
    const QByteArray jpeg = encoded(noise(400, 300), "JPEG");
    const QByteArray png = encoded(noise(400, 300), "PNG");
    const QByteArray progressive = encoded(noise(400, 300), "JPEG", true);
};

QString TestPreviews::addFile(const QString &name, const QByteArray &content) const
{
    QFile file(dir.filePath(name));
    if (!file.open(QIODevice::WriteOnly) || file.write(content) != content.size())
        qFatal("can't write a file");
    return file.fileName();
}

QStringList TestPreviews::previewFiles() const
{
    return QDir(home.path() + QLatin1String("/.thumbnails")).entryList(QDir::Files);
}

void TestPreviews::makesPreviews_data()
{
    QTest::addColumn<QByteArray>("content");
    QTest::addColumn<QString>("extension");
    QTest::addColumn<QSize>("size");
    const QString jpgName = QStringLiteral("jpg");
    const QString pngName = QStringLiteral("png");
    const QSize none(0, 0);

    QTest::newRow("a JPEG fits into the square") << jpeg << jpgName << QSize(124, 93);
    QTest::newRow("a tall JPEG too") << encoded(noise(30, 60), "JPEG") << jpgName << QSize(62, 124);
    QTest::newRow("a progressive JPEG") << progressive << jpgName << QSize(124, 93);
    QTest::newRow("a thin JPEG keeps a pixel")
        << encoded(noise(4000, 8), "JPEG") << jpgName << QSize(124, 1);
    QTest::newRow("a PNG takes the width") << png << pngName << QSize(124, 93);
    QTest::newRow("a tall PNG grows out of the square")
        << encoded(noise(100, 400), "PNG") << pngName << QSize(124, 496);
    QTest::newRow("a JPEG under the other name") << jpeg << pngName << QSize(124, 93);
    QTest::newRow("half a PNG") << png.left(png.size() / 2) << pngName << none;
    QTest::newRow("no picture at all") << QByteArray(30000, 'x') << jpgName << none;
    QTest::newRow("an empty file") << QByteArray() << pngName << none;
    QTest::newRow("another kind") << encoded(noise(40, 30), "BMP") << pngName << none;
    QTest::newRow("a PNG too large") << withPngSize(png, 30000, 30000) << pngName << none;
    QTest::newRow("a PNG whose preview is too tall")
        << withPngSize(png, 1, 900000) << pngName << none;
    QTest::newRow("a progressive JPEG too large")
        << withJpegSize(progressive, 9000, 9000) << jpgName << none;
    QTest::newRow("a JPEG too large even when reduced")
        << withJpegSize(jpeg, 65500, 65500) << jpgName << none;
}

void TestPreviews::makesPreviews()
{
    QFETCH(QByteArray, content);
    QFETCH(QString, extension);
    QFETCH(QSize, size);
    const QString path = addFile(QStringLiteral("picture"), content);
    QCOMPARE(makePreview(path, extension).size(), size);
}

void TestPreviews::knowsJpegsHeldWhole_data()
{
    QTest::addColumn<QByteArray>("content");
    QTest::addColumn<bool>("whole");
    QTest::newRow("one scan") << jpeg << false;
    QTest::newRow("progressive") << progressive << true;
    QByteArray scans = jpeg;
    scans[int(scans.indexOf("\xff\xda")) + 4] = 1;
    QTest::newRow("a scan for each component") << scans << true;
    QByteArray garbage = jpeg;
    garbage.insert(2, "\xda\x08\x08\x03");
    QTest::newRow("a scan header in what decoders skip") << garbage << true;
    QTest::newRow("nothing behind the first marker") << QByteArray("\xff\xd8") << true;
}

void TestPreviews::knowsJpegsHeldWhole()
{
    QFETCH(QByteArray, content);
    QFETCH(bool, whole);
    QBuffer buffer(&content);
    QVERIFY(buffer.open(QIODevice::ReadOnly));
    QCOMPARE(holdsWholeJpeg(buffer), whole);
}

void TestPreviews::classifies_data()
{
    QTest::addColumn<int>("size"); // bytes; -1: a folder
    QTest::addColumn<QByteArray>("picture"); // empty: none
    QTest::addColumn<bool>("ready");
    const auto row = [](const char *name, int size, const char *picture, bool ready = true) {
        QTest::newRow(name) << size << QByteArray(picture) << ready;
    };
    row("song.mp3", 1, "/_i/music.png");
    row("archive.tar.gz", 1, "/_i/folder_tar.png");
    row("PAGE.HTML", 1, "/_i/html.png");
    row("x.unknown", 1, "");
    row("Makefile", 1, "");
    row(".profile", 1, "");
    row("end.", 1, "");
    row("small 1.PNG", 19999, "/u/small%201.PNG");
    row("large.png", 20000, "/_i/image.png", false);
    row("photo.JPG", 20000, "/_i/image.png", false);
    row("photo.jpeg", 20000, "");
    row("folder.jpg", -1, "/_i/folder.png");
}

void TestPreviews::classifies()
{
    QFETCH(int, size);
    QFETCH(QByteArray, picture);
    QFETCH(bool, ready);
    const QString name = QLatin1String(QTest::currentDataTag());
    if (size < 0)
        QVERIFY(QDir(dir.path()).mkdir(name));
    else
        addFile(name, QByteArray(size, 'x'));

    const ListedEntry element(QFileInfo(dir.filePath(name)));
    QCOMPARE(element.isReady(), ready);
    const QList<QByteArray> pieces = cell(element).split('"');
    const int source = int(pieces.indexOf("><img src=")) + 1;
    const int folderSource = int(pieces.indexOf("><br>" + name.toUtf8() + "<br><img src=")) + 1;
    const int shown = qMax(source, folderSource);
    QCOMPARE(shown > 0 ? pieces.at(shown) : QByteArray(), picture);
}

void TestPreviews::pendingBecomesReady()
{
    HTML_Element_Manager manager;
    const QString path = addFile(QStringLiteral("ready &.jpg"), jpeg);
    QCOMPARE(reference(manager.toHTML(QFileInfo(path))), QByteArray("/_t/"));
    QTRY_VERIFY(manager.toHTML(QFileInfo(path)).isReady());

    const QByteArray preview = "/_t/" + dir.path().toUtf8();
    QCOMPARE(reference(manager.toHTML(QFileInfo(path))), preview + "/ready &.jpg");
    const QString file = manager.getTempFile(path);
    QVERIFY(file.startsWith(home.path() + QLatin1String("/.thumbnails/ready &.jpg")));
    QCOMPARE(QImage(file, "JPEG").size(), QSize(124, 93));

    // Only the preview is kept, the rest is what the entry has become.
    addFile(QStringLiteral("ready &.jpg"), QByteArray(3 * 1024 * 1024 + 1, 'x'));
    const QByteArray changed = cell(manager.toHTML(QFileInfo(path)));
    QVERIFY(changed.contains("</a>3MB<br>"));
    QVERIFY(changed.contains("<img src=\"" + preview + "/ready%20&.jpg\" vspace="));
    QCOMPARE(manager.getTempFile(path), file);
    QVERIFY(manager.getTempFile(dir.filePath(QStringLiteral("other.jpg"))).isEmpty());
}

void TestPreviews::brokenOnesDontStopTheOthers()
{
    HTML_Element_Manager manager;
    const QString broken = addFile(QStringLiteral("broken.png"), QByteArray(20000, 'x'));
    const QString longName = addFile(QString(251, QLatin1Char('n')) + QLatin1String(".png"), png);
    const QString gone = addFile(QStringLiteral("gone.png"), png);
    const QString good = addFile(QStringLiteral("good.png"), png);
    for (const QString &path : { broken, longName, gone, good })
        QVERIFY(!manager.toHTML(QFileInfo(path)).isReady());
    QVERIFY(QFile::remove(gone));
    QTRY_VERIFY(manager.toHTML(QFileInfo(good)).isReady());
    for (const QString &path : { broken, longName }) {
        QVERIFY(manager.toHTML(QFileInfo(path)).isReady());
        QCOMPARE(reference(manager.toHTML(QFileInfo(path))), QByteArray());
    }
    QCOMPARE(QImage(manager.getTempFile(good), "PNG").size(), QSize(124, 93));
}

void TestPreviews::oneFileOnePreview()
{
    HTML_Element_Manager manager;
    const QString path = addFile(QStringLiteral("one.jpg"), jpeg);
    const QString link = dir.filePath(QStringLiteral("link.jpg"));
    const QString roundAbout = dir.filePath(QStringLiteral("here/one.jpg"));
    QVERIFY(QFile::link(path, link));
    QVERIFY(QFile::link(dir.path(), dir.filePath(QStringLiteral("here"))));
    const QString canonical = QFileInfo(dir.path()).canonicalFilePath();

    manager.toHTML(QFileInfo(path));
    QTRY_VERIFY(manager.toHTML(QFileInfo(path)).isReady());
    for (const QString &other : { path, link, roundAbout }) {
        QVERIFY(manager.toHTML(QFileInfo(other)).isReady());
        QVERIFY(manager.toHTML(QFileInfo(other), entryFacts(other), canonical).isReady());
        QCOMPARE(manager.getTempFile(other), manager.getTempFile(path));
    }
    QCOMPARE(previewFiles().size(), 1);
}

void TestPreviews::clearWhileWorking()
{
    HTML_Element_Manager manager;
    for (int round = 0; round < 3; ++round) {
        for (int i = 0; i < 50; ++i)
            manager.toHTML(QFileInfo(addFile(QStringLiteral("many%1.jpg").arg(i), jpeg)));
        manager.clear();
        QCOMPARE(previewFiles().size(), 0);
        QVERIFY(manager.getTempFile(dir.filePath(QStringLiteral("many0.jpg"))).isEmpty());
    }
}

QTEST_GUILESS_MAIN(TestPreviews)
#include "tst_previews.moc"
