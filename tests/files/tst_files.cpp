#include "Disk.h"

#include "files/DiskWorker.h"
#include "files/FileMove.h"
#include "files/ListingCache.h"
#include "files/Rename.h"
#include "files/TreeCopy.h"
#include "files/TreeRemoval.h"

#include <QTimer>

#include <csignal>
#include <ctime>

#include <sys/resource.h>
#include <sys/stat.h>

namespace {

using Listing = std::shared_ptr<FolderListing>;

DiskError keep(UploadFile &upload)
{
    runToEnd(upload);
    return upload.error();
}

Listing list(const Disk &disk, ListingShape shape = {}, FolderListing::Window window = {})
{
    return std::make_shared<FolderListing>(std::move(*disk.share().openFolder("/")), shape, window);
}

QByteArray names(const Listing &listing)
{
    QByteArray all;
    runToEnd(*listing);
    for (qint64 i = 0; i < listing->count(); ++i)
        all += listing->at(i).name + ' ';
    return all;
}

void makeFiles(const Disk &disk, int count)
{
    const FileDescriptor folder(::open(disk.native(".").constData(), O_RDONLY));
    for (int i = 0; i < count; ++i)
        ::mknodat(folder.get(), QByteArray::number(100000 + i).constData(), S_IFREG | 0600, 0);
}

/// Time that the calling thread has worked, in seconds: other programs don't count.
double worked()
{
    timespec time = {};
    ::clock_gettime(CLOCK_THREAD_CPUTIME_ID, &time);
    return double(time.tv_sec) + double(time.tv_nsec) / 1e9;
}

/// Never ends by itself.
class EndlessJob : public DiskJob
{
public:
    bool run(const Budget &until) override
    {
        while (!until.isUsedUp()) { }
        return false;
    }
};

} // namespace

/// Runs once where files need no name until they are whole, and once where they do.
class FilesTest : public QObject
{
    Q_OBJECT
private Q_SLOTS:
    void newFile();
    void brokenOffLeavesNothing();
    void replacedFileKeepsItsMode();
    void fullDisk();
    void onlyStaleLeftoversAreSwept();
    void copyReplacesOnlyFiles();
    void movedFileIsWhole();
    void treeIsCopiedOnce();
    void orders();
    void windowsAndCache();
    void largeFolderLeavesTheLoopFree();
};

void FilesTest::newFile()
{
    const Disk disk;
    const Share share = disk.share();
    disk.link("a", "nowhere"); // gives way
    const auto upload = std::make_shared<UploadFile>();
    QCOMPARE(upload->create(share.place("a")), DiskError::None);
    QCOMPARE(upload->write("content", 7), DiskError::None);
    QCOMPARE(UploadFile().create(share.place("./x/../a")), DiskError::Locked);
    disk.write("b", "another's");
    QCOMPARE(renameNew(share.place("b"), share.place("a")), EEXIST);
    QVERIFY(!disk.exists("a"));
    DiskWorker worker; // which goes on when nobody is left to be told
    worker.run(upload, std::make_unique<QObject>().get(), [] { QFAIL("gone"); });
    QTRY_COMPARE(disk.read("a"), QByteArray("content"));
    QCOMPARE(UploadFile().create(share.place("a")), DiskError::Exists);
    QCOMPARE(disk.names(), QStringLiteral("a b"));
}

void FilesTest::brokenOffLeavesNothing()
{
    const Disk disk;
    disk.write("folder/a");
    const Share share = disk.share();
    for (const bool cancelled : { false, true, false }) {
        UploadFile upload;
        QCOMPARE(upload.create(share.place("new")), DiskError::None);
        if (cancelled)
            upload.cancel();
        QCOMPARE(upload.run(Budget(upload.cancelFlag(), {}, cancelled)), cancelled);
    }
    UploadFile late;
    UploadFile homeless;
    QCOMPARE(late.create(share.place("late")), DiskError::None);
    QCOMPARE(homeless.create(share.place("folder/new")), DiskError::None);
    disk.write("late", "another's");
    QVERIFY(QDir(disk.path("folder")).removeRecursively());
    QCOMPARE(keep(late), DiskError::Exists);
    QCOMPARE(keep(homeless), DiskError::Missing);
    QCOMPARE(disk.read("late"), QByteArray("another's"));
    QCOMPARE(disk.names(), QStringLiteral("late"));
}

