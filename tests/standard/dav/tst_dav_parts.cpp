#include "standard/dav/IfHeader.h"
#include "standard/dav/LockTable.h"
#include "standard/dav/PropFindJob.h"
#include "standard/dav/PropertyStore.h"
#include "standard/dav/RequestBodies.h"
#include "tests/files/Disk.h"
#include "tests/support/Data.h"
#include "tests/support/FullDisk.h"

#include <QRandomGenerator>
#include <QtTest>

#include <cerrno>
#include <set>
#include <thread>

#include <sys/xattr.h>

Q_DECLARE_METATYPE(standard::Status)

using namespace standard;
using namespace std::chrono_literals;

namespace {

QByteArray inDav(const QByteArray &root, const QByteArray &content)
{
    return "<D:" + root + " xmlns:D=\"DAV:\">" + content + "</D:" + root + '>';
}

QByteArray inProp(const QByteArray &properties)
{
    return inDav("propertyupdate", "<D:set><D:prop>" + properties + "</D:prop></D:set>");
}

/// `Ok` for a body that is understood.
template <typename Body> Status refusal(const QByteArray &body)
{
    const Parsed<Body> parsed = Body::parse(body);
    const auto *status = std::get_if<Status>(&parsed);
    return status ? *status : Status::Ok;
}

template <typename Body> Body understood(const QByteArray &body)
{
    return std::get<Body>(Body::parse(body));
}

/// "/locked" has the lock "t:1", everything has the ETag "e".
class KnownState : public IfState
{
public:
    bool isLocked(const QByteArray &resource, const QByteArray &token) const override
    {
        return (resource.isEmpty() || resource == "/locked") && token == "t:1";
    }
    QByteArray etag(const QByteArray &) const override { return "\"e]\""; }
};

Lock wish(const QByteArray &path, bool deep = false, bool shared = false,
          const QByteArray &visitor = "me")
{
    Lock lock;
    lock.paths = { path };
    lock.deep = deep;
    lock.shared = shared;
    lock.visitor = visitor;
    lock.timeout = 600s;
    return lock;
}

DeadProperty dead(const QByteArray &name, const QByteArray &value)
{
    return { { QStringLiteral("urn:x"), QString::fromLatin1(name) },
             '<' + name + " xmlns=\"urn:x\">" + value + "</" + name + '>' };
}

QByteArray names(const DeadProperties &properties)
{
    QByteArray text;
    for (const DeadProperty &each : properties)
        text += each.name.local.toUtf8() + ' ';
    return text;
}

/// Tells nothing of the root but what is there.
std::unique_ptr<PropFindJob> jobFor(PropFindJob::Subject subject)
{
    subject.top.href = "/";
    subject.top.facts.folder = true;
    return std::make_unique<PropFindJob>(
        std::move(subject),
        PropertyReport({ PropFindBody::Kind::Named, {} }, {}, std::make_shared<PropertyStore>()));
}

QByteArray textOf(PropFindJob &job, Budget::Clock::duration slice = 1s)
{
    QByteArray text;
    while (!job.isAtEnd()) {
        job.run(Budget(job.cancelFlag(), slice, true));
        text += job.takePiece();
    }
    return text;
}

} // namespace

class DavPartsTest : public QObject
{
    Q_OBJECT
private Q_SLOTS:
    void refusesBodies_data();
    void refusesBodies();
    void readsWhatIsAskedFor();
    void keepsValuesWhole_data();
    void keepsValuesWhole();
    void evaluatesIf();
    void locksExclude_data();
    void locksExclude();
    void locksEnd();
    void locksAreBounded();
    void propertiesSurviveOnDisk();
    void damageIsNoProperties();
    void memoryFollowsPaths();
    void tellsWhatIsMissing();
    void boundsWhatWaits();
    void boundsSearches();
};

