#include "files/HiddenUploads.h"
#include "standard/dav/PropFindJob.h"
#include "standard/dav/Routes.h"
#include "tests/standard/StandardTest.h"
#include "tests/support/Data.h"

#include <QtTest>

#include <sys/stat.h>
#include <unistd.h>

using namespace standard;

namespace {

class DavServer : public StandardServer
{
public:
    DavServer()
        : StandardServer(withDav(standard::fileRoutes()))
    {
    }

    RawReply propFind(const QByteArray &target, const QByteArray &depth,
                      const QByteArray &properties = {}) const
    {
        const QByteArray body = properties.isEmpty()
            ? QByteArray()
            : "<propfind xmlns=\"DAV:\"><prop>" + properties + "</prop></propfind>";
        return replyTo(*this, "PROPFIND", target, "Depth: " + depth + "\r\n", body);
    }
    RawReply propPatch(const QByteArray &target, const QByteArray &steps,
                       const QByteArray &headers = {}) const
    {
        return replyTo(*this, "PROPPATCH", target, headers,
                       "<D:propertyupdate xmlns:D=\"DAV:\" xmlns:x=\"urn:x\""
                       " xmlns:Z=\"urn:schemas-microsoft-com:\">"
                           + steps + "</D:propertyupdate>");
    }
    RawReply lock(const QByteArray &target, const QByteArray &headers = {}) const
    {
        return replyTo(*this, "LOCK", target, headers, lockBody);
    }
};

QByteArray setting(const QByteArray &properties)
{
    return "<D:set><D:prop>" + properties + "</D:prop></D:set>";
}

/// The texts of all hrefs, each with a blank behind it.
QByteArray hrefs(const QByteArray &body)
{
    QByteArray all;
    const QList<QByteArray> parts = body.split('<');
    for (const QByteArray &part : parts) {
        if (part.startsWith("D:href>"))
            all += part.mid(7) + ' ';
    }
    return all;
}

bool isWellFormed(const QByteArray &body)
{
    XmlReader reader(body);
    return reader.enter() && reader.end();
}

} // namespace

class DavTest : public QObject
{
    Q_OBJECT
private Q_SLOTS:
    void tellsWhatThereIs();
    void tellsNames_data();
    void tellsNames();
    void sendsLongListingsInPieces();
    void goesThroughTreesWithoutCircles();
    void keepsProperties();
    void changesPropertiesWhollyOrNot();
    void setsTimes();
    void locks();
    void guardsWhatIsLocked();
    void keepsLocksToTheirOwners();
    void seesLocksThroughLinks();
    void endsLocksWithWhatTheyLock();
    void endsLocksWhenTheClientHasLeft();
    void takesPropertiesAlong();
    void refuses_data();
    void refuses();
};

