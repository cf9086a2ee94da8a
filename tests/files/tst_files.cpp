#include "tests/files/Disk.h"
#include "tests/support/SlowSync.h"

#include "files/DiskWorker.h"
#include "files/EntryCopy.h"
#include "files/FileMove.h"
#include "files/HiddenUploads.h"
#include "files/LeftoverSweep.h"
#include "files/ListingCache.h"
#include "files/Pipe.h"
#include "files/Rename.h"
#include "files/TreeCopy.h"
#include "files/TreeRemoval.h"

#include <QTimer>

#include <atomic>
#include <ctime>

#include <sys/socket.h>

namespace {

using Window = FolderListing::Window;
using Order = ListingShape::Order;

DiskError keep(UploadFile &upload)
{
    runToEnd(upload);
    return upload.error();
}

QByteArray listed(const Disk &disk, ListingShape shape)
{
    FolderListing listing(std::move(*disk.share().openFolder("/")), shape);
    runToEnd(listing);
    QByteArray names;
    for (qint64 i = 0; i < listing.count(); ++i)
        names += listing.at(i).name + ' ';
    return names;
}

void setOld(const Disk &disk, const QByteArray &name)
{
    const timespec old[] = { { 1000000, 0 }, { 1000000, 0 } };
    ::utimensat(AT_FDCWD, disk.native(name).constData(), old, 0);
}

/// 100 000 with names of one length.
void makeFiles(const FileDescriptor &folder)
{
    for (int i = 100000; i < 200000; ++i)
        ::mknodat(folder.get(), QByteArray::number(i).constData(), S_IFREG | 0600, 0);
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
    bool run(const Budget &) override
    {
        ::usleep(1000);
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
    void pipedBytes();
    void replacedFileKeepsItsMode();
    void movedFileIsWhole();
    void copyIsHeldUntilItIsPlaced();
    void treeIsCopiedOnce();
    void slowDiskKeepsNoWorkWaiting();
    void listingOrders();
    void largeFolderLeavesTheLoopFree();
};

void FilesTest::newFile()
{
    const Disk disk;
    disk.link("a", "nowhere"); // gives way
    disk.write("b");
    const QByteArray dead = hiddenUploadName();
    disk.write(dead);
    disk.write(".receiving-backup"); // somebody's own
    setOld(disk, dead);
    setOld(disk, ".receiving-backup");
    const auto upload = std::make_shared<UploadFile>();
    QCOMPARE(upload->create(disk.place("a")), DiskError::None);
    QCOMPARE(upload->write("content", 7), DiskError::None);
    QCOMPARE(UploadFile().create(disk.place("./x/../a")), DiskError::Locked);
    QCOMPARE(renameNew(disk.place("b"), disk.place("a")), EEXIST);
    QCOMPARE(disk.share().makeFolders("a/below"), EEXIST);
    QVERIFY(!disk.exists("a"));
    DiskWorker worker; // which goes on when nobody is left to be told
    worker.run(upload, std::make_unique<QObject>().get(), [] { QFAIL("gone"); });
    QTRY_COMPARE(disk.read("a"), QByteArray("content"));
    QCOMPARE(UploadFile().create(disk.place("a")), DiskError::Exists);
    QTRY_VERIFY(!disk.exists(dead));
    QVERIFY(disk.exists(".receiving-backup") && disk.names().endsWith(QLatin1String("a b")));
}

void FilesTest::brokenOffLeavesNothing()
{
    const Disk disk;
    disk.write("folder/a");
    for (const bool cancelled : { false, true, false }) {
        UploadFile upload;
        QCOMPARE(upload.create(disk.place("new")), DiskError::None);
        if (cancelled)
            upload.cancel();
        QCOMPARE(upload.run(Budget(upload.cancelFlag(), {}, cancelled)), cancelled);
    }
    UploadFile late;
    UploadFile homeless;
    QCOMPARE(late.create(disk.place("late")), DiskError::None);
    QCOMPARE(homeless.create(disk.place("folder/new")), DiskError::None);
    disk.write("late", "another's");
    QVERIFY(QDir(disk.path("folder")).removeRecursively());
    QCOMPARE(keep(late), DiskError::Exists);
    QCOMPARE(keep(homeless), DiskError::Missing);
    QCOMPARE(disk.read("late"), QByteArray("another's"));
    QCOMPARE(disk.names(), QStringLiteral("late"));
}

/// As they came, also where the file system takes nothing out of a pipe.
void FilesTest::pipedBytes()
{
    const Disk disk;
    std::array<int, 2> ends{};
    QCOMPARE(::socketpair(AF_UNIX, SOCK_STREAM | SOCK_NONBLOCK, 0, ends.data()), 0);
    const FileDescriptor sender(ends[0]);
    FileDescriptor socket(ends[1]);
    const QByteArray sent(100000, 'x');
    for (const int flags : { 0, O_APPEND }) {
        disk.write("a", "first");
        FileDescriptor file(::open(disk.native("a").constData(), O_WRONLY | flags));
        ::lseek(file.get(), 0, SEEK_END);
        ReceivedFile received;
        received.resume(std::move(file), "a");
        Pipe pipe;
        for (const QByteArray &left : { QByteArray("somebody else's"), sent }) {
            QVERIFY(pipe.open());
            QCOMPARE(::write(sender.get(), left.constData(), size_t(left.size())), left.size());
            QCOMPARE(pipe.fill(socket.get(), left.size()), left.size());
        }
        QCOMPARE(received.write(pipe), DiskError::None);
        QCOMPARE(pipe.fill(socket.get(), 1), -1);
        QCOMPARE(disk.read("a"), "first" + sent);
    }
}

void FilesTest::replacedFileKeepsItsMode()
{
    for (const QByteArray meanwhile : { "", "gone", "another", "link" }) {
        const Disk disk;
        disk.write("a", "link");
        ::chmod(disk.native("a").constData(), 0640);
        UploadFile upload;
        QCOMPARE(upload.replace(disk.place("a")), DiskError::None);
        QCOMPARE(upload.write("new", 3), DiskError::None);
        QCOMPARE(disk.read("a"), QByteArray("link"));
        QCOMPARE(UploadFile().replace(disk.place("a")), DiskError::Locked);
        QCOMPARE(renameNew(disk.place("a"), disk.place("b")), EBUSY);
        FileMove move(std::move(*disk.share().openFile("a")), disk.place("a"), disk.place("b"));
        runToEnd(move);
        QCOMPARE(move.error(), DiskError::Locked);
        if (!meanwhile.isEmpty())
            QFile::rename(disk.path("a"), disk.path("moved"));
        if (meanwhile == "another")
            disk.write("a", meanwhile);
        if (meanwhile == "link")
            disk.link("a", "moved");
        const bool kept = meanwhile.isEmpty() || meanwhile == "gone";
        QCOMPARE(keep(upload), kept ? DiskError::None : DiskError::Exists);
        QCOMPARE(disk.read("a"), kept ? QByteArray("new") : meanwhile);
        QVERIFY(!kept || disk.share().facts("a").mode == mode_t(S_IFREG | 0640));
    }
}

void FilesTest::movedFileIsWhole()
{
    const QByteArray content(3000000, 'c');
    for (const QByteArray meanwhile : { "", "append", "replace" }) {
        const Disk disk;
        const Disk other(QDir::tempPath());
        disk.write("old", content);
        FileMove move(std::move(*disk.share().openFile("old")), disk.place("old"),
                      other.place("new"));
        move.run(Budget(move.cancelFlag(), {}, true)); // one step: a part of it
        if (meanwhile == "replace")
            QFile::remove(disk.path("old"));
        if (!meanwhile.isEmpty())
            disk.write("old", meanwhile == "append" ? content + "more" : content);
        runToEnd(move);
        QCOMPARE(move.error(), meanwhile.isEmpty() ? DiskError::None : DiskError::Changed);
        QCOMPARE(disk.exists("old"), !meanwhile.isEmpty());
        QCOMPARE(other.names(), QLatin1String(meanwhile.isEmpty() ? "new" : ""));
    }
}

void FilesTest::copyIsHeldUntilItIsPlaced()
{
    const Disk disk;
    disk.write("old", "content");
    setOld(disk, "old");
    const QByteArray made = hiddenUploadName();
    const auto share = std::make_shared<const Share>(disk.share());
    EntryCopy copy(share, "old", beside(share->place("old"), made), EntryCopy::Depth::Whole);
    runToEnd(copy);
    for (const bool held : { true, false }) {
        LeftoverSweep sweep(beside(share->place("old"), made), std::chrono::seconds(0));
        runToEnd(sweep);
        QCOMPARE(disk.read(made), QByteArray(held ? "content" : ""));
        copy.unlock();
    }
}

void FilesTest::treeIsCopiedOnce()
{
    const Disk disk;
    for (const char *name : { "tree/b/2", "tree/b/1", "tree/A", "tree/c", "key/k", "1", "A/kept" })
        disk.write(name, name);
    disk.link("tree/again", "b");
    disk.link("tree/b/round", "../..");
    ::chmod(disk.native("tree/b/2").constData(), 0751);
    ::chmod(disk.native("1").constData(), 0604);
    const auto share = std::make_shared<const Share>(disk.share(".", "key"));
    TreeCopy job(share, "tree", [&](const QByteArray &path, OpenFile file) {
        const QByteArray to = path.right(1);
        const bool exists = disk.exists(to);
        const auto existing = exists ? FileCopy::Existing::Replaced : FileCopy::Existing::Kept;
        return std::make_unique<FileCopy>(std::move(file), share->place(to), existing);
    });
    QByteArray outcomes;
    while (!job.isAtEnd()) {
        runToEnd(job);
        for (const TreeCopy::Outcome &outcome : job.takeOutcomes())
            outcomes += outcome.path + (outcome.error == DiskError::None ? " " : "! ");
    }
    QVERIFY2(outcomes.startsWith("tree/A! tree/again/1 tree/again/2 "), outcomes.constData());
    QVERIFY2(outcomes.endsWith("tree/c "), outcomes.constData());
    QCOMPARE(disk.read("1") + disk.read("2"), QByteArray("tree/b/1tree/b/2"));
    QCOMPARE(share->facts("1").mode, mode_t(S_IFREG | 0604));
    QCOMPARE(share->facts("2").mode, mode_t(S_IFREG | 0751));
    QVERIFY(!disk.exists("k"));
}

void FilesTest::slowDiskKeepsNoWorkWaiting()
{
    const Disk disk;
    disk.write("tree/a");
    std::atomic<bool> isThere = false;
    DiskWorker worker;
    int synced = 0;
    for (int i = 0; i < 5; ++i)
        worker.run(std::make_shared<SlowSync>(isThere), this, [&] { ++synced; });
    worker.run(std::make_shared<TreeRemoval>(disk.place("tree")), nullptr, {});
    QTRY_VERIFY(!disk.exists("tree"));
    isThere = true;
    QTRY_COMPARE(synced, 5);
}

void FilesTest::listingOrders()
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
    const QByteArray wide("\xF0\x9F\x98\x80 \xEF\xBC\xA1 "); // the order of UTF-16
    QCOMPARE(listed(disk, {}), "d l B a b " + wide);
    QCOMPARE(listed(disk, { Order::LargestFirst }), "d l b B a " + wide);
    QCOMPARE(listed(disk, { Order::NewestFirst }), "d l b a B " + wide);
    QCOMPARE(listed(disk, { Order::ByName, false }), "B a b d l " + wide);
    QCOMPARE(listed(disk, { Order::ByName, true, false, true }), ".h B a b " + wide);
}

void FilesTest::largeFolderLeavesTheLoopFree()
{
    const Disk disk;
    const Disk other;
    other.write("file", {});
    const Share share = disk.share();
    makeFiles(share.open("/", O_RDONLY));
    DiskWorker worker;
    ListingCache cache(worker);
    double longest = 0;
    QTimer beat;
    connect(&beat, &QTimer::timeout, this, [&, before = worked()]() mutable {
        longest = std::max(longest, worked() - before);
        before = worked();
    });
    beat.start(0);
    // They take turns with the others, and don't keep the worker from its end.
    for (int i = 0; i < 2; ++i)
        worker.run(std::make_shared<EndlessJob>(), this, [] { QFAIL("never ends"); });

    disk.link("out", other.native("file"));
    qint64 inside = 0;
    std::vector<ListingCache::Listing> listings;
    const auto list = [&](const ListingShape &shape, Window window) {
        cache.list(std::move(*share.openFolder("/")), shape, window, this,
                   [&listings, window](const ListingCache::Listing &listing) {
                       QCOMPARE(listing->at(window.first).name,
                                QByteArray::number(window.first ? 100000 + window.first : 0));
                       listings.push_back(listing);
                   });
    };
    QTest::qWait(100); // so that the next change will show
    QElapsedTimer age;
    age.start();
    list({}, { 50000, 30 });
    list({}, { 50010, 20 }); // waits for the first
    list({}, { 99990, 30 }); // has all put in order
    QTRY_COMPARE_WITH_TIMEOUT(int(listings.size()), 3, 60000);
    list({}, { 5, 1 }); // is there, unless this machine is so slow that it is old by now
    const bool isThere = listings.size() == 4;
    QVERIFY(isThere || age.hasExpired(4000));
    QTRY_COMPARE_WITH_TIMEOUT(int(listings.size()), 4, 60000);
    QVERIFY(listings[0] == listings[1] && (!isThere || listings[3] == listings[2]));
    // Who must not leave the folder is shown no link that leads out of it.
    cache.list(std::move(*disk.share(".", "none", Share::Links::Beneath).openFolder("/")), {}, {},
               this, [&](const ListingCache::Listing &listing) { inside = listing->count(); });
    QTRY_COMPARE_WITH_TIMEOUT(inside, listings[0]->count() - 1, 60000);
    list({ Order::LargestFirst }, { 7, 1 });
    disk.write("0"); // the largest
    list({ Order::LargestFirst }, { 0, 1 }); // has to be another
    QTRY_COMPARE_WITH_TIMEOUT(int(listings.size()), 6, 60000);
    QCOMPARE(listings[4]->count() + 1, listings[5]->count());
    const auto removal = std::make_shared<TreeRemoval>(share.place("/"));
    worker.run(removal, this, [&] { beat.stop(); });
    QTRY_VERIFY_WITH_TIMEOUT(!beat.isActive(), 60000);
    QCOMPARE(removal->removed(), qint64(100002));
    QVERIFY2(longest < 0.02, qPrintable(QString::number(longest)));
}

int main(int argc, char **argv)
{
    const QCoreApplication app(argc, argv);
    FilesTest test;
    const int failures = QTest::qExec(&test, argc, argv);
    failCall(SYS_openat, EOPNOTSUPP, O_TMPFILE & ~O_DIRECTORY);
    return failures + QTest::qExec(&test, argc, argv);
}
#include "tst_files.moc"