void DavPartsTest::refusesBodies_data()
{
    columnsOf<QByteArray, Status>("body", "status");
    const auto row = [](const char *title, const QByteArray &body,
                        Status status = Status::BadRequest) {
        QTest::newRow(title) << body << status;
    };
    const auto prop = [](const QByteArray &names) {
        return inDav("propfind", "<D:prop>" + names + "</D:prop>");
    };
    row("not closed", "<propfind xmlns=\"DAV:\"><allprop/>");
    row("something behind it", inDav("propfind", "<D:allprop/>") + "<x/>");
    row("no namespace", "<propfind><allprop/></propfind>");
    row("lock without a scope", inDav("lockinfo", "<D:locktype><D:write/></D:locktype>"));
    row("unbound prefix", prop("<x:y/>"));
    row("prefix bound to nothing", prop("<x:y xmlns:x=\"\"/>"));
    row("two kinds", inDav("propfind", "<D:allprop/><D:propname/>"));
    row("character that XML can't hold", inDav("propfind", "<D:allprop/><D:x>&#1;</D:x>"));
    row("neither UTF-8 nor UTF-16",
        "<?xml version=\"1.0\" encoding=\"iso-8859-1\"?>" + prop("<D:\xe4/>"));

    // Each of these would keep the server busy for seconds.
    QByteArray many;
    QByteArray attributes;
    for (int i = 0; i < 100000; ++i) {
        many += "<a" + QByteArray::number(i) + "/>";
        attributes += " a" + QByteArray::number(i) + "='>'";
    }
    const QByteArray quote = "<!-- ' --><![CDATA[\"]]><?x '?>";
    row("many names", prop(many), Status::ContentTooLarge);
    row("many elements", inDav("propfind", "<x>" + QByteArray("<y/>").repeated(2000) + "</x>"),
        Status::ContentTooLarge);
    row("long name", prop("<" + QByteArray(1000, 'a') + "/>"), Status::ContentTooLarge);
    row("long namespace", prop("<a xmlns='" + QByteArray(5000, 'a') + "'/>"),
        Status::ContentTooLarge);
    row("many attributes", prop(quote + "<a" + attributes + "/>"), Status::ContentTooLarge);
    attributes.replace(" a", " xmlns:a");
    row("many namespaces",
        prop("<a" + attributes.left(attributes.indexOf(" xmlns:a40=")) + "><a"
             + attributes.left(attributes.indexOf(" xmlns:a40=")) + "/></a>"),
        Status::ContentTooLarge);
}

void DavPartsTest::refusesBodies()
{
    QFETCH(const QByteArray, body);
    QTEST(refusal<PropFindBody>(body), "status");
    // What one of them has too much of may be no such body for the others.
    QVERIFY(refusal<PropPatchBody>(body) != Status::Ok);
    QVERIFY(refusal<LockBody>(body) != Status::Ok);
}

void DavPartsTest::readsWhatIsAskedFor()
{
    const auto named = understood<PropFindBody>(inDav(
        "propfind", "<x xmlns=\"urn:u\"/><D:prop><D:a/><b xmlns=\"urn:x\"><c/></b></D:prop>"));
    QVERIFY(named.kind == PropFindBody::Kind::Named && named.names.size() == 2);
    QVERIFY(named.names[0].isDav("a"));
    QCOMPARE(named.names[1].space, QStringLiteral("urn:x"));
    const auto all =
        understood<PropFindBody>(inDav("propfind", "<D:allprop/><D:include><D:q/></D:include>"));
    QVERIFY(all.kind == PropFindBody::Kind::All && all.names.size() == 1);
    QVERIFY(understood<PropFindBody>({}).kind == PropFindBody::Kind::All);
    const QString wide = QChar(QChar::ByteOrderMark)
        + QString::fromLatin1("<?xml version=\"1.0\" encoding=\"utf-16\"?>"
                              + inDav("propfind", "<D:propname/>"));
    const QByteArray bytes(reinterpret_cast<const char *>(wide.utf16()), int(wide.size() * 2));
    QVERIFY(understood<PropFindBody>(bytes).kind == PropFindBody::Kind::Names);
}

void DavPartsTest::keepsValuesWhole_data()
{
    columns<QByteArray>({ "given", "kept" }); // "": as it was given
    row("text", "<x:p xmlns:x=\"urn:x\">a &lt;&amp;&#13;&gt; \xc3\xbc</x:p>", "");
    row("its own language", "<p xmlns=\"u\" xml:lang=\"de\"/>", "");
    row("namespace from outside, also within a value", "<D:p><D:q kind=\"D:r\"/></D:p>",
        "<D:p xmlns:D=\"DAV:\"><D:q kind=\"D:r\"></D:q></D:p>");
    row("own prefix hides the outer one", "<p xmlns=\"\"><D:q xmlns:D=\"urn:d\"/></p>",
        "<p xmlns=\"\" xmlns:D=\"DAV:\"><D:q xmlns:D=\"urn:d\"></D:q></p>");
    row("what is said aside", "<p xmlns=\"u\"><!--a &amp; <b> --><?go on <c>?><?now?></p>", "");
    row("quotes in attributes", "<p xmlns=\"u\" a='\"&#10;'/>",
        "<p xmlns=\"u\" a=\"&quot;&#10;\"/>");
}