void DavTest::tellsWhatThereIs()
{
    DavServer server;
    server.addFile(QStringLiteral("d/a.txt"), "12345");
    const RawReply all = server.propFind("/d/a.txt", "0");
    QCOMPARE(all.status(), QByteArray("207 Multi-Status"));
    QVERIFY(isWellFormed(all.body));
    for (const char *part :
         { "<D:href>/d/a.txt</D:href>", "<D:getcontentlength>5<", "<D:resourcetype></D:",
           "<D:getcontenttype>text/plain; charset=utf-8<", "<D:displayname>a.txt<",
           "<D:exclusive/>", "GMT<", "<D:lockdiscovery></D:", ">F</executable>" })
        QVERIFY2(all.body.contains(part), part);
    QVERIFY(!all.body.contains("quota"));
    const QByteArray tag = replyTo(server, "HEAD", "/d/a.txt").header("ETag");
    QVERIFY(all.body.contains("<D:getetag>" + tag + '<'));

    // The folder itself first, with and without its slash.
    for (const char *target : { "/d", "/d/" })
        QCOMPARE(hrefs(server.propFind(target, "1").body), QByteArray("/d/ /d/a.txt "));
    QCOMPARE(hrefs(server.propFind("/", "1").body), QByteArray("/ /d/ "));
    QCOMPARE(hrefs(server.propFind("/", "infinity").body), QByteArray("/ /d/ /d/a.txt "));
    for (const auto &[part, found] : { std::pair("A.T", "/ /d/a.txt "), { "d", "/ /d/ " } })
        QCOMPARE(hrefs(server.propFind(QByteArray("/?contains=") + part, "infinity").body),
                 QByteArray(found));
    server.profile->deepListings = 0;
    const RawReply refused = server.propFind("/", "infinity");
    QCOMPARE(refused.status(), QByteArray("403 Forbidden"));
    QVERIFY(refused.body.contains("<D:propfind-finite-depth"));
    server.profile->deepListings = 1;
    const QByteArray some =
        server.propFind("/d", "0", "<quota-used-bytes/><getcontentlength/><q xmlns=\"\"/>").body;
    QVERIFY(some.contains("quota-used-bytes>") && !some.contains("getetag"));
    QVERIFY(some.contains("<D:prop><D:getcontentlength/><q/></D:prop>"
                          "<D:status>HTTP/1.1 404 Not Found<"));
    const QByteArray names = replyTo(server, "PROPFIND", "/d", "Depth: 0\r\n",
                                     "<propfind xmlns=\"DAV:\"><propname/></propfind>")
                                 .body;
    QVERIFY(names.contains("<D:resourcetype/>") && !names.contains("GMT"));
}

void DavTest::tellsNames_data()
{
    columns<QByteArray>({ "name", "href" }); // without one it is left out
    row("blank and percent", "a b%41.txt", "/f/a%20b%2541.txt");
    row("what XML marks up with", "<&'\">", "/f/%3C%26%27%22%3E");
    row("beyond ASCII", "\xc3\xa4\xf0\x90\x80\x80", "/f/%C3%A4%F0%90%80%80");
    row("hidden", ".hidden", "/f/.hidden");
    row("what URLs give a meaning", "a#b?c;d (1)+!", "/f/a%23b%3Fc%3Bd%20%281%29%2B%21");
    row("a control", "a\x01", "");
    row("no text", "a\xff", "");
    row("no character", "\xef\xbf\xbf", "");
    row("an upload under way", hiddenUploadName(), "");
    row("begins like one", ".receiving-backup", "/f/.receiving-backup");
}

void DavTest::tellsNames()
{
    QFETCH(const QByteArray, name);
    QFETCH(const QByteArray, href);
    DavServer server;
    const QByteArray folder = QFile::encodeName(server.sharePath()) + "/f";
    QVERIFY(::mkdir(folder.constData(), 0700) == 0);
    QVERIFY(::mknod((folder + '/' + name).constData(), S_IFREG | 0600, 0) == 0);
    const RawReply reply = server.propFind("/f/", "1");
    const RawReply alone = server.propFind(href.isEmpty() ? "/" : href, "0");
    // The toolkit can't remove what it has no name for.
    ::unlink((folder + '/' + name).constData());
    QVERIFY(isWellFormed(reply.body));
    QCOMPARE(hrefs(reply.body), "/f/ " + (href.isEmpty() ? href : href + ' '));
    QCOMPARE(hrefs(alone.body), href.isEmpty() ? "/ " : href + ' ');
}

