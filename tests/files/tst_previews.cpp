#include "files/Previews.h"

#include "tests/files/Pictures.h"
#include "tests/support/Data.h"
#include "tests/support/Files.h"

#include <QProcess>
#include <QSignalSpy>
#include <QStandardPaths>
#include <QTemporaryDir>

#include <memory>

#include <fcntl.h>

using State = Previews::State;

namespace {

FileDescriptor opened(const QString &path)
{
    return FileDescriptor(::open(QFile::encodeName(path).constData(), O_RDONLY | O_CLOEXEC));
}

PictureId idOf(const QString &path)
{
    return PictureId::of(opened(path).get()).value();
}

State want(Previews &previews, const QString &path, const QByteArray &extension)
{
    return previews.want(
        idOf(path), extension, [path] { return opened(path); }, Urgency::InView);
}

State settled(Previews &previews, const QString &path, const QByteArray &extension)
{
    const auto isSettled = [&] { return want(previews, path, extension) != State::Pending; };
    static_cast<void>(QTest::qWaitFor(isSettled, 60000));
    return want(previews, path, extension);
}

} // namespace

class TestPreviews : public QObject
{
    Q_OBJECT
private Q_SLOTS:
    void makes_data();
    void makes();
    void makesByLibraries_data();
    void makesByLibraries();
    void replacedPictureIsAnother();
    void lookedAtGoesFirst();
    void helperIsNotTrusted();
    void missingHelperIsToldOnce();
    void sweepsOnlyDeadOnes();

private:
    QString at(const char *name) const { return dir.filePath(QLatin1String(name)); }
    QString addFile(const char *name, const QByteArray &content) const
    {
        writeFile(at(name), content);
        return at(name);
    }
    QStringList ownFolders() const
    {
        const QStringList names{ QLatin1String("quillon-*") };
        return QDir(folder).entryList(names, QDir::Dirs | QDir::NoSymLinks);
    }

    /// Empty where nothing makes one.
    QByteArray heicOf(const QByteArray &jpeg) const
    {
        const QString from = addFile("telephone.jpg", jpeg);
        QProcess::execute(QStringLiteral("heif-enc"), { from, QStringLiteral("-o"), at("heic") });
        return QFile::exists(at("heic")) ? readFile(at("heic")) : QByteArray();
    }

    QTemporaryDir dir;
    const QString folder = at("previews");
    const QString program = QLatin1String(QUILLON_PREVIEW);
};

void TestPreviews::makes_data()
{
    // no preview has an empty size
    columnsOf<QByteArray, QByteArray, QSize>("content", "extension", "size");
    const QByteArray jpeg = encoded(noise(400, 300), "JPEG");
    const QByteArray png = encoded(noise(400, 300), "PNG");
    const QSize none;

    row("a JPEG fits into the square", jpeg, "jpg", QSize(124, 93));
    row("a thin JPEG keeps a pixel", encoded(noise(4000, 8), "JPEG"), "jpg", QSize(124, 1));
    row("a PNG takes the width", png, "png", QSize(124, 93));
    row("a tall PNG grows out of the square", encoded(noise(100, 400), "PNG"), "png",
        QSize(124, 496));
    row("a camera that lay on its side", withOrientation(jpeg, 6), "jpg", QSize(93, 124));
    row("such a one under the other name", withOrientation(jpeg, 8), "png", QSize(124, 165));
    row("a PNG that takes threads", encoded(noise(1200, 900), "PNG"), "jpg", QSize(124, 93));
    row("one of a wanted size", jpeg, "160", QSize(160, 120));
    row("such a one, turned", withOrientation(jpeg, 6), "160", QSize(120, 160));
    row("never larger than the picture", png, "1280", QSize(400, 300));
    row("half a PNG", png.left(png.size() / 2), "png", none);
    row("a progressive JPEG too large",
        withJpegSize(encoded(noise(9, 9), "JPEG", true), 9000, 9000), "jpg", none);
    row("a JPEG too large even when reduced", withJpegSize(jpeg, 65500, 65500), "jpg", none);
    row("a JPEG too large for any size", withJpegSize(jpeg, 65500, 65500), "160", none);
    row("a PNG with half a gigabyte of notes", withPngNotes(png, 70), "png", none);
}

void TestPreviews::makes()
{
    QFETCH(QByteArray, content);
    QFETCH(QByteArray, extension);
    QFETCH(QSize, size);
    Previews previews(program, folder);
    const QString path = addFile("picture", content);
    QCOMPARE(settled(previews, path, extension), size.isValid() ? State::Ready : State::Failed);
    if (size.isValid())
        QCOMPARE(
            QImage(previews.fileOf(idOf(path)), extension.toInt() ? nullptr : extension.constData())
                .size(),
            size);
}

