#include "Disk.h"

#include "files/Path.h"
#include "files/Rename.h"
#include "files/TreeRemoval.h"

#include <atomic>
#include <cstdio>
#include <thread>

#include <sys/resource.h>
#include <sys/stat.h>

namespace {

/// What a path gives to read, or the error.
QByteArray content(const Share &share, const QByteArray &path,
                   Share::Links links = Share::Links::Followed)
{
    const std::optional<OpenFile> file = share.openFile(path, links);
    if (!file)
        return ::strerrorname_np(errno);
    QByteArray text(16, '\0');
    text.truncate(int(::read(file->descriptor.get(), text.data(), 16)));
    return text;
}

/// How many entries below went with what stood there; -1 when something stays.
int removeAt(Place place)
{
    TreeRemoval removal(std::move(place));
    runToEnd(removal);
    return removal.isWhole() ? int(removal.removed()) : -1;
}

} // namespace

class ShareTest : public QObject
{
    Q_OBJECT
private Q_SLOTS:
    void paths_data();
    void paths();
    void places();
    void hiddenFoldersShowNowhere();
    void singleFile();
    void foldersAreMadeBeneath();
    void whatStandsThereIsRemoved();
    void deepTreesAreRemoved_data();
    void deepTreesAreRemoved();
    void linksPutInMeanwhileLeadNowhere();
};

void ShareTest::paths_data()
{
    QTest::addColumn<QByteArray>("path");
    QTest::addColumn<QByteArray>("followed");
    QTest::addColumn<QByteArray>("beneath");

    const auto row = [](const char *name, const QByteArray &path, const QByteArray &followed,
                        const QByteArray &beneath) {
        QTest::newRow(name) << path << followed << beneath;
    };
    row("file", "/sub/./inner//a.txt", "a", "a");
    row("climbing stays at the top", "/../../top.txt", "top", "top");
    row("link out", "/out/secret", "secret", "EXDEV");
    row("link to a file out", "/outFile", "secret", "EXDEV");
    row("behind a link .. is by name", "/out/../top.txt", "top", "top");
    row("behind a link .. can't reach its neighbours", "/out/../secret", "ENOENT", "ENOENT");
    row("link that stays inside", "/in/a.txt", "a", "a");
    row("NUL", QByteArray("/top.txt\0.png", 13), "ENOENT", "ENOENT");
    row("pipe", "/pipe", "ENXIO", "ENXIO");
    row("hidden", "/conf/profile/key", "ENOENT", "ENOENT");
    row("hidden in another spelling", "//sub/../conf/.//profile/key", "ENOENT", "ENOENT");
    row("hidden through a link", "/link/key", "ENOENT", "ENOENT");
    row("hidden through a link to above", "/up/share/conf/profile/key", "ENOENT", "EXDEV");
    row("beside the hidden", "/conf/profile2", "p2", "p2");
}

void ShareTest::paths()
{
    const Disk disk;
    disk.write("share/sub/inner/a.txt", "a");
    disk.write("share/top.txt", "top");
    disk.write("outside/deep/secret", "secret");
    disk.write("outside/secret", "wrong");
    disk.write("share/conf/profile/key", "key");
    disk.write("share/conf/profile2", "p2");
    disk.link("share/out", disk.native("outside/deep"));
    disk.link("share/outFile", "../outside/deep/secret");
    disk.link("share/in", "sub/inner");
    disk.link("share/link", "conf/profile");
    disk.link("share/up", disk.native("."));
    ::mkfifo(disk.native("share/pipe").constData(), 0600);
    const Share share = disk.share("share", "share/conf/profile");

    QFETCH(QByteArray, path);
    QFETCH(QByteArray, beneath);
    QTEST(content(share, path), "followed");
    QCOMPARE(content(share, path, Share::Links::Beneath), beneath);
    QByteArray followed;
    QByteArray walked;
    std::thread([&] { // as on older systems
        failCall(SYS_openat2, ENOSYS, ~0U);
        followed = content(share, path);
        walked = content(share, path, Share::Links::Beneath);
    })
        .join();
    QTEST(followed, "followed");
    QVERIFY(walked == beneath || walked == "ELOOP" || walked == "ENOTDIR");
}

void ShareTest::places()
{
    const Disk disk;
    disk.write("share/a");
    disk.write("outside/file");
    disk.link("share/out", disk.native("outside"));
    disk.link("share/outFile", "../outside/file");
    disk.link("share/dead", "nowhere");
    const Share share = disk.share("share");
    const auto where = [](const Place &place) {
        return place.isValid() ? pathOf(place.folder.get()) + '/' + place.name : QByteArray();
    };
    QCOMPARE(where(share.place("/out/new")), disk.native("outside/new"));
    QCOMPARE(where(share.place("/outFile/")), disk.native("share/outFile"));
    QCOMPARE(where(share.target("/outFile")), disk.native("outside/file"));
    QCOMPARE(where(share.place("/..")), disk.native("share"));
    QCOMPARE(where(share.place("/none/new")), QByteArray());
    QCOMPARE(where(share.target("/dead")), QByteArray());
    QVERIFY(share.facts("dead").isBrokenLink());
    QVERIFY(share.facts("outFile").file && share.facts("outFile").link);
}