void DavPartsTest::keepsValuesWhole()
{
    QFETCH(const QByteArray, given);
    QFETCH(QByteArray, kept);
    kept = kept.isEmpty() ? given : kept;
    const auto changes = understood<PropPatchBody>(inProp(given)).changes;
    QCOMPARE(changes.front().value.xml, kept);
    const auto again = understood<PropPatchBody>(inProp(kept)).changes;
    QVERIFY(again.front().name == changes.front().name);

    QByteArray german = inProp(given);
    german.replace("<D:set>", "<D:set xml:lang=\"de\">");
    const QByteArray inherited = understood<PropPatchBody>(german).changes.front().value.xml;
    QCOMPARE(inherited.count("xml:lang=\"de\""), 1);
}

void DavPartsTest::evaluatesIf()
{
    const std::pair<QByteArray, QByteArrayList> cases[] = {
        { "true",
          { "(<t:1>)", "(Not <t:2>)", "(<t:1> [\"e]\"])", "(<t:2>) (not<DAV:no-lock>)",
            "</locked> (<t:1>) </free> (<t:2>)", "</free> (<t:1>) (Not <t:1>)" } },
        { "false",
          { "(<t:2>)", "(<t:1> [\"f\"])", "(<t:1> [W/\"e]\"])", "(<t:2>)(Not <t:1>)",
            "</free> (<t:1>)" } },
        { "malformed",
          { "", "()", "(<t:1>", "<t:1>", "(<t:1>) </locked> (<t:1>)", "(\"e\")", "(<t:1>) x",
            "(Not)", "([\"e)" } },
    };
    for (const auto &[outcome, headers] : cases) {
        for (const QByteArray &header : headers) {
            const auto parsed = IfHeader::parse(header);
            QByteArray found = "malformed";
            if (parsed)
                found = parsed->holds(KnownState()) ? "true" : "false";
            QCOMPARE(header + " is " + found, header + " is " + outcome);
            QVERIFY(!parsed || parsed->names("t:1") == header.contains("<t:1>"));
        }
    }
}

void DavPartsTest::locksExclude_data()
{
    // `against` is the root of the lock that forbids it
    columnsOf<QByteArray, bool, bool, QByteArray>("path", "deep", "shared", "against");
    // There are an exclusive lock on "a/b", a deep shared one on "s" and a shared one on "".
    row("the same", "a/b", false, true, "a/b");
    row("below a lock without depth", "a/b/c", true, false, "-");
    row("above, alone", "a", false, false, "-");
    row("above, with all below", "a", true, true, "a/b");
    row("name that begins alike", "a/b!", true, false, "-");
    row("shared below a deep shared one", "s/t", true, true, "-");
    row("exclusive below it", "s/t/u", false, false, "s");
    row("the root, exclusive", "", false, false, "");
    row("the root, deep", "", true, true, "a/b");
}

void DavPartsTest::locksExclude()
{
    QFETCH(const QByteArray, path);
    QFETCH(const bool, deep);
    QFETCH(const bool, shared);
    LockTable table;
    QVERIFY(table.add(wish("a/b")));
    QVERIFY(table.add(wish("s", true, true)));
    QVERIFY(table.add(wish("", false, true)));
    const Lock *conflict = table.conflict(wish(path, deep, shared));
    QTEST(conflict ? conflict->paths.front() : QByteArray("-"), "against");
}

void DavPartsTest::locksEnd()
{
    Lock::Clock::time_point now{};
    LockTable table([&now] { return now; });
    const QByteArray deep = table.add(wish("d", true))->token;
    const QByteArray alone = table.add(wish("e/f"))->token;
    QVERIFY(deep.startsWith("urn:uuid:") && deep != alone);
    now += 500s;
    QVERIFY(table.find(deep, { "d/through/member" }) && table.refresh(deep, 600s));
    QVERIFY(!table.find(alone, { "e" }));
    now += 100s;
    // Whoever goes through the locks must not lose one under the hands.
    const LockTable::Locks found = table.below({ "e" });
    QCOMPARE(table.covering(found.front()->paths).front(), found.front());
    table.expire();
    QVERIFY(table.covering({ "e/f" }).empty());
    QCOMPARE(table.covering({ "d/x" }).size(), std::size_t(1));
    QVERIFY(!table.find(deep, { "dx" }));
    now += 500s;
    table.expire();
    QCOMPARE(table.count(), 0);

    table.add(wish("t"));
    table.add(wish("t/u"));
    table.add(wish("tt"));
    table.removeTree({ "t" });
    QVERIFY(table.covering({ "t/u" }).empty() && !table.covering({ "tt" }).empty());

    QCOMPARE(lockTimeout({}), 600s);
    QCOMPARE(lockTimeout("Second-1"), 180s);
    QCOMPARE(lockTimeout("Extend, Second-4100"), 4100s);
    QCOMPARE(lockTimeout("Infinite, Second-4100000000"), 86400s);
    QCOMPARE(lockTimeout("Second-4100000000"), 86400s);
    QCOMPARE(lockTimeout("Second--1"), 600s);
}