void TestPreviews::makesByLibraries_data()
{
    columnsOf<QString, QString, QByteArray, QSize>("tool", "library", "content", "size");
    const QByteArray jpeg = encoded(noise(400, 300), "JPEG");
    const QByteArray small = encoded(noise(80, 60), "JPEG");
    const auto tool = QStringLiteral("ffmpegthumbnailer");
    const auto library = QStringLiteral("libffmpegthumbnailer.so.4");
    const QSize none;
    row("a frame of a video", tool, library, video(jpeg, 400, 300), QSize(160, 120));
    row("no larger than the video", tool, library, video(small, 80, 60), QSize(80, 60));
    row("a frame of a flash video", tool, library, flashVideo(400, 300), QSize(160, 120));
    row("a video without a frame", tool, library, video("", 400, 300), none);
    row("no video", tool, library, bigEndian(32, 4) + "ftypisom" + jpeg, none);
    const auto heifTool = QStringLiteral("heif-enc");
    const auto heif = QStringLiteral("libheif.so.1");
    const QByteArray heic = heicOf(jpeg);
    row("a HEIC", heifTool, heif, heic, QSize(160, 120));
    row("a HEIC, turned", heifTool, heif, turned(heic), QSize(120, 160));
    row("half a HEIC", heifTool, heif, heic.left(heic.size() / 2), none);
}

/// And where the library can't be loaded there is none.
void TestPreviews::makesByLibraries()
{
    QFETCH(QString, tool);
    QFETCH(QString, library);
    QFETCH(QByteArray, content);
    QFETCH(QSize, size);
    if (QStandardPaths::findExecutable(tool).isEmpty())
        QSKIP("its package is not installed");
    const QString path = addFile("film", content);
    for (const bool isThere : { true, false }) {
        if (!isThere) {
            writeFile(dir.filePath(QLatin1String("broken/") + library), {});
            qputenv("LD_LIBRARY_PATH", QFile::encodeName(at("broken")));
        }
        Previews previews(program, folder);
        const State state = size.isValid() && isThere ? State::Ready : State::Failed;
        QCOMPARE(settled(previews, path, "160"), state);
        if (state == State::Ready)
            QCOMPARE(QImage(previews.fileOf(idOf(path))).size(), size);
    }
    qunsetenv("LD_LIBRARY_PATH");
    Previews lists(program, folder);
    QCOMPARE(settled(lists, path, "jpg"), State::Failed);
}

void TestPreviews::replacedPictureIsAnother()
{
    Previews previews(program, folder, { 10, 20000 }); // keeps a single one
    const QString path = addFile("a.jpg", encoded(noise(400, 300), "JPEG"));
    const PictureId old = idOf(path);
    QCOMPARE(settled(previews, path, "jpg"), State::Ready);
    const QString file = previews.fileOf(old);

    addFile("a.jpg", encoded(noise(300, 400), "JPEG"));
    QCOMPARE(settled(previews, path, "jpg"), State::Ready);
    QCOMPARE(QImage(previews.fileOf(idOf(path)), "JPEG").size(), QSize(93, 124));
    QVERIFY(previews.fileOf(old).isEmpty() && !QFile::exists(file));
}

void TestPreviews::lookedAtGoesFirst()
{
    Previews previews(program, folder, { 3 });
    QByteArray order;
    for (const char asked : QByteArray("xabCBac")) { // upper case: in view
        const char name = char(asked | 0x20);
        const auto open = [&order, name] {
            order += name;
            return FileDescriptor();
        };
        previews.want({ 0, ino_t(name), 0, 0 }, "jpg", open,
                      name == asked ? Urgency::Listed : Urgency::InView);
    }
    QVERIFY(QTest::qWaitFor([&] { return order == "cba"; }));
}

void TestPreviews::helperIsNotTrusted()
{
    const QString script = addFile("helper",
                                   "#!/bin/sh\n[ $1 = jpg ] && exec sleep 1000\n"
                                   "echo more >>$(readlink /proc/self/fd/0)\necho preview\n");
    QVERIFY(QFile::setPermissions(script, QFile::ReadOwner | QFile::ExeOwner));
    Previews previews(script, folder, { 10, 100000, std::chrono::seconds(2) });
    const QString grows = addFile("grows", "1");
    const PictureId seen = idOf(grows);
    want(previews, grows, "png");
    QVERIFY(QTest::qWaitFor([&] { return idOf(grows) != seen; }));
    QCOMPARE(settled(previews, addFile("hangs", "1"), "jpg"), State::Failed);
    QVERIFY(previews.fileOf(seen).isEmpty());
}

void TestPreviews::missingHelperIsToldOnce()
{
    Previews previews(at("nothing"), folder);
    QSignalSpy problems(&previews, &Previews::problem);
    for (const char *name : { "1", "2" })
        QCOMPARE(settled(previews, addFile(name, "x"), "jpg"), State::Failed);
    QCOMPARE(problems.size(), 1);
}

void TestPreviews::sweepsOnlyDeadOnes()
{
    const QString path = addFile("a.png", encoded(noise(400, 300), "PNG"));
    const QString other = addFile("previews/other.png", "x");
    const QString linked = addFile("elsewhere/1", "x");
    addFile("elsewhere/lock", "1\n");
    auto living = std::make_unique<Previews>(program, folder);
    QVERIFY(ownFolders().isEmpty());
    QCOMPARE(settled(*living, path, "png"), State::Ready);
    const QStringList before = ownFolders();
    addFile("previews/quillon-abcdef/lock", "1\n");
    addFile("previews/quillon-abcdef/1", "x");
    QVERIFY(QFile::link(at("elsewhere"), at("previews/quillon-ABCDEF")));
    Previews::sweep(folder);
    QCOMPARE(ownFolders(), before);
    QVERIFY(QFile::exists(living->fileOf(idOf(path))));
    living.reset();
    QVERIFY(ownFolders().isEmpty() && QFile::exists(other) && QFile::exists(linked));
}

QTEST_GUILESS_MAIN(TestPreviews)
#include "tst_previews.moc"