void FilesTest::replacedFileKeepsItsMode()
{
    const Disk disk;
    const Share share = disk.share();
    for (const bool deleted : { false, true }) {
        disk.write("a", "old");
        ::chmod(disk.native("a").constData(), 0640);
        UploadFile upload;
        QCOMPARE(upload.replace(share.place("a")), DiskError::None);
        QCOMPARE(upload.write("new", 3), DiskError::None);
        QCOMPARE(disk.read("a"), QByteArray("old"));
        QCOMPARE(UploadFile().replace(share.place("a")), DiskError::Locked);
        QCOMPARE(renameNew(share.place("a"), share.place("b")), EBUSY);
        FileMove move(std::move(*share.openFile("a")), share.place("a"), share.place("b"));
        runToEnd(move);
        QCOMPARE(move.error(), DiskError::Locked);
        if (deleted)
            QFile::remove(disk.path("a"));
        QCOMPARE(keep(upload), DiskError::None);
        QCOMPARE(disk.read("a"), QByteArray("new"));
        QCOMPARE(share.facts("a").mode, mode_t(S_IFREG | 0640));
    }
}

void FilesTest::fullDisk()
{
    const Disk disk;
    rlimit before = {};
    ::getrlimit(RLIMIT_FSIZE, &before);
    const rlimit small = { 1000, before.rlim_max };
    ::setrlimit(RLIMIT_FSIZE, &small);
    UploadFile upload;
    upload.create(disk.share().place("a"));
    const DiskError written = upload.write(QByteArray(2000, 'x').constData(), 2000);
    ::setrlimit(RLIMIT_FSIZE, &before);
    QCOMPARE(written, DiskError::NoSpace);
    QCOMPARE(keep(upload), DiskError::NoSpace);
    QCOMPARE(disk.names(), QString());
}

void FilesTest::onlyStaleLeftoversAreSwept()
{
    const Disk disk;
    const timespec daysAgo[] = { { ::time(nullptr) - 200000, 0 }, { ::time(nullptr) - 200000, 0 } };
    for (const char *name : { ".receiving-young", ".receiving-dead", ".receivingother" }) {
        disk.write(name);
        ::utimensat(AT_FDCWD, disk.native(name).constData(), name[11] == 'y' ? nullptr : daysAgo,
                    0);
    }
    UploadFile upload;
    QCOMPARE(upload.create(disk.share().place("a")), DiskError::None);
    const bool hiddenNames = disk.names().count(QLatin1String(".receiving-")) == 3;
    QCOMPARE(keep(upload), DiskError::None);
    QCOMPARE(disk.exists(".receiving-dead"), !hiddenNames);
    QVERIFY(disk.exists(".receiving-young") && disk.exists(".receivingother"));
}

void FilesTest::copyReplacesOnlyFiles()
{
    const Disk disk;
    const Share share = disk.share();
    const QByteArray content(3000000, 'c');
    disk.write("source", content);
    disk.write("folder/old", "old");
    ::chmod(disk.native("source").constData(), 0751);
    const auto copy = [&](const char *to, FileCopy::Existing existing) {
        FileCopy job(std::move(*share.openFile("source")), share.place(to), existing);
        runToEnd(job);
        return job.error();
    };
    QCOMPARE(copy("folder/old", FileCopy::Existing::Kept), DiskError::Exists);
    QCOMPARE(copy("folder", FileCopy::Existing::Replaced), DiskError::Failed);
    QCOMPARE(disk.read("folder/old"), QByteArray("old"));
    QCOMPARE(copy("folder/old", FileCopy::Existing::Replaced), DiskError::None);
    QCOMPARE(copy("folder/new", FileCopy::Existing::Kept), DiskError::None);
    QCOMPARE(disk.read("folder/old"), content);
    QCOMPARE(share.facts("folder/old").mode, mode_t(S_IFREG | 0644));
    QCOMPARE(share.facts("folder/new").mode, mode_t(S_IFREG | 0751));
}

void FilesTest::movedFileIsWhole()
{
    const QByteArray content(3000000, 'c');
    for (const QByteArray meanwhile : { "", "append", "replace" }) {
        const Disk disk;
        const Share share = disk.share();
        disk.write("old", content);
        FileMove move(std::move(*share.openFile("old")), share.place("old"), share.place("new"));
        move.run(Budget(move.cancelFlag(), {}, true)); // one step: a part of it
        if (meanwhile == "replace")
            QFile::remove(disk.path("old"));
        if (!meanwhile.isEmpty())
            disk.write("old", meanwhile == "append" ? content + "more" : content);
        runToEnd(move);
        QCOMPARE(move.error(), meanwhile.isEmpty() ? DiskError::None : DiskError::Changed);
        QCOMPARE(disk.names(), meanwhile.isEmpty() ? QStringLiteral("new") : QStringLiteral("old"));
    }
}