void DavPartsTest::locksAreBounded()
{
    LockTable table;
    for (int i = 0; i < 12000; ++i) {
        const QByteArray visitor = "v" + QByteArray::number(i / 1100);
        const bool taken = table.add(wish("f/" + QByteArray::number(i), false, false, visitor));
        QCOMPARE(taken, i % 1100 < LockTable::maxOfVisitor && i < 11000);
    }
    QCOMPARE(table.count(), LockTable::maxLocks);
    // Each is told with each resource that it covers.
    table.removeTree({ "f" });
    for (int i = 0; i <= LockTable::maxOnPath; ++i)
        QCOMPARE(table.add(wish("s", true, true, "w")) != nullptr, i < LockTable::maxOnPath);
    Lock wordy = wish("t", false, true, "w");
    wordy.owner.fill('x', int(LockTable::maxBytes));
    QVERIFY(!table.add(wordy));
}

void DavPartsTest::propertiesSurviveOnDisk()
{
    const Disk disk(QDir::tempPath());
    disk.write("f");
    const FileDescriptor file(::open(disk.native("f").constData(), O_RDONLY | O_CLOEXEC));
    PropertyStore store;
    const PropertySubject subject{ systemPathOf(file.get()), "f" };
    QCOMPARE(store.write(subject, { dead("a", "1"), dead("b", "2") }), DiskError::None);
    if (store.takeWarning())
        QSKIP("no extended attributes here");
    QVERIFY(::rename(disk.native("f").constData(), disk.native("g").constData()) == 0);
    const PropertyStore later;
    const PropertySubject moved{ systemPathOf(file.get()), "g" };
    QCOMPARE(names(*later.read(moved)), QByteArray("a b "));
    QCOMPARE(later.read(moved)->front().xml, dead("a", "1").xml);

    const auto large = dead("c", QByteArray(PropertyStore::maxBytes, 'x'));
    QCOMPARE(store.write(moved, { large }), DiskError::NoSpace);
    QCOMPARE(names(*store.read(moved)), QByteArray("a b "));
    QCOMPARE(store.write(moved, {}), DiskError::None);
    QCOMPARE(store.write(moved, {}), DiskError::None);
    QVERIFY(store.read(moved)->empty());

    // What a later version, or nobody, understands is neither told as nothing nor written over.
    for (const QByteArray &strange :
         { QByteArray("Q2..."), QByteArray(), QByteArray(70000, 'x') }) {
        const auto size = std::size_t(strange.size());
        if (::setxattr(moved.systemPath.constData(), "user.quillon.dav", strange.constData(), size,
                       0)
            == 0)
            QVERIFY(!store.read(moved));
    }
}

void DavPartsTest::damageIsNoProperties()
{
    const QByteArray good = packed({ dead("a", "some value that is long enough") });
    QCOMPARE(names(*unpacked(good)), QByteArray("a "));
    for (int i = 0; i < good.size(); ++i) {
        QVERIFY(!unpacked(good.left(i)));
        QByteArray bad = good;
        bad[i] = char(~bad.at(i));
        // Of a checked format only the number in front may be wrong without harm.
        const auto found = unpacked(bad);
        QVERIFY(!found || names(*found) == "a ");
    }
}

void DavPartsTest::memoryFollowsPaths()
{
    // A place where nobody can keep attributes.
    PropertyStore store;
    const auto subject = [](const QByteArray &path) {
        return PropertySubject{ "/proc/self/status", path };
    };
    QCOMPARE(store.write(subject("d/f"), { dead("a", "1") }), DiskError::None);
    QCOMPARE(store.write(subject("d"), { dead("b", "1") }), DiskError::None);
    QCOMPARE(store.write(subject("dd"), { dead("c", "1") }), DiskError::None);
    for (const bool first : { true, false })
        QCOMPARE(store.takeWarning(), first);
    // Nothing is lost on the way for want of room.
    std::vector<quint32> noise(15000);
    QRandomGenerator::global()->fillRange(noise.data(), int(noise.size()));
    const QByteArray large(reinterpret_cast<const char *>(noise.data()), int(noise.size() * 4));
    int count = 0;
    while (store.write(subject("d/" + QByteArray::number(count)), { dead("n", large) })
           == DiskError::None)
        ++count;
    QVERIFY(count > 100);
    store.moved("d", "e");
    QCOMPARE(names(*store.read(subject("e/f"))), QByteArray("a "));
    QCOMPARE(names(*store.read(subject("e"))), QByteArray("b "));
    for (int i = 0; i < count; ++i)
        QVERIFY(!store.read(subject("e/" + QByteArray::number(i)))->empty());
    QVERIFY(store.read(subject("d/f"))->empty());
    store.removed("e");
    QVERIFY(store.read(subject("e/f"))->empty());
    QCOMPARE(names(*store.read(subject("dd"))), QByteArray("c "));
}

