#include "tests/classic/dav/DavTest.h"
#include "tests/support/Data.h"
#include "tests/support/FullDisk.h"

namespace {

constexpr auto mc = "User-Agent: mc\r\n";
constexpr auto plugIn = "User-Agent: ezdavplugin\r\n";

// Twice what a head's buffer holds, so that the first half of a body does not wait there.
const QByteArray secondHalf(3000, '2');
const QByteArray whole = QByteArray(3000, '1') + secondHalf;
const QByteArray rival(whole.size(), 'r');

QByteArray put(const QByteArray &target, const QByteArray &headers = {},
               const QByteArray &body = whole)
{
    return rawRequest("PUT", target, headers, body);
}

} // namespace

class TestPut : public DavTest
{
    Q_OBJECT

private Q_SLOTS:
    void answers_data();
    void answers();
    void namesAreTakenAtTheEnd();
    void oneUploadAtATime();
    void bodiesInOneStream();
    void fullDisk();

private:
    std::unique_ptr<RawClient> halfway(const QByteArray &headers, const QByteArray &target) const;
};

/// A client that stopped in the middle of its body.
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
    // `made` is a name
    columns<QByteArray>({ "request", "answer", "made", "stored" });
    const auto row = [](const char *name, const QByteArray &request, const QByteArray &answer,
                        const QByteArray &made = {}, const QByteArray &stored = whole) {
        QTest::newRow(name) << request << answer << made << stored;
    };
    const QByteArray heldBack = "PUT /a.txt HTTP/1.1\r\nExpect: 100-continue\r\n"
                                "Content-Length: 9\r\n\r\n";
    const QByteArray longLine = "X: " + QByteArray(2500, 'x') + "\r\n";
    QByteArray many;
    while (many.size() < 3000000)
        many += QByteArray::number(many.size());
    row("a new name in other letters", put("/%C3%BC%23%25+%20x"), "201 Created", "ü#%+ x");
    row("three megabytes", put("/3M", {}, many), "201 Created", "3M", many);
    row("an existing file", put("/a.txt"), "412 Precondition Failed");
    row("the same, before its body is asked for", heldBack, "412 Precondition Failed");
    row("an existing file, by mc", put("/a.txt", mc), "201 Created", "a.txt");
    row("through a link, by mc", put("/link/b.txt", mc), "201 Created", "folder/sub/b.txt");
    row("a folder, by mc", put("/folder", mc), "423 Locked");
    row("the name of a broken link", put("/broken"), "201 Created", "broken");
    row("below a missing folder", put("/missing/new"), "423 Locked");
    row("a name for a folder", put("/new/"), "423 Locked");
    row("a length behind the cut of a head", put("/cut", longLine), "201 Created", "cut");
    row("a name cut at its NUL", put("/new%00"), "423 Locked");
    row("a plug-in's probe", put("/new", plugIn, "x"), "201 Created");
    row("a plug-in's real file", put("/p", plugIn, "xy"), "201 Created", "p", "xy");
}

void TestPut::answers()
{
    QFETCH(QByteArray, request);
    QFETCH(QByteArray, made);
    const bool isNew = !made.isEmpty() && !isThere(made);
    const auto before = entries().size();
    QTEST(status(request), "answer");
    QCOMPARE(entries().size(), before + (isNew ? 1 : 0));
    if (made.isEmpty())
        return;
    QTEST(content(made), "stored");
    // What one program may do is not allowed to the next request of the connection.
    QCOMPARE(status(put('/' + made.toPercentEncoding("/"))), QByteArray("412 Precondition Failed"));
}

/// What is not whole has no name yet, and what happens to its name meanwhile does it no harm.
void TestPut::namesAreTakenAtTheEnd()
{
    auto uploader = halfway({}, "/folder/new");
    QCOMPARE(status(rawRequest("HEAD", "/folder/new")), QByteArray("404 Not Found"));
    QCOMPARE(status(rawRequest("DELETE", "/folder/new")), QByteArray("200 Not exists"));
    QCOMPARE(ask("MOVE", "/folder", destination("/moved")).status(), QByteArray("201 Created"));
    uploader->send(secondHalf);
    QCOMPARE(uploader->reply().status(), QByteArray("201 Created"));
    QCOMPARE(content("moved/new"), whole);

    uploader = halfway({}, "/new");
    live->addFile(QStringLiteral("new"), rival); // by another program
    uploader->send(secondHalf);
    QCOMPARE(uploader->reply().status(), QByteArray("412 Precondition Failed"));
    QCOMPARE(content("new"), rival);
}

void TestPut::oneUploadAtATime()
{
    for (const QByteArray target : { "/new", "/a.txt" }) {
        const QStringList before = entries();
        const auto uploader = halfway(mc, target);
        QCOMPARE(status(put(target)), QByteArray("412 Precondition Failed"));
        QCOMPARE(status(put(target, mc, rival)), QByteArray("423 Locked"));
        // What is written to it from then on would be lost.
        QCOMPARE(ask("MOVE", target, destination("/c")).status(), QByteArray("500 Rename Failed"));
        uploader->socket->abort();
        QTRY_COMPARE(live->server->connectionCount(), 1);
        QCOMPARE(entries(), before);
        QCOMPARE(content("a.txt"), QByteArray("alpha"));
        QTRY_COMPARE(status(put(target, mc, "free")), QByteArray("201 Created"));
    }
}

/// Each has to end at its own last byte.
void TestPut::bodiesInOneStream()
{
    const QByteArray large = whole.repeated(50);
    client->send(put("/1", {}, "one") + put("/2", {}, large)
                 + put("/3", "Content-Length: 0\r\n", {}) + put("/4", {}, "four"));
    for (int i = 1; i <= 4; ++i)
        QCOMPARE(client->reply().status(), QByteArray("201 Created"));
    QCOMPARE(content("1") + content("2") + content("4"), "one" + large + "four");
    QVERIFY(isThere("3"));
}

void TestPut::fullDisk()
{
    const QStringList before = entries();
    for (const char *target : { "/new", "/a.txt" }) {
        const FullDisk disk(4096);
        QCOMPARE(status(put(target, mc, QByteArray(200000, 'x'))),
                 QByteArray("507 Insufficient Storage"));
        QCOMPARE(entries(), before);
        QCOMPARE(content("a.txt"), QByteArray("alpha"));
    }
    // What the disk did not take is in nobody else's file.
    const QByteArray next = whole.repeated(50);
    QCOMPARE(status(put("/next", {}, next)), QByteArray("201 Created"));
    QCOMPARE(content("next"), next);
}

QTEST_GUILESS_MAIN(TestPut)

#include "tst_put.moc"