void FilesTest::treeIsCopiedOnce()
{
    const Disk disk;
    for (const char *name : { "tree/b/2", "tree/b/1", "tree/A", "tree/c", "tree/.d", "key/k" })
        disk.write(name, name);
    disk.link("tree/b/round", "../..");
    disk.link("tree/again", "b");
    const auto share = std::make_shared<const Share>(disk.share(".", "key"));
    TreeCopy job(share, "tree", Share::Links::Followed, [&](const QByteArray &path, OpenFile file) {
        return path.endsWith('c')
            ? nullptr
            : std::make_unique<FileCopy>(std::move(file), share->place(path.right(1)),
                                         FileCopy::Existing::Kept);
    });
    QByteArray outcomes;
    while (!job.isAtEnd()) {
        runToEnd(job);
        for (const TreeCopy::Outcome &outcome : job.takeOutcomes())
            outcomes += outcome.path + (outcome.error == DiskError::None ? " " : "! ");
    }
    QVERIFY2(outcomes.startsWith("tree/A tree/again/1 tree/again/2 "), outcomes.constData());
    QVERIFY2(outcomes.endsWith("tree/c! "), outcomes.constData());
    QCOMPARE(disk.read("2"), QByteArray("tree/b/2"));
    QVERIFY(!disk.exists("k"));
}

void FilesTest::orders()
{
    const Disk disk;
    for (const char *name : { "B", "a", ".h", "\xF0\x9F\x98\x80", "\xEF\xBC\xA1", "d/in" }) {
        disk.write(name);
        const timespec times[] = { { 100, 0 }, { *name == 'a' ? 300 : 200, 0 } };
        ::utimensat(AT_FDCWD, disk.native(name).constData(), times, 0);
    }
    disk.write("b", QByteArray(50000, 'x'));
    disk.link("l", "d");
    disk.link("dead", "nowhere");
    ::mkfifo(disk.native("pipe").constData(), 0600);
    using Order = ListingShape::Order;
    const QByteArray wide("\xF0\x9F\x98\x80 \xEF\xBC\xA1 "); // the order of UTF-16
    QCOMPARE(names(list(disk)), "d l B a b " + wide);
    QCOMPARE(names(list(disk, { Order::LargestFirst })), "d l b B a " + wide);
    QCOMPARE(names(list(disk, { Order::NewestFirst })), "d l b a B " + wide);
    QCOMPARE(names(list(disk, { Order::ByName, false })), "B a b d l " + wide);
    QCOMPARE(names(list(disk, { Order::ByName, true, false, true })), ".h B a b " + wide);
}

void FilesTest::windowsAndCache()
{
    const Disk disk;
    makeFiles(disk, 6000);
    ListingCache cache;
    const Listing early = list(disk, {}, { 4000, 30 });
    runToEnd(*early);
    QVERIFY(early->covers({ 4010, 20 }) && !early->covers({ 4010, 30 }));
    for (int i = 4000; i < 4030; ++i)
        QCOMPARE(early->at(i).name, QByteArray::number(100000 + i));
    const auto whole = std::make_shared<FolderListing>(early);
    QVERIFY(names(whole).startsWith("100000 100001 ") && whole->covers({}));

    cache.insert(whole);
    QVERIFY(!cache.find(whole->stamp(), {})); // the folder changed just now
    QTRY_VERIFY((cache.insert(whole), cache.find(whole->stamp(), {})));
    QVERIFY(!cache.find(whole->stamp(), { ListingShape::Order::LargestFirst }));
    disk.write("new");
    QVERIFY(!cache.find(list(disk)->stamp(), {}));
}

void FilesTest::largeFolderLeavesTheLoopFree()
{
    const Disk disk;
    makeFiles(disk, 100000);
    DiskWorker worker;
    double longest = 0;
    double before = worked();
    QTimer beat;
    connect(&beat, &QTimer::timeout, this, [&] {
        longest = std::max(longest, worked() - before);
        before = worked();
    });
    beat.start(0);
    const Listing listing = list(disk);
    const auto removal = std::make_shared<TreeRemoval>(disk.share().place("/"));
    const auto cancelled = std::make_shared<EndlessJob>();
    // They take turns with the others, and don't keep the worker from its end.
    for (const auto &job : { cancelled, std::make_shared<EndlessJob>() })
        worker.run(job, this, [] { QFAIL("never ends"); });
    cancelled->cancel();
    worker.run(listing, this, [&] { worker.run(removal, this, [&] { beat.stop(); }); });
    QTRY_VERIFY_WITH_TIMEOUT(!beat.isActive(), 60000);
    QCOMPARE(listing->count(), qint64(100000));
    QCOMPARE(removal->removed(), qint64(100000));
    QVERIFY2(longest < 0.02, qPrintable(QString::number(longest)));
}

int main(int argc, char **argv)
{
    const QCoreApplication app(argc, argv);
    std::signal(SIGXFSZ, SIG_IGN);
    FilesTest test;
    const int failures = QTest::qExec(&test, argc, argv);
    failCall(SYS_openat, EOPNOTSUPP, O_TMPFILE & ~O_DIRECTORY);
    return failures + QTest::qExec(&test, argc, argv);
}
#include "tst_files.moc"
