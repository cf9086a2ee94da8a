#include "tests/files/Disk.h"
#include "tests/support/Data.h"

#include "files/CopiedRemoval.h"
#include "files/EntryCopy.h"
#include "files/FolderListing.h"
#include "files/HiddenUploads.h"
#include "files/LeftoverSweep.h"
#include "files/OpenFiles.h"
#include "files/Path.h"
#include "files/Rename.h"
#include "files/ShareParts.h"
#include "files/TreeRemoval.h"

#include <atomic>
#include <thread>

#include <sched.h>
#include <sys/file.h>
#include <sys/mount.h>

namespace {

/// What a path gives to read, or the error.
QByteArray content(const Share &share, const QByteArray &path)
{
    const std::optional<OpenFile> file = share.openFile(path);
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
    void keptFilesAreNeverOld();
    void aClosedShareIsNotLeft_data();
    void aClosedShareIsNotLeft();
    void partsInUseAreShared();
    void hiddenFoldersShowNowhere();
    void mountsLeadToNothingHidden();
    void whatStandsThereIsRemoved();
    void deepTreesAreRemoved();
    void linksPutInMeanwhileLeadNowhere();
    void onlyWhatWasMeantIsRemoved();
    void onlyWhatWasCopiedIsRemoved();
    void treesAreReplaced();
    void leftoversAreSwept();
};

void ShareTest::paths_data()
{
    columns<QByteArray>({ "path", "followed", "beneath" });
    row("climbing stays at the top", "/../sub/./../..//top", "top", "top");
    row("link out", "/out/secret", "secret", "ENOENT");
    row("link to a file out", "/outFile", "secret", "ENOENT");
    row("behind a link .. is by name", "/out/../top", "top", "top");
    row("behind a link .. can't reach its neighbours", "/out/../secret", "ENOENT", "ENOENT");
    row("link that stays inside", "/in/top", "top", "top");
    row("NUL", QByteArray("/top\0.png", 9), "ENOENT", "ENOENT");
    row("pipe", "/pipe", "ENXIO", "ENXIO");
    row("hidden", "//in/../conf/.//profile/key", "ENOENT", "ENOENT");
    row("hidden through a link", "/link/key", "ENOENT", "ENOENT");
    row("hidden through a link to above", "/up/share/conf/profile/key", "ENOENT", "ENOENT");
    row("beside the hidden", "/conf/profile2", "p2", "p2");
}

void ShareTest::paths()
{
    const Disk disk;
    disk.write("share/top", "top");
    disk.write("outside/deep/secret", "secret");
    disk.write("outside/secret", "wrong");
    disk.write("share/conf/profile/key", "key");
    disk.write("share/conf/profile2", "p2");
    disk.link("share/out", disk.native("outside/deep"));
    disk.link("share/outFile", "../outside/deep/secret");
    disk.link("share/in", ".");
    disk.link("share/link", "conf/profile");
    disk.link("share/up", disk.native("."));
    ::mkfifo(disk.native("share/pipe").constData(), 0600);
    const Share share = disk.share("share", "share/conf/profile");
    const Share closed = disk.share("share", "share/conf/profile", Share::Links::Beneath);

    QFETCH(QByteArray, path);
    QFETCH(QByteArray, beneath);
    QTEST(content(share, path), "followed");
    QCOMPARE(content(closed, path), beneath);
    QByteArray followed;
    QByteArray walked;
    std::thread([&] { // as on older systems
        failCall(SYS_openat2, ENOSYS, ~0U);
        followed = content(share, path);
        walked = content(closed, path);
    })
        .join();
    QTEST(followed, "followed");
    QVERIFY(walked == beneath || walked == "ELOOP" || walked == "ENOTDIR");
}

/// Files stay open for who asks again, but each answer is what stands on the disk by then.
void ShareTest::keptFilesAreNeverOld()
{
    const Disk disk;
    disk.write("sub/f", "one");
    disk.write("other", "other");
    const Share share = disk.share();
    OpenFiles files;
    std::weak_ptr<const FileDescriptor> last;
    const auto served = [&]() -> QByteArray {
        const std::optional<ServedFile> file = files.open(share, "sub/f");
        if (!file)
            return {};
        last = file->descriptor;
        if (!file->memo->content.isEmpty())
            return file->memo->content;
        QByteArray text(int(file->facts.size), '\0');
        return ::pread(file->descriptor->get(), text.data(), size_t(text.size()), 0) == text.size()
            ? text
            : "cut";
    };
    QCOMPARE(served(), QByteArray("one"));
    const auto first = last.lock();
    QCOMPARE(served(), QByteArray("one"));
    QVERIFY(last.lock() == first);
    disk.write("sub/f", "longer");
    QCOMPARE(served(), QByteArray("longer"));
    QCOMPARE(::rename(disk.native("other").constData(), disk.native("sub/f").constData()), 0);
    QCOMPARE(served(), QByteArray("other"));
    // Its content is kept only once every further change will show.
    const auto isKept = [&] { return !files.open(share, "sub/f")->memo->content.isEmpty(); };
    QVERIFY(!isKept());
    QTRY_VERIFY(isKept());
    disk.write("sub/f", "OTHER");
    QCOMPARE(served(), QByteArray("OTHER"));
    QCOMPARE(::rename(disk.native("sub").constData(), disk.native("gone").constData()), 0);
    QVERIFY(served().isEmpty());
    QVERIFY(!last.expired());
    QTRY_VERIFY(last.expired());
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
    QCOMPARE(where(share.target("/dead")), QByteArray());
    QVERIFY(share.facts("dead").isBrokenLink() && share.facts("outFile").link);
    QCOMPARE(share.makeFolders("/../b/c/../d//e/"), 0);
    QCOMPARE(share.makeFolders("/a/x"), ENOTDIR);
    QVERIFY(disk.exists("share/b/d/e") && !disk.exists("share/b/c"));
    const Disk other;
    QCOMPARE(other.share().makeFolders(QByteArray("f/").repeated(500)), 0);
    QCOMPARE(other.share().makeFolders(QByteArray("g/").repeated(2500)), ENAMETOOLONG);
    const Share before = other.share(".", "h/i/j"); // which does not stand yet
    QVERIFY(before.makeFolders("h/i/k") == 0 && before.makeFolders("h/i/j/k") == ENOENT);

    const Share single = disk.share("share/a");
    QVERIFY(QFile::rename(disk.path("share/a"), disk.path("renamed")));
    QCOMPARE(content(single, "/"), QByteArray("x"));
    QCOMPARE(where(single.place("/")), disk.native("renamed"));
    QVERIFY(QFile::remove(disk.path("renamed")));
    disk.write("share/a", "saved anew");
    QCOMPARE(content(single, "/"), QByteArray("saved anew"));
    const Share closed = disk.share("share/a", "none", Share::Links::Beneath);
    QVERIFY(QFile::remove(disk.path("share/a")));
    disk.link("share/a", "../outside/file");
    QVERIFY(content(single, "/") == "x" && content(closed, "/") == "ELOOP");
    QVERIFY(!closed.facts("/").exists && !closed.place("/").isValid());
    QVERIFY(QFile::remove(disk.path("share/a")));
    disk.write("share/a", "once more");
    QCOMPARE(content(closed, "/"), QByteArray("once more"));
    QCOMPARE(removeAt(share.place("/")), 7);
    QVERIFY(!share.facts("/").exists && !share.place("/new").isValid());
}

void ShareTest::aClosedShareIsNotLeft_data()
{
    columns<QByteArray>({ "top" });
    row("links are not followed out", "");
    row("a part of one where they are", "share/");
}

void ShareTest::aClosedShareIsNotLeft()
{
    QFETCH(const QByteArray, top);
    const Disk disk;
    for (const char *name : { "share/tree/in/a", "outside/b", "share/c" })
        disk.write(name);
    disk.link("share/tree/out", "../../outside");
    disk.link("share/tree/outFile", disk.native("outside/b"));
    disk.link("share/tree/again", "../c");
    const auto share = top.isEmpty()
        ? std::make_shared<const Share>(disk.share("share", "none", Share::Links::Beneath))
        : Share::partOf(std::make_shared<const Share>(disk.share()), top);
    QVERIFY(QFile::rename(disk.path("share"), disk.path("moved")));
    std::optional<FolderReader> reader = share->openFolder(top + "tree");
    QStringList visible;
    for (FolderReader::Item item; reader->next(item);) {
        if (reader->facts(item).exists)
            visible += QString::fromLatin1(item.name);
    }
    visible.sort();
    QCOMPARE(visible.join(QLatin1Char(' ')), QStringLiteral("again in"));
    // As if they were put there after the look at them.
    QVERIFY(!reader->openFile("outFile").isOpen() && reader->openFile("again").isOpen());
    QVERIFY(!reader->openFolder("out").isOpen() && !share->place(top + "tree/out/new").isValid());
    QVERIFY(share->makeFolders(top + "tree/out/new") != 0);
    QVERIFY(!share->target(top + "tree/outFile").isValid());
    QVERIFY(!share->facts(top + "../outside/b").exists && share->facts(top).folder);
    EntryCopy copy(share, top + "tree", share->place(top + "copy"), EntryCopy::Depth::Whole);
    runToEnd(copy);
    QVERIFY(disk.exists("moved/copy/in/a") && disk.exists("moved/copy/again"));
    QVERIFY(!disk.exists("moved/copy/out") && !disk.exists("moved/copy/outFile"));
    // The links themselves can go.
    QCOMPARE(removeAt(share->place(top + "tree")), 5);
    QVERIFY(disk.exists("outside/b"));
}

void ShareTest::partsInUseAreShared()
{
    const Disk disk;
    disk.write("home/a");
    const auto whole = std::make_shared<const Share>(disk.share());
    ShareParts parts;
    const auto first = parts.part(whole, "home");
    QCOMPARE(parts.part(whole, "home"), first);
    QVERIFY(QFile::rename(disk.path("home"), disk.path("old")));
    disk.write("home/b");
    const auto second = parts.part(whole, "home");
    QVERIFY(second->facts("home/b").exists && !second->facts("home/a").exists);
    QVERIFY(first->facts("home/a").exists);
    QVERIFY(parts.part(std::make_shared<const Share>(disk.share()), "home") != second);
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
    // Nor does what is being received, by whatever face.
    const QByteArray received = hiddenUploadName();
    disk.write("home/" + received);
    QVERIFY(!share.facts("home/" + received).exists);
    FolderListing listing(std::move(*share.openFolder("home")), {});
    runToEnd(listing);
    QCOMPARE(listing.count(), qint64(1));
    // Elsewhere these would be the same.
    disk.write("home/conf/Profile/key");
    QVERIFY(!share.facts("home/conf/Profile/key").exists);
    QCOMPARE(content(share, "home/Conf/PROFILE/key"), QByteArray("ENOENT"));
    for (const char *path : { "/home/conf/profile", "/link/conf/profile", "/home/conf/link/new",
                              "/home/conf/PROFILE", "/link/conf/Profile" })
        QVERIFY(!share.place(path).isValid() && !share.facts(path).exists);
    QCOMPARE(renameNew(share.place("/link/conf"), share.place("/new")), EBUSY);
    Place home = share.place("/home");
    QVERIFY(std::exchange(home.holdsHidden, false)); // as if it was moved there meanwhile
    QCOMPARE(removeAt(std::move(home)), -1);
    QVERIFY(disk.exists("home/conf/profile/key"));
    for (const char *root : { "home", "home/conf", "home/conf/profile/key" })
        QVERIFY(!disk.share(root, "home").open("/", O_RDONLY).isOpen());
}

void ShareTest::mountsLeadToNothingHidden()
{
    if (::unshare(CLONE_NEWNS) != 0
        || ::mount(nullptr, "/", nullptr, MS_REC | MS_PRIVATE, nullptr) != 0)
        QSKIP("not allowed to mount");
    const Disk disk;
    disk.write("real/home/conf/key");
    disk.write("real/other");
    const auto mount = [&disk](const QByteArray &from, const QByteArray &to) {
        QDir().mkpath(disk.path(to));
        QVERIFY(::mount(disk.native(from).constData(), disk.native(to).constData(), nullptr,
                        MS_BIND, nullptr)
                == 0);
    };
    mount("real/home", "known");
    mount("real/home", "a \\ name");
    mount("real/home/conf", "share/part");
    const Share share = disk.share("share", "known/conf");
    mount("real", "share/later");
    const auto isHidden = [](const Share &from, const QByteArray &path) {
        return content(from, path + "/key") == "ENOENT" && !from.openFolder(path)
            && !from.place(path).isValid() && !from.place(path + "/new").isValid();
    };
    QVERIFY(isHidden(share, "part") && isHidden(share, "later/home/conf"));
    QVERIFY(isHidden(disk.share("real", "known/conf"), "home/conf"));
    QVERIFY(isHidden(disk.share("a \\ name", "known/conf"), "conf"));
    QVERIFY(isHidden(disk.share("share/part", "known/conf"), ""));
    QVERIFY(content(share, "later/other") == "x" && share.place("later/new").isValid());
    for (const char *point : { "known", "a \\ name", "share/part", "share/later" })
        ::umount2(disk.native(point).constData(), MNT_DETACH);
}

void ShareTest::whatStandsThereIsRemoved()
{
    const Disk disk;
    disk.write("outside/kept");
    disk.link("tree", "outside");
    QCOMPARE(removeAt(disk.place("tree/")), 0);
    for (int i = 0; i < 100; ++i) // more than is remembered at once
        disk.write("tree/folder" + QByteArray::number(i) + "/.file");
    disk.link("tree/out", "../outside");
    disk.link("tree/dead", "nowhere");
    ::mkfifo(disk.native("tree/pipe").constData(), 0600);
    QCOMPARE(removeAt(disk.place("tree")), 203);
    QCOMPARE(removeAt(disk.place("tree")), 0);
    QVERIFY(disk.exists("outside/kept") && !disk.exists("tree"));
}

void ShareTest::deepTreesAreRemoved()
{
    const Disk disk;
    const rlimit fewDescriptors = { 100, 100 };
    ::setrlimit(RLIMIT_NOFILE, &fewDescriptors);
    FileDescriptor folder(::open(disk.native(".").constData(), O_RDONLY));
    for (int level = 0; level < 3000; ++level) { // more than a path can say
        ::mkdirat(folder.get(), "d", 0700);
        folder.reset(::openat(folder.get(), "d", O_RDONLY));
        ::mknodat(folder.get(), "file", S_IFREG | 0600, 0);
    }
    QCOMPARE(removeAt(disk.place("d")), 5999);
}

void ShareTest::linksPutInMeanwhileLeadNowhere()
{
    for (int round = 0; round < 40; ++round) {
        const Disk disk;
        disk.write("outside/kept");
        for (int i = 0; i < 40; ++i)
            disk.write("tree/" + QByteArray::number(i) + "/a");
        disk.link("parked", disk.native("outside"));
        const FileDescriptor top = disk.share().open("/", O_PATH);
        std::atomic<bool> stop{ false };
        std::thread swapping([&] {
            for (int i = 0; !stop; ++i) { // there and back again
                const QByteArray folder = "tree/" + QByteArray::number(i / 2 % 16);
                ::renameat2(top.get(), folder.constData(), top.get(), "parked", RENAME_EXCHANGE);
            }
        });
        removeAt(disk.place("tree"));
        stop = true;
        swapping.join();
        QVERIFY(disk.exists("outside/kept"));
    }
}

void ShareTest::onlyWhatWasMeantIsRemoved()
{
    const Disk disk;
    disk.write("a/x");
    TreeRemoval late(disk.place("a"));
    QVERIFY(QFile::rename(disk.path("a"), disk.path("b")));
    disk.write("a/y", "another's");
    runToEnd(late);
    QVERIFY(late.isChanged() && !late.isWhole());
    QCOMPARE(disk.read("a/y"), QByteArray("another's"));
}

void ShareTest::onlyWhatWasCopiedIsRemoved()
{
    const Disk disk;
    for (const char *name : { "from/a", "from/sub/b", "from/sub/c", "from/whole/d", "out/e" })
        disk.write(name);
    disk.link("from/link", "../out");
    const QByteArray hidden = hiddenUploadName();
    const auto share = std::make_shared<const Share>(disk.share());
    EntryCopy copy(share, "from", disk.place("to"), EntryCopy::Depth::Whole);
    copy.listCopied();
    runToEnd(copy);
    QVERIFY(copy.failures().empty());
    disk.write("from/" + hidden);
    QVERIFY(disk.exists("to/link/e") && !disk.exists("to/" + hidden));

    disk.write("from/a", "grown since");
    disk.write("from/sub/new", "since");
    CopiedRemoval removal(disk.place("from"));
    removal.setCopied(copy.copied());
    runToEnd(removal);
    QVERIFY(!removal.isWhole());
    QCOMPARE(disk.read("from/a") + disk.read("from/sub/new"), QByteArray("grown sincesince"));
    QVERIFY(!disk.exists("from/sub/b") && !disk.exists("from/whole") && !disk.exists("from/link"));
    QVERIFY(disk.exists("out/e") && disk.exists("from/" + hidden));

    // A list that breaks off, as on a disk that fails.
    const auto list = std::make_shared<CopiedEntries>();
    QVERIFY(list->open(disk.place("list")));
    list->add({ CopiedEntries::Kind::Folder, "out" });
    list->add({ CopiedEntries::Kind::Entry, "none" });
    QVERIFY(list->rewind());
    CopiedRemoval cut(disk.place("out"));
    cut.setCopied(list);
    runToEnd(cut);
    QVERIFY(!cut.isWhole() && disk.exists("out/e"));
}

/// At once, and in steps, as on older file systems.
void ShareTest::treesAreReplaced()
{
    for (const bool inSteps : { false, true }) {
        const Disk disk;
        disk.write("new/a");
        disk.write("old/b");
        disk.write("file");
        std::vector<int> errors;
        std::vector<Place> old(3);
        std::thread([&] {
            if (inSteps)
                failCall(SYS_renameat2, EINVAL, ~0U);
            errors.push_back(renameReplacing(disk.place("none"), disk.place("old"), old[0]));
            errors.push_back(renameReplacing(disk.place("new"), disk.place("old"), old[1]));
            errors.push_back(renameReplacing(disk.place("old"), disk.place("file"), old[2]));
            errors.push_back(respell(disk.place("file"), disk.place("FILE")));
        }).join();
        QCOMPARE(errors, std::vector<int>({ ENOENT, 0, 0, 0 }));
        QVERIFY(!old[0].isValid() && disk.exists("FILE/a"));
        QVERIFY(disk.exists(old[1].name + "/b"));
        QCOMPARE(disk.read(old[2].name), QByteArray("x"));
        QVERIFY(old[1].name.startsWith(".receiving-") && old[2].name.startsWith(".receiving-"));
        QCOMPARE(disk.names().count(QLatin1Char(' ')), 2);
        // Another file of that name is none of its spellings.
        disk.write("file", "other");
        QCOMPARE(respell(disk.place("file"), disk.place("FILE")), EEXIST);
        QCOMPARE(disk.read("file"), QByteArray("other"));
    }
}

void ShareTest::leftoversAreSwept()
{
    const Disk disk;
    const QByteArray killed = hiddenUploadName();
    const QByteArray half = hiddenUploadName();
    const QByteArray busy = hiddenUploadName();
    disk.write(killed + "/a/b");
    disk.write(half);
    disk.write(busy + "/a");
    // All that is left of a folder, if the program ended at that moment.
    const QByteArray aside =
        asideName(QByteArray(85, 'x') + QByteArray("\xe2\x82\xac").repeated(56));
    QVERIFY(aside.size() <= 255 && QString::fromUtf8(aside).toUtf8() == aside);
    disk.write(aside + "/a");
    const FileDescriptor inUse(::open(disk.native(busy).constData(), O_RDONLY));
    QCOMPARE(::flock(inUse.get(), LOCK_SH), 0);
    LeftoverSweep young(disk.place("any"), hiddenUploadLife);
    runToEnd(young);
    QVERIFY(disk.exists(killed + "/a/b"));
    LeftoverSweep sweep(disk.place("any"), std::chrono::seconds(0));
    runToEnd(sweep);
    QVERIFY(!disk.exists(killed) && !disk.exists(half));
    QVERIFY(disk.exists(busy + "/a") && disk.exists(aside + "/a"));
}

QTEST_GUILESS_MAIN(ShareTest)
#include "tst_share.moc"