void DavTest::sendsLongListingsInPieces()
{
    DavServer server;
    constexpr int count = 3000;
    const QByteArray folder = QFile::encodeName(server.sharePath());
    for (int i = 0; i < count; ++i)
        ::mknod((folder + "/f" + QByteArray::number(i)).constData(), S_IFREG | 0600, 0);
    const RawReply reply = server.propFind("/", "1", "<getetag/>");
    QCOMPARE(reply.header("Transfer-Encoding"), QByteArray("chunked"));
    // One that knows no chunks gets the same until the connection ends.
    RawClient old(server.port());
    old.send("PROPFIND / HTTP/1.0\r\nDepth: 1\r\nContent-Length: 0\r\n\r\n");
    const QByteArray all = old.readToEnd();
    QVERIFY(isWellFormed(all.mid(all.indexOf("<?xml"))));
    QCOMPARE(all.count("<D:response>"), count + 1);
    // A peer that goes away in the middle is no trouble.
    RawClient hasty(server.port());
    hasty.send("PROPFIND / HTTP/1.1\r\nHost: x\r\nDepth: 1\r\n\r\n");
    hasty.socket->abort();
    QCOMPARE(server.propFind("/f0", "0").status(), QByteArray("207 Multi-Status"));
}

void DavTest::goesThroughTreesWithoutCircles()
{
    DavServer server;
    server.addFile(QStringLiteral("d/e/f"), {});
    QVERIFY(QFile::link(server.sharePath(), server.sharePath(QStringLiteral("d/loop"))));
    QVERIFY(QFile::link(QStringLiteral("d/e"), server.sharePath(QStringLiteral("again"))));
    const QByteArray found = hrefs(server.propFind("/", "infinity").body);
    QCOMPARE(found.count("/f "), 2);
    QVERIFY(found.contains("/again/f ") && found.contains("/d/e/f "));
    QVERIFY(found.contains("/d/loop/ "));
}

void DavTest::keepsProperties()
{
    DavServer server;
    server.addFile(QStringLiteral("f"), "x");
    const QByteArray value = "<x:p xmlns:x=\"urn:x\" xml:lang=\"de\"><x:q>1 &lt; 2</x:q></x:p>";
    const RawReply set = server.propPatch("/f", setting(value + "<empty xmlns=\"\"/>"));
    QVERIFY(set.body.contains("HTTP/1.1 200 OK") && !set.body.contains("HTTP/1.1 4"));
    const QByteArray asked = "<x:p xmlns:x=\"urn:x\"/>";
    // Those that announce much and send nothing keep nobody out.
    std::vector<std::unique_ptr<RawClient>> idle;
    for (int i = 0; i < 40; ++i) {
        idle.push_back(std::make_unique<RawClient>(server.port()));
        idle.back()->send(
            rawRequest("PROPPATCH", "/f", "Expect: 100-continue\r\nContent-Length: 1000000\r\n"));
        QCOMPARE(idle.back()->reply().status(), QByteArray("100 Continue"));
    }
    QVERIFY(hrefs(server.propFind("/", "1", asked).body).contains("/f "));
    QVERIFY(server.propFind("/", "1", asked).body.contains(value));
}

void DavTest::changesPropertiesWhollyOrNot()
{
    DavServer server;
    server.addFile(QStringLiteral("f"), "x");
    const RawReply refused =
        server.propPatch("/f", setting("<x:p>1</x:p><D:getetag>2</D:getetag>"));
    QVERIFY(refused.body.contains("<D:getetag/></D:prop><D:status>HTTP/1.1 403 Forbidden"));
    QVERIFY(refused.body.contains("<p xmlns=\"urn:x\"/></D:prop><D:status>HTTP/1.1 424 "));
    QVERIFY(!server.propFind("/f", "0").body.contains("urn:x"));
    const RawReply large =
        server.propPatch("/f", setting("<x:p>1</x:p><x:q>" + QByteArray(100000, 'x') + "</x:q>"));
    QCOMPARE(large.body.count("507 "), 1);
    QVERIFY(!large.body.contains("200 OK"));
    QVERIFY(!server.propFind("/f", "0").body.contains("urn:x"));
    QCOMPARE(server.propPatch("/f", setting(QByteArray(1 << 20, ' '))).status().left(3),
             QByteArray("413"));
    QCOMPARE(server.propPatch("/f", setting(QByteArray("<x:p/>").repeated(100000))).status(),
             QByteArray("413 Content Too Large"));
    // A value that others have to wait for.
    const QByteArray some = "<x:p>" + QByteArray(50000, 'x') + "</x:p>";
    QVERIFY(server.propPatch("/f", setting(some)).body.contains("HTTP/1.1 200 OK"));
}

