#include "files/KeptPreviews.h"

#include "files/DiskWorker.h"
#include "files/Share.h"
#include "tests/support/Files.h"

#include <QDateTime>
#include <QTemporaryDir>

#include <memory>

#include <unistd.h>

class TestKeptPreviews : public QObject
{
    Q_OBJECT
private Q_SLOTS:
    void init();
    void madeOnceAndKept();
    void whereNothingCanBeKept();
    void waiting();
    void oldestGoFirst();

private:
    QString at(const char *name) const { return dir->filePath(QLatin1String(name)); }

    std::unique_ptr<KeptPreviews> newPreviews(const char *folder,
                                              const KeptPreviewLimits &limits = {}) const
    {
        return std::make_unique<KeptPreviews>(at("program"), at(folder), *disk, limits);
    }

    /// What is told goes into `told`, in order: "edge:answer:bytes ".
    void want(KeptPreviews &previews, int edge, QObject *asker)
    {
        const auto share = Share::at(dir->path(), {}, Share::Links::Beneath);
        const auto note = [this, edge](KeptPreviews::Answer answer, const OpenDescriptor &preview) {
            char text[9] = {};
            static_cast<void>(preview && ::pread(preview->get(), text, 8, 0));
            told += QByteArray::number(edge) + ':' + "MNL"[int(answer)] + QByteArray(text) + ' ';
        };
        previews.want(served(share->openFile("a").value()), edge, asker, note);
    }

    std::unique_ptr<QTemporaryDir> dir;
    std::unique_ptr<DiskWorker> disk;
    QByteArray told;
};

/// A program that says that it runs, and hangs, fails or copies.
void TestKeptPreviews::init()
{
    told.clear();
    dir = std::make_unique<QTemporaryDir>();
    disk = std::make_unique<DiskWorker>();
    writeFile(at("program"),
              "#!/bin/sh\necho >>" + QFile::encodeName(at("runs"))
                  + "\n[ $1 = 1 ] && exec sleep 1000\n[ $1 = 2 ] && echo half && exit 1\ncat\n");
    QVERIFY(QFile::setPermissions(at("program"), QFile::ReadOwner | QFile::ExeOwner));
    writeFile(at("a"), "aaa");
}

void TestKeptPreviews::madeOnceAndKept()
{
    auto previews = newPreviews("cache/previews");
    for (const int edge : { 320, 2, 320 })
        want(*previews, edge, this);
    QTRY_COMPARE(told, QByteArray("320:Maaa 320:Maaa 2:N "));
    previews = newPreviews("cache/previews");
    told.clear();
    want(*previews, 320, this);
    QCOMPARE(told, QByteArray("320:Maaa "));
    QCOMPARE(readFile(at("runs")).size(), 2);
    const auto forOthers = QFile::Permissions(0x77); // of group and all
    QVERIFY((QFile::permissions(at("cache/previews")) & forOthers) == QFile::Permissions());
    writeFile(at("a"), "bbb");
    want(*previews, 320, this);
    QTRY_COMPARE(told, QByteArray("320:Maaa 320:Mbbb "));
}

void TestKeptPreviews::whereNothingCanBeKept()
{
    const auto previews = newPreviews("a/previews");
    for (const char *all : { "320:Maaa ", "320:Maaa 320:Maaa " }) {
        want(*previews, 320, this);
        QTRY_COMPARE(told, QByteArray(all));
    }
}

void TestKeptPreviews::waiting()
{
    const auto previews = newPreviews("cache", { 3, 1 << 20, std::chrono::seconds(2) });
    QObject leaves;
    want(*previews, 3, &leaves);
    for (const int edge : { 1, 320, 160 })
        want(*previews, edge, this);
    QCOMPARE(told, QByteArray("160:L ")); // there is no more room
    previews->leave(&leaves);
    QTRY_COMPARE(told, QByteArray("160:L 1:L 320:Maaa "));
    QCOMPARE(readFile(at("runs")).size(), 2);
    // Who most likely left gets it in the end, or gives way.
    told.clear();
    want(*previews, 4, &leaves);
    previews->postpone(&leaves);
    want(*previews, 5, &leaves);
    want(*previews, 6, this);
    previews->postpone(&leaves);
    want(*previews, 7, this);
    QTRY_COMPARE(told, QByteArray("4:L 6:Maaa 7:Maaa 5:Maaa "));
    QCOMPARE(readFile(at("runs")).size(), 5);
    // Of a crowd that left only some are waited for.
    const auto others = newPreviews("others", { 40, 1 << 20, std::chrono::seconds(2) });
    told.clear();
    for (int edge = 10; edge < 30; ++edge)
        want(*others, edge, &leaves);
    others->postpone(&leaves);
    QCOMPARE(told.count(":L "), 4);
    others->leave(&leaves);
    want(*previews, 1, this); // that one takes too long is not kept
    QTRY_COMPARE(readFile(at("runs")).size(), 6);
}

void TestKeptPreviews::oldestGoFirst()
{
    constexpr qint64 block = 4096;
    const PreviewStore store(at("cache"), 8 * block); // of which one is room
    const QDateTime now = QDateTime::currentDateTime();
    const auto setAge = [&now](const QString &path, int seconds) {
        QFile file(path);
        QVERIFY(file.open(QIODevice::ReadWrite));
        QVERIFY(file.setFileTime(now.addSecs(-seconds), QFileDevice::FileModificationTime));
    };
    const QString cache = at("cache/");
    for (const char *name : { "new-killed", "new-going" })
        writeFile(cache + QLatin1String(name), "x");
    writeFile(cache + QLatin1String("none"), {});
    setAge(cache + QLatin1String("new-killed"), 100);
    for (int i = 0; i < 10; ++i) {
        const QString path = cache + QString::number(i);
        writeFile(path, QByteArray(block, 'x'));
        setAge(path, 1000 + i);
    }
    QVERIFY(store.find("9").isOpen());
    store.sweep();
    QCOMPARE(QDir(cache).entryList(QDir::Files).join(QLatin1Char(' ')),
             QStringLiteral("0 1 2 3 4 9 new-going"));
}

QTEST_GUILESS_MAIN(TestKeptPreviews)
#include "tst_keptpreviews.moc"