void DavPartsTest::tellsWhatIsMissing()
{
    const Disk disk;
    for (const char *folder : { "a/", "b/", "c/" }) {
        for (int i = 0; i < 10; ++i)
            disk.write(folder + QByteArray::number(i));
        disk.write(folder + QByteArray("\x01")); // clients can't be told of it
    }
    const auto share = std::make_shared<const Share>(disk.share());
    MemoryBudget memory(1000);
    const auto jobOf = [&](qint64 most) {
        PropFindJob::Subject subject{ share, {}, Depth::Infinity, true, {}, memory };
        subject.mostBelow = most;
        return jobFor(std::move(subject));
    };
    // The folder itself, those that are told, the folder that was cut, and one that was to follow.
    constexpr int most = 15;
    const QByteArray cut = textOf(*jobOf(most));
    QCOMPARE(cut.count("<D:response>"), 1 + most + 2);
    QCOMPARE(cut.count("/</D:href><D:status>HTTP/1.1 507 "), 2);
    QVERIFY(cut.endsWith("</D:multistatus>"));
    QCOMPARE(textOf(*jobOf(most), {}), cut); // one step at a time

    const auto hindered = jobOf(100);
    hindered->run(Budget(hindered->cancelFlag(), {}, true)); // one step: opens the top
    const auto hopeless = jobOf(100);
    {
        const Limited none(RLIMIT_NOFILE, 0); // nothing can be opened
        QCOMPARE(textOf(*hindered).count("/</D:href><D:status>HTTP/1.1 503 "), 3);
        textOf(*hopeless);
    }
    QCOMPARE(hopeless->error(), EMFILE);
    const auto unread = jobOf(100);
    std::thread([&] {
        failCall(SYS_getdents64, EIO, ~0U);
        textOf(*unread);
    }).join();
    QCOMPARE(unread->error(), EIO);
}

void DavPartsTest::boundsWhatWaits()
{
    const Disk disk;
    const QByteArray deep = (QByteArray(200, 'd') + '/').repeated(8);
    for (int i = 0; i < 20; ++i)
        disk.write(deep + QByteArray::number(i) + "/f");
    const auto share = std::make_shared<const Share>(disk.share());
    // Room for the names, but not for as many paths.
    for (const auto &[room, cut] : { std::pair<qint64, bool>(8000, false), { 400, true } }) {
        MemoryBudget memory(room);
        const QByteArray text = textOf(*jobFor({ share, {}, Depth::Infinity, true, {}, memory }));
        QCOMPARE(text.contains("HTTP/1.1 507 "), cut);
        QCOMPARE(text.count("/f</D:href>"), cut ? 0 : 20);
        QCOMPARE(memory.unused(), room);
    }
}

void DavPartsTest::boundsSearches()
{
    const Disk disk;
    for (int i = 0; i < 30; ++i)
        disk.write("abc"[i % 3] + QByteArray("/") + QByteArray::number(i));
    MemoryBudget memory(1000);
    PropFindJob::Subject subject{ std::make_shared<const Share>(disk.share()),
                                  {},
                                  Depth::Infinity,
                                  true,
                                  {},
                                  memory,
                                  QStringLiteral("z") };
    subject.mostLooks = 20;
    const QByteArray cut = textOf(*jobFor(subject));
    QCOMPARE(cut.count("<D:response>"), 3);
    QCOMPARE(cut.count("/</D:href><D:status>HTTP/1.1 507 "), 2);
    // Who has left shows by what is sent.
    subject.longestSilence = 0ms;
    const auto job = jobFor(subject);
    for (const char *piece : { "<?xml ", "\n", "\n" }) {
        QVERIFY(job->run(Budget(job->cancelFlag(), {}, true)));
        QVERIFY(job->takePiece().startsWith(piece));
    }
}

QTEST_GUILESS_MAIN(DavPartsTest)
#include "tst_dav_parts.moc"