void DavTest::setsTimes()
{
    DavServer server;
    server.addFile(QStringLiteral("f"), "x");
    server.propPatch("/f",
                     setting("<D:lastmodified>0</D:lastmodified>"
                             "<executable xmlns=\"http://apache.org/dav/props/\">T</executable>"));
    const QByteArray found = server.propFind("/f", "0").body;
    QVERIFY(found.contains("Thu, 01 Jan 1970 00:00:00 GMT") && found.contains(">T</executable>"));
    const RawReply bad =
        server.propPatch("/f",
                         setting("<D:lastmodified>7</D:lastmodified>"
                                 "<Z:Win32LastModifiedTime>soon</Z:Win32LastModifiedTime>"));
    QVERIFY(bad.body.contains("409 Conflict") && bad.body.contains("424 "));
    QVERIFY(server.propFind("/f", "0").body.contains("Thu, 01 Jan 1970 00:00:00 GMT"));

    // What only sets a time isn't there to be removed; a folder stays open to those who may enter.
    server.addFile(QStringLiteral("d/f"), "x");
    const QByteArray none = "<D:remove><D:prop><Z:Win32LastModifiedTime/></D:prop></D:remove>";
    QVERIFY(server.propPatch("/f", none).body.contains("200 OK"));
    const QByteArray closed = "<executable xmlns=\"http://apache.org/dav/props/\">F</executable>";
    QVERIFY(server.propPatch("/d", setting(closed)).body.contains("403 Forbidden"));
    QCOMPARE(server.propFind("/d/f", "0").status(), QByteArray("207 Multi-Status"));
}

void DavTest::locks()
{
    DavServer server;
    server.addFile(QStringLiteral("d/f"), "x");
    const RawReply made = server.lock("/d/", "Timeout: Second-1000\r\n");
    QCOMPARE(made.status(), QByteArray("200 OK"));
    const QByteArray token = made.header("Lock-Token");
    QVERIFY(token.startsWith("<urn:uuid:"));
    for (const QByteArray &part :
         { QByteArray("<D:depth>infinity<"), QByteArray("<D:timeout>Second-1000<"),
           token.mid(1, token.size() - 2), QByteArray("<D:lockroot><D:href>/d/<"),
           QByteArray("<owner xmlns=\"DAV:\"><href>me</href></owner>") })
        QVERIFY2(made.body.contains(part), part.constData());
    // It is told of all that it covers, in listings too.
    QCOMPARE(server.propFind("/", "infinity", "<lockdiscovery/>").body.count("<D:activelock>"), 2);

    const RawReply against = server.lock("/d/f");
    QCOMPARE(against.status(), QByteArray("423 Locked"));
    QVERIFY(against.body.contains("<D:no-conflicting-lock><D:href>/d/</D:href>"));
    const QByteArray named = "If: (" + token + ")\r\n";
    const RawReply again =
        replyTo(server, "LOCK", "/d/f", named + "Timeout: Second-2000\r\nContent-Length: 0\r\n");
    QVERIFY(again.body.contains("<D:timeout>Second-2000<"));
    QCOMPARE(server.status("LOCK", "/", named), 412);
    for (const int unlocked : { 204, 409 })
        QCOMPARE(server.status("UNLOCK", "/d/f", "Lock-Token: " + token + "\r\n"), unlocked);

    // Nobody gets what others are writing.
    RawClient writer(server.port());
    writer.send(rawRequest("PATCH", "/d/f",
                           "Content-Type: application/x-sabredav-partialupdate\r\n"
                           "X-Update-Range: append\r\nExpect: 100-continue\r\n"
                           "Content-Length: 1\r\n"));
    QCOMPARE(writer.reply().status(), QByteArray("100 Continue"));
    QCOMPARE(server.lock("/d/f").status(), QByteArray("423 Locked"));
    writer.send("x");
    QCOMPARE(writer.reply().status(), QByteArray("204 No Content"));
    QCOMPARE(server.lock("/d").status(), QByteArray("200 OK"));
    // A new port unlocks nothing, but what is served anew is locked by nobody.
    server.server->stop();
    server.start();
    QCOMPARE(server.lock("/d").status(), QByteArray("423 Locked"));
    server.server->setShared(server.sharePath(QStringLiteral("d")));
    server.server->setShared(server.sharePath());
    QCOMPARE(server.lock("/d").status(), QByteArray("200 OK"));
}