void ShareTest::hiddenFoldersShowNowhere()
{
    const Disk disk;
    disk.write("home/conf/profile/key");
    disk.write("home/conf/other");
    disk.link("home/conf/link", "profile");
    disk.link("home/conf/file", "profile/key");
    disk.link("link", "home");
    const Share share = disk.share(".", "home/conf/profile");

    std::optional<FolderReader> reader = share.openFolder("/home/conf");
    QByteArray visible;
    for (FolderReader::Item item; reader->next(item);)
        visible += reader->facts(item).exists ? item.name : "";
    QCOMPARE(visible, QByteArray("other"));
    QVERIFY(!reader->openFolder("link").isOpen());
    for (const char *path : { "/home/conf/profile", "/link/conf/profile", "/home/conf/link/new" })
        QVERIFY(!share.place(path).isValid() && !share.facts(path).exists);
    QCOMPARE(renameNew(share.place("/link/conf"), share.place("/new")), EBUSY);
    QCOMPARE(renameNew(share.place("/link"), share.place("/new")), 0);
    Place home = share.place("/home");
    QVERIFY(std::exchange(home.holdsHidden, false)); // as if it was moved there meanwhile
    QCOMPARE(removeAt(std::move(home)), -1);
    QVERIFY(disk.exists("home/conf/profile/key"));

    for (const char *root : { "home", "home/conf", "home/conf/profile/key" }) {
        const Share inside = disk.share(root, "home");
        QCOMPARE(content(inside, "/"), QByteArray("ENOENT"));
        QVERIFY(!inside.openFolder("/") && !inside.place("/").isValid());
    }
}

void ShareTest::singleFile()
{
    const Disk disk;
    disk.write("file", "old");
    const Share share = disk.share("file");
    QVERIFY(QFile::rename(disk.path("file"), disk.path("renamed")));
    QCOMPARE(content(share, "/"), QByteArray("old"));
    QCOMPARE(content(share, "/x"), QByteArray("ENOTDIR"));
    QCOMPARE(share.place("/").name, QByteArray("renamed"));
    QVERIFY(QFile::remove(disk.path("renamed")));
    disk.write("file", "saved anew");
    QCOMPARE(content(share, "/"), QByteArray("saved anew"));
}

void ShareTest::foldersAreMadeBeneath()
{
    const Disk disk;
    disk.write("file");
    disk.write("conf/key");
    const Share share = disk.share(".", "conf");
    QCOMPARE(share.makeFolders("/../a/b/../c//d/"), 0);
    QCOMPARE(share.makeFolders("/a/c/d"), 0);
    QVERIFY(disk.exists("a/c/d") && !disk.exists("a/b"));
    QCOMPARE(share.makeFolders("/file/x"), ENOTDIR);
    QCOMPARE(share.makeFolders("/conf/x"), ENOENT);
}

void ShareTest::whatStandsThereIsRemoved()
{
    const Disk disk;
    const Share share = disk.share();
    disk.write("outside/kept");
    disk.link("tree", "outside");
    QCOMPARE(removeAt(share.place("tree/")), 0);
    for (int i = 0; i < 100; ++i) // more than is remembered at once
        disk.write("tree/folder" + QByteArray::number(i) + "/.file");
    disk.link("tree/out", "../outside");
    disk.link("tree/dead", "nowhere");
    ::mkfifo(disk.native("tree/pipe").constData(), 0600);
    QCOMPARE(removeAt(share.place("tree")), 203);
    QCOMPARE(removeAt(share.place("tree")), 0);
    QCOMPARE(removeAt(share.place("tree/none")), -1);
    QCOMPARE(disk.names(), QStringLiteral("outside"));
    QVERIFY(disk.exists("outside/kept"));
}

void ShareTest::deepTreesAreRemoved_data()
{
    QTest::addColumn<int>("levels");
    QTest::addColumn<QByteArray>("name");
    QTest::newRow("3000 levels") << 3000 << QByteArray("d");
    QTest::newRow("a path that can't be said") << 300 << QByteArray(200, 'n');
}

void ShareTest::deepTreesAreRemoved()
{
    const Disk disk;
    QFETCH(int, levels);
    QFETCH(QByteArray, name);
    FileDescriptor folder(::open(disk.native(".").constData(), O_RDONLY));
    for (int level = 0; level < levels; ++level) {
        ::mkdirat(folder.get(), name.constData(), 0700);
        folder.reset(::openat(folder.get(), name.constData(), O_RDONLY));
        ::mknodat(folder.get(), "file", S_IFREG | 0600, 0);
    }
    rlimit before = {};
    ::getrlimit(RLIMIT_NOFILE, &before);
    const rlimit few = { 100, before.rlim_max };
    ::setrlimit(RLIMIT_NOFILE, &few);
    const int removed = removeAt(disk.share().place(name));
    ::setrlimit(RLIMIT_NOFILE, &before);
    QCOMPARE(removed, 2 * levels - 1);
}

void ShareTest::linksPutInMeanwhileLeadNowhere()
{
    for (int round = 0; round < 40; ++round) {
        const Disk disk;
        disk.write("outside/kept");
        for (int i = 0; i < 40; ++i)
            disk.write("tree/" + QByteArray::number(i) + "/a");
        disk.link("parked", disk.native("outside"));
        std::atomic<bool> stop{ false };
        std::thread swapping([&] {
            const FileDescriptor top(::open(disk.native(".").constData(), O_PATH));
            for (int i = 0; !stop; ++i) { // there and back again
                const QByteArray folder = "tree/" + QByteArray::number(i / 2 % 16);
                ::renameat2(top.get(), folder.constData(), top.get(), "parked", RENAME_EXCHANGE);
            }
        });
        removeAt(disk.share().place("tree"));
        stop = true;
        swapping.join();
        QVERIFY(disk.exists("outside/kept"));
    }
}

QTEST_GUILESS_MAIN(ShareTest)
#include "tst_share.moc"
