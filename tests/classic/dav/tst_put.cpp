#include "classic/dav/Routes.h"
#include "tests/support/LiveServer.h"

#include <QDir>
#include <QTest>

#include <sys/resource.h>

#include <csignal>

namespace {

constexpr auto mc = "User-Agent: mc\r\n";

// Twice what a head's buffer holds, so that the first half of a body does not wait there.
const QByteArray firstHalf(3000, '1');
const QByteArray secondHalf(3000, '2');
const QByteArray whole = firstHalf + secondHalf;
const QByteArray rival(whole.size(), 'r');

QByteArray put(const QByteArray &target, const QByteArray &headers = {},
               const QByteArray &body = whole)
{
    return rawRequest("PUT", target, headers, body);
}

} // namespace

class TestPut : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();

    void answers_data();
    void answers();
    void lostConnectionLeavesNothing();
    void lostConnectionTouchesOnlyItsFile();
    void replacingKeepsTheOldUntilTheEnd();
    void oneUploadAtATime();
    void fullDisk();

private:
    QByteArray content(const char *name) const
    {
        return live->fileContent(QString::fromUtf8(name));
    }
    QStringList entries() const
    {
        return QDir(live->sharePath())
            .entryList(QDir::AllEntries | QDir::Hidden | QDir::System | QDir::NoDotAndDotDot);
    }
    /// A client that stopped in the middle of its body.
    std::unique_ptr<RawClient> halfway(const QByteArray &headers, const QByteArray &target) const;

    std::unique_ptr<LiveServer> live;
    std::unique_ptr<RawClient> client;
    QStringList before;
};

void TestPut::init()
{
    client.reset();
    live.reset(); // before the next one: it gives the home folder back
    live = std::make_unique<LiveServer>(davRoutes());
    live->addFile(QStringLiteral("old.txt"), "the old content");
    QVERIFY(QDir(live->sharePath()).mkdir(QStringLiteral("folder")));
    live->start();
    client = std::make_unique<RawClient>(live->port());
    before = entries();
}

std::unique_ptr<RawClient> TestPut::halfway(const QByteArray &headers,
                                            const QByteArray &target) const
{
    auto uploader = std::make_unique<RawClient>(live->port());
    const qint64 had = live->server->receivedBytes();
    QByteArray sent = put(target, headers);
    sent.chop(secondHalf.size());
    uploader->send(sent);
    uploader->waitUntil([&] { return live->server->receivedBytes() - had >= sent.size(); });
    return uploader;
}

void TestPut::answers_data()
{
    QTest::addColumn<QByteArray>("request");
    QTest::addColumn<QByteArray>("status");
    QTest::addColumn<QStringList>("made");
    const auto row = [](const char *name, const QByteArray &request, const char *status,
                        const QStringList &made = {}) {
        QTest::newRow(name) << request << QByteArray(status) << made;
    };
    row("a new name in other letters", put("/%C3%BC%23%25+%20x"), "201 Created",
        { QStringLiteral("ü#%+ x") });
    row("an existing file", put("/old.txt"), "412 Precondition Failed");
    row("an existing file, by mc", put("/old.txt", mc), "201 Created");
    row("a folder, by mc", put("/folder", mc), "423 Locked");
    row("below a missing folder", put("/missing/new"), "423 Locked");
    row("a length behind the cut of a head", put("/new", "X: " + QByteArray(2500, 'x') + "\r\n"),
        "411 Length Required");
    row("a name cut at its NUL", put("/new%00"), "423 Locked");
    row("a name that is too long", put("/" + QByteArray(300, 'n')), "423 Locked");
    row("a plug-in's probe", rawRequest("PUT", "/new", "User-Agent: ezdavplugin\r\n", "x"),
        "201 Created");
    row("a plug-in's real file", put("/p", "User-Agent: ezdavplugin\r\n"), "201 Created",
        { QStringLiteral("p") });
}