void DavTest::guardsWhatIsLocked()
{
    DavServer server;
    server.addFile(QStringLiteral("d/f"), "x");
    const QByteArray token = server.lock("/d", "Depth: 0\r\n").header("Lock-Token");
    const QByteArray fileToken = server.lock("/d/f").header("Lock-Token");
    const QByteArray tag = replyTo(server, "HEAD", "/d/f").header("ETag");
    const auto patch = [&server](const QByteArray &condition) {
        const QByteArray header = condition.isEmpty() ? condition : "If: " + condition + "\r\n";
        return server.propPatch("/d/f", setting("<x:p>1</x:p>"), header).status().left(3);
    };
    QCOMPARE(patch({}), QByteArray("423"));
    QCOMPARE(patch("</d> (" + token + ')'), QByteArray("423"));
    QCOMPARE(patch('(' + fileToken), QByteArray("400"));
    QCOMPARE(patch('(' + fileToken + " [" + tag + "])"), QByteArray("207"));
    QCOMPARE(patch("<http://any.name/d/f> (" + fileToken + ')'), QByteArray("207"));
    // A new name is a change of its folder.
    QCOMPARE(server.lock("/d/new").status(), QByteArray("423 Locked"));
    QCOMPARE(server.lock("/d/new", "If: </d/> (" + token + ")\r\n").status(),
             QByteArray("201 Created"));
}

void DavTest::keepsLocksToTheirOwners()
{
    DavServer server;
    server.addFile(QStringLiteral("f"), "x");
    server.askForLogin("a:1 b:2");
    const QByteArray mine = basicLogin("a:1");
    const QByteArray others = basicLogin("b:2");
    const QByteArray token = server.lock("/f", mine).header("Lock-Token");
    const QByteArray named = "If: (" + token + ")\r\n";
    // Everybody is told the token.
    QCOMPARE(server.status("PUT", "/f", others + named), 423);
    QCOMPARE(server.status("LOCK", "/f", others + named), 412);
    QCOMPARE(server.status("UNLOCK", "/f", others + "Lock-Token: " + token + "\r\n"), 403);
    QCOMPARE(server.status("PUT", "/f", mine + named), 204);
    QCOMPARE(server.status("LOCK", "/f", mine + named), 200);
    QCOMPARE(server.status("UNLOCK", "/f", mine + "Lock-Token: " + token + "\r\n"), 204);
}

void DavTest::seesLocksThroughLinks()
{
    DavServer server;
    server.addFile(QStringLiteral("d/f"), "x");
    QVERIFY(QFile::link(QStringLiteral("d"), server.sharePath(QStringLiteral("link"))));
    QVERIFY(QFile::link(QStringLiteral("d/f"), server.sharePath(QStringLiteral("alias"))));
    const RawReply made = server.lock("/link/f");
    QVERIFY(made.body.contains("<D:lockroot><D:href>/link/f<"));
    const QByteArray token = made.header("Lock-Token");
    for (const char *target : { "/d/f", "/link/f", "/alias" }) {
        QCOMPARE(server.status("PUT", target), 423);
        QCOMPARE(server.lock(target).status(), QByteArray("423 Locked"));
        QCOMPARE(server.status("PUT", target, "If: (" + token + ")\r\n"), 204);
    }
    QCOMPARE(server.propFind("/link", "1").body.count("<D:activelock>"), 1);
    QCOMPARE(server.propFind("/d", "1").body.count("<D:activelock>"), 1);
    QCOMPARE(server.status("DELETE", "/d"), 423);
    // Another link goes without what it leads to, and without its lock.
    QCOMPARE(server.status("DELETE", "/alias"), 204);
    QCOMPARE(server.status("PUT", "/d/f"), 423);
    QCOMPARE(server.status("UNLOCK", "/d/f", "Lock-Token: " + token + "\r\n"), 204);
    // Of a folder as well: what is new in it, and what it holds.
    QCOMPARE(server.lock("/link", "Depth: 0\r\n").status(), QByteArray("200 OK"));
    QCOMPARE(server.status("PUT", "/d/new"), 423);
    QCOMPARE(server.status("PUT", "/d/f"), 204);
}

void DavTest::endsLocksWithWhatTheyLock()
{
    DavServer server;
    for (const char *name : { "d/f", "d/g", "e/f" })
        server.addFile(QString::fromLatin1(name), "x");
    const QByteArray token = server.lock("/d/f").header("Lock-Token");
    const QByteArray named = "If: </d/f> (" + token + ")\r\n";
    // Whatever takes a locked file away, or puts something in its place, has to know the lock.
    QCOMPARE(server.status("DELETE", "/d"), 423);
    QCOMPARE(server.status("MOVE", "/d", "Destination: /h\r\n"), 423);
    QCOMPARE(server.status("COPY", "/e/f", "Destination: /d/f\r\n"), 423);
    QCOMPARE(server.status("MOVE", "/e", "Destination: /d\r\n"), 423);
    const RawReply refused = replyTo(
        server, "PATCH", "/d/f",
        "Content-Type: application/x-sabredav-partialupdate\r\nX-Update-Range: append\r\n", "y");
    QVERIFY(refused.status() == "423 Locked" && refused.body.contains("lock-token-submitted"));
    QCOMPARE(server.status("DELETE", "/d/g"), 204);
    QCOMPARE(server.status("COPY", "/d/f", "Destination: /d/copy\r\n"), 201);
    QVERIFY(!server.propFind("/d/copy", "0").body.contains("activelock"));
    QCOMPARE(server.status("MOVE", "/d", named + "Destination: /h\r\n"), 201);
    QVERIFY(!server.propFind("/h", "infinity").body.contains("activelock"));
    QCOMPARE(server.status("PUT", "/h/f"), 204);
    server.addFile(QStringLiteral("d/f"), "x");
    QCOMPARE(server.status("PUT", "/d/f"), 204);

    // A folder that is locked by itself keeps its names.
    const QByteArray folderToken = server.lock("/d", "Depth: 0\r\n").header("Lock-Token");
    for (const char *method : { "DELETE", "PUT" })
        QCOMPARE(server.status(method, method[0] == 'P' ? "/d/new" : "/d/f"), 423);
    QCOMPARE(server.status("MKCOL", "/d/new"), 423);
    QCOMPARE(server.status("MOVE", "/h/f", "Destination: /d/new\r\n"), 423);
    QCOMPARE(server.status("PUT", "/d/f"), 204);
    QCOMPARE(server.status("DELETE", "/d", "If: (" + folderToken + ")\r\n"), 204);
    QCOMPARE(server.lock("/d").status(), QByteArray("201 Created"));
}

void DavTest::endsLocksWhenTheClientHasLeft()
{
    DavServer server;
    for (int i = 0; i < 5000; ++i)
        server.addFile(QStringLiteral("d/%1").arg(i), {});
    const QByteArray named = "If: (" + server.lock("/d").header("Lock-Token") + ")\r\n";
    RawClient client(server.port());
    client.send(rawRequest("DELETE", "/d", named));
    const QString folder = server.sharePath(QStringLiteral("d"));
    QTRY_VERIFY(QDir(folder).entryList(QDir::Files).size() < 5000);
    client.socket->abort();
    QTRY_VERIFY(server.status("PUT", "/d") < 300); // neither a folder nor locked
}