void TestPut::answers()
{
    QFETCH(QByteArray, request);
    QFETCH(QStringList, made);
    QTEST(client->exchange(request).status(), "status");
    QCOMPARE(entries(), QStringList(before + made));
}

void TestPut::lostConnectionLeavesNothing()
{
    const auto uploader = halfway({}, "/new");
    QVERIFY(entries().contains(QStringLiteral("new")));
    QCOMPARE(client->exchange(put("/new")).status(), QByteArray("412 Precondition Failed"));
    uploader->socket->abort();
    QTRY_COMPARE(entries(), before);
    QCOMPARE(client->exchange(put("/new")).status(), QByteArray("201 Created"));
}

void TestPut::lostConnectionTouchesOnlyItsFile()
{
    auto uploader = halfway({}, "/folder/new");
    client->exchange(rawRequest("MOVE", "/folder", "Destination: /elsewhere\r\n"));
    const QString moved = live->sharePath(QStringLiteral("elsewhere/new"));
    QVERIFY(QFile::exists(moved));
    uploader->socket->abort();
    QTRY_VERIFY(!QFile::exists(moved));

    uploader = halfway({}, "/new");
    client->exchange(rawRequest("DELETE", "/new"));
    QCOMPARE(client->exchange(put("/new")).status(), QByteArray("201 Created"));
    uploader->socket->abort();
    QTRY_COMPARE(live->server->connectionCount(), 1);
    QCOMPARE(content("new"), whole);
}

void TestPut::replacingKeepsTheOldUntilTheEnd()
{
    const QString old = live->sharePath(QStringLiteral("old.txt"));
    QVERIFY(QFile::setPermissions(old, QFile::ReadOwner | QFile::WriteOwner | QFile::ReadOther));
    const QFile::Permissions permissions = QFileInfo(old).permissions();
    auto uploader = halfway(mc, "/old.txt");
    QCOMPARE(content("old.txt"), QByteArray("the old content"));
    uploader->socket->abort();
    QTRY_COMPARE(live->server->connectionCount(), 1);
    QCOMPARE(entries(), before);
    QCOMPARE(content("old.txt"), QByteArray("the old content"));

    uploader = halfway(mc, "/old.txt");
    uploader->send(secondHalf);
    QTRY_COMPARE(content("old.txt"), whole);
    QCOMPARE(QFileInfo(old).permissions(), permissions);
    QCOMPARE(entries(), before);
}

void TestPut::oneUploadAtATime()
{
    for (const QByteArray target : { "/new", "/old.txt" }) {
        const auto uploader = halfway(mc, target);
        QCOMPARE(client->exchange(put(target, mc, rival)).status(), QByteArray("423 Locked"));
        uploader->send(secondHalf);
        QTRY_COMPARE(content(target.constData() + 1), whole);
        // The name is free again once the first one is whole.
        QCOMPARE(client->exchange(put(target, mc, rival)).status(), QByteArray("201 Created"));
        QCOMPARE(content(target.constData() + 1), rival);
    }
}

/// A limit on the size of files stands in for the disk.
void TestPut::fullDisk()
{
    rlimit usual = {};
    QCOMPARE(::getrlimit(RLIMIT_FSIZE, &usual), 0);
    const rlimit tight{ 4096, usual.rlim_max };
    for (const char *target : { "/new", "/old.txt" }) {
        const auto ignored = std::signal(SIGXFSZ, SIG_IGN);
        QCOMPARE(::setrlimit(RLIMIT_FSIZE, &tight), 0);
        const RawReply reply = client->exchange(put(target, mc, QByteArray(200000, 'x')));
        ::setrlimit(RLIMIT_FSIZE, &usual);
        std::signal(SIGXFSZ, ignored);
        QCOMPARE(reply.status(), QByteArray("507 Insufficient Storage"));
        QCOMPARE(entries(), before);
        QCOMPARE(content("old.txt"), QByteArray("the old content"));
    }
}

QTEST_GUILESS_MAIN(TestPut)

#include "tst_put.moc"