void DavTest::takesPropertiesAlong()
{
    DavServer server;
    server.addFile(QStringLiteral("d/f"), "x");
    server.addFile(QStringLiteral("other"), "x");
    server.propPatch("/d", setting("<x:p>of the folder</x:p>"));
    server.propPatch("/d/f", setting("<x:p>of the file</x:p>"));
    server.propPatch("/other", setting("<x:p>of another</x:p>"));
    const auto kept = [&server](const QByteArray &target) {
        const QByteArray body = server.propFind(target, "0", "<p xmlns=\"urn:x\"/>").body;
        const int begin = int(body.indexOf("\">of ")) + 2;
        return begin < 2 ? QByteArray() : body.mid(begin, body.indexOf('<', begin) - begin);
    };
    const auto go = [&server](const char *method, const QByteArray &from, const QByteArray &to) {
        replyTo(server, method, from, "Destination: " + to + "\r\n");
    };
    go("COPY", "/d", "/e");
    QCOMPARE(kept("/e"), QByteArray("of the folder"));
    QCOMPARE(kept("/e/f"), QByteArray("of the file"));
    go("COPY", "/e/f", "/other");
    QCOMPARE(kept("/other"), QByteArray("of the file"));
    go("MOVE", "/e", "/g");
    QCOMPARE(kept("/g/f"), QByteArray("of the file"));
    replyTo(server, "PUT", "/g/f", {}, "new");
    QCOMPARE(kept("/g/f"), QByteArray("of the file"));
    replyTo(server, "DELETE", "/g/f");
    replyTo(server, "PUT", "/g/f", {}, "newer");
    QCOMPARE(kept("/g/f"), QByteArray());
}

void DavTest::refuses_data()
{
    columns<QByteArray>({ "request", "status" });
    row("properties of nothing", rawRequest("PROPPATCH", "/none", {}, "<a/>"), "404 Not Found");
    const QByteArray none = "<propertyupdate xmlns=\"DAV:\"/>";
    row("no properties", rawRequest("PROPPATCH", "/f", {}, none), "400 Bad Request");
    row("lock without a body or token", rawRequest("LOCK", "/f"), "400 Bad Request");
    row("lock of one level", rawRequest("LOCK", "/f", "Depth: 1\r\n", lockBody), "400 Bad Request");
    row("lock of what has changed", rawRequest("LOCK", "/f", "If-None-Match: *\r\n", "<a/>"),
        "412 Precondition Failed");
    row("unlock without a token", rawRequest("UNLOCK", "/f"), "400 Bad Request");
    // Nobody is asked for a body in vain.
    const QByteArray held = "Expect: 100-continue\r\nContent-Length: 500\r\n";
    row("listing of nothing", rawRequest("PROPFIND", "/none", held), "404 Not Found");
    row("lock in no folder", rawRequest("LOCK", "/none/f", held), "409 Conflict");
    row("lock of what is locked", rawRequest("LOCK", "/locked", held), "423 Locked");
    const QByteArray failing = "If: (<urn:none>)\r\n";
    row("listing under a condition", rawRequest("PROPFIND", "/f", failing),
        "412 Precondition Failed");
    row("file under a condition", rawRequest("GET", "/f", failing), "412 Precondition Failed");
    row("unlock under a condition", rawRequest("UNLOCK", "/f", failing + "Lock-Token: <a>\r\n"),
        "412 Precondition Failed");
}

void DavTest::refuses()
{
    QFETCH(const QByteArray, request);
    DavServer server;
    server.addFile(QStringLiteral("f"), "x");
    server.addFile(QStringLiteral("locked"), "x");
    server.lock("/locked");
    RawClient client(server.port());
    QTEST(client.exchange(request).status(), "status");
}

QTEST_GUILESS_MAIN(DavTest)
#include "tst_dav.moc"
