#include "server/Access.h"
#include "standard/dav/Routes.h"
#include "standard/web/Routes.h"
#include "tests/standard/StandardTest.h"
#include "tests/support/Data.h"
#include "tests/support/Files.h"

#include <QCryptographicHash>
#include <QTemporaryDir>
#include <QTest>

namespace standard {

namespace {

constexpr auto patchHeaders = "Content-Type: application/x-sabredav-partialupdate\r\n"
                              "X-Update-Range: append\r\n";
constexpr auto formHeader = "Content-Type: application/x-www-form-urlencoded\r\n";
constexpr auto partsHeader = "Content-Type: multipart/form-data; boundary=b\r\n";
constexpr auto partsBody = "--b\r\nContent-Disposition: form-data; name=\"f\"; filename=\"c\""
                           "\r\n\r\nC\r\n--b--\r\n";
constexpr auto uploadHeaders = "Tus-Resumable: 1.0.0\r\nUpload-Length: 1\r\n"
                               "Upload-Metadata: filename Yw==\r\n";
constexpr auto propertyBody = "<propertyupdate xmlns=\"DAV:\"><set><prop><x xmlns=\"urn:x\"/>"
                              "</prop></set></propertyupdate>";

/// Shares "a", "b", "d/x" and "e/x".
class SharedFolders : public StandardServer
{
public:
    SharedFolders()
        : StandardServer({ { "a", "a" }, { "b", "b" }, { "d/x", "d/x" }, { "e/x", "e/x" } },
                         withWeb(withDav(fileRoutes())))
    {
        profile->scratchPad = 1;
    }
};

} // namespace

class TestRights : public QObject
{
    Q_OBJECT
private Q_SLOTS:
    void methodsTakeTheirRights_data();
    void methodsTakeTheirRights();
    void uploadsTakeTheRightToPut();
    void undoTakesTheRightToDelete();
    void whoOnlyAddsLearnsNothing();
    void homesAreRoots();
    void linksEndAtTheShare();
    void linksEndAtHomes();
    void pagesLearnThem();
    void ownPagesAreProtected();
    void accountsNeedALogin();
};

void TestRights::methodsTakeTheirRights_data()
{
    // the status with these rights alone
    columnsOf<QByteArray, QByteArray, QByteArray, QByteArray, QByteArray, int>(
        "method", "target", "headers", "body", "rights", "status");

    row("read a file", "GET", "/a", "", "", "read", 200);
    row("look at a file", "HEAD", "/a", "", "", "read", 200);
    row("way to a folder page", "GET", "/d", "", "", "see", 308);
    row("archive", "GET", "/d/?archive=zip", "", "", "see, read", 200);
    row("archive of some", "POST", "/d/?archive=zip", formHeader, "name=x", "see, read", 200);
    row("preview", "GET", "/a?preview=160", "", "", "read", 404);
    row("missing file", "GET", "/c", "", "", "read", 404);
    row("list", "PROPFIND", "/", "Depth: 1\r\n", "", "see", 207);
    row("properties of what is missing", "PROPFIND", "/c", "", "", "see", 404);
    row("ask what there is to use", "OPTIONS", "/a", "", "", "none", 200);
    row("new file", "PUT", "/c", "", "C", "add", 201);
    row("replaced file", "PUT", "/a", "", "C", "change", 204);
    row("part of a file", "PATCH", "/a", patchHeaders, "C", "change", 204);
    row("new folder", "MKCOL", "/c", "", "", "add", 201);
    row("file by a form", "POST", "/d/", partsHeader, partsBody, "add", 303);
    row("file in pieces", "POST", "/.quillon/tus", uploadHeaders, "", "add", 201);
    row("find", "PROPFIND", "/?contains=x", "Depth: infinity\r\n", "", "see", 207);
    row("read the pad", "GET", "/.quillon/pad", "", "", "read", 200);
    row("write on the pad", "PUT", "/.quillon/pad", "", "p", "add", 204);
    row("delete for a moment", "DELETE", "/a", "Quillon-Undo: ?1\r\n", "", "delete", 204);
    row("delete a file", "DELETE", "/a", "", "", "delete", 204);
    row("delete a folder", "DELETE", "/d", "", "", "delete", 204);
    row("delete what is missing", "DELETE", "/c", "", "", "delete", 404);
    row("copy", "COPY", "/d", destination("/c"), "", "read, add", 201);
    row("copy to no folder", "COPY", "/a", destination("/no/c"), "", "read, add", 409);
    row("copy onto a file", "COPY", "/a", destination("/b"), "", "read, change", 204);
    row("file in the place of a folder", "COPY", "/a", destination("/d"), "",
        "read, change, delete", 204);
    row("folder in the place of a file", "COPY", "/d", destination("/a"), "", "read, add, change",
        204);
    row("folder in the place of a folder", "COPY", "/d", destination("/e"), "",
        "read, add, change, delete", 204);
    row("move", "MOVE", "/d", destination("/c"), "", "add, delete", 201);
    row("move onto a file", "MOVE", "/a", destination("/b"), "", "change, delete", 204);
    row("set properties", "PROPPATCH", "/a", "", propertyBody, "change", 207);
    row("lock", "LOCK", "/a", "", lockBody, "change", 200);
    row("lock a new name", "LOCK", "/c", "", lockBody, "add, change", 201);
    row("unlock", "UNLOCK", "/a", "Lock-Token: <urn:none>\r\n", "", "change", 409);
}

/// They are enough, and without any of them all others are not.
void TestRights::methodsTakeTheirRights()
{
    QFETCH(const QByteArray, method);
    QFETCH(const QByteArray, target);
    QFETCH(const QByteArray, headers);
    QFETCH(const QByteArray, body);
    QFETCH(const QByteArray, rights);
    const Rights needed = *rightsNamed(rights);
    SharedFolders server;
    for (const Right each : { Right::See, Right::Read, Right::Add, Right::Change, Right::Delete }) {
        if ((needed & each) == Rights())
            continue;
        server.profile->everyone = *rightsNamed("all") & ~Rights(each);
        QCOMPARE(server.status(method, target, headers, body), 403);
    }
    for (const char *name : { "a", "b", "d/x", "e/x" })
        QCOMPARE(server.fileContent(QString::fromLatin1(name)), QByteArray(name));
    QVERIFY(!QFile::exists(server.sharePath(QStringLiteral("c"))));
    server.profile->everyone = needed;
    QTEST(server.status(method, target, headers, body), "status");
}

/// Each request to go on with one, also when that was begun by who still might.
void TestRights::uploadsTakeTheRightToPut()
{
    SharedFolders server;
    const QByteArray more = QByteArray("Tus-Resumable: 1.0.0\r\nUpload-Offset: 0\r\n")
        + "Content-Type: application/offset+octet-stream\r\n";
    const auto begun = [&server] {
        return replyTo(server, "POST", "/.quillon/tus", uploadHeaders).header("Location");
    };
    const auto statuses = [&](const QByteArray &upload, const char *rights) {
        server.profile->everyone = *rightsNamed(rights);
        QByteArray told;
        for (const auto &[method, body] :
             { std::pair("HEAD", ""), { "PATCH", "C" }, { "DELETE", "" } })
            told += QByteArray::number(server.status(method, upload, more, body)) + ' ';
        server.profile->everyone = *rightsNamed("all");
        return told;
    };
    const QByteArray upload = begun();
    QCOMPARE(statuses(upload, "see, read, delete"), QByteArray("403 403 403 "));
    // A file of its own is new.
    QCOMPARE(statuses(upload, "change"), QByteArray("200 403 204 "));
    QVERIFY(!QFile::exists(server.sharePath(QStringLiteral("c"))));
    QCOMPARE(statuses(begun(), "add"), QByteArray("200 204 404 "));
    QCOMPARE(server.fileContent(QStringLiteral("c")), QByteArray("C"));
}

void TestRights::undoTakesTheRightToDelete()
{
    SharedFolders server;
    const QByteArray place =
        replyTo(server, "DELETE", "/a", "Quillon-Undo: ?1\r\n").header("Location");
    server.profile->everyone = *rightsNamed("see, read, add, change");
    QCOMPARE(server.status("POST", place), 403);
    QVERIFY(!QFile::exists(server.sharePath(QStringLiteral("a"))));
    server.profile->everyone = Rights(Right::Delete);
    QCOMPARE(server.status("POST", place), 204);
    QCOMPARE(server.fileContent(QStringLiteral("a")), QByteArray("a"));
}

void TestRights::whoOnlyAddsLearnsNothing()
{
    SharedFolders server;
    server.profile->everyone = Rights(Right::Add);
    for (const char *method : { "GET", "HEAD", "PROPFIND", "DELETE", "PROPPATCH", "LOCK" }) {
        const RawReply there = replyTo(server, method, "/a", "If-Match: *\r\n");
        QCOMPARE(there.status(), QByteArray("403 Forbidden"));
        QCOMPARE(replyTo(server, method, "/c", "If-Match: *\r\n").body, there.body);
    }
    const auto allowed = [&server](const char *target) {
        return replyTo(server, "OPTIONS", target).header("Allow");
    };
    QCOMPARE(allowed("/a"), QByteArray("OPTIONS, PUT, MKCOL"));
    QCOMPARE(allowed("/c"), allowed("/a"));
    const RawReply box = replyTo(server, "GET", "/d/"); // a page to add by
    QVERIFY(box.status() == "200 OK" && box.body.contains("<form") && !box.body.contains(">x<"));
    server.profile->everyone = *rightsNamed("read, change, delete");
    QCOMPARE(server.status("GET", "/d/"), 403);
    server.profile->everyone = Rights(Right::Add);
    for (const char *folder : { "/d", "/a", "/new" }) {
        QCOMPARE(server.status("MKCOL", folder), 201);
        QCOMPARE(server.status("PUT", folder + QByteArray("/y"), "", "y"), 201);
    }
    QCOMPARE(server.status("PUT", "/b/y", "", "y"), server.status("PUT", "/c/y", "", "y"));
    QCOMPARE(server.status("PUT", "/.quillon/pad", "", "1234"), 204);
    for (const char *guess : { "1234", "9" }) {
        const QByteArray hash = QCryptographicHash::hash(guess, QCryptographicHash::Sha1).toHex();
        QCOMPARE(server.status("PUT", "/.quillon/pad", "If-Match: \"" + hash + "\"\r\n", "x"), 412);
    }
    // And leaves files beside those of others.
    for (const char *second : { "2", "3" })
        QCOMPARE(server.status("PUT", "/a", "If-None-Match: *\r\n", second), 201);
    for (const auto &[name, content] :
         { std::pair("a", "a"), { "a (2)/y", "y" }, { "a (3)", "2" }, { "a (4)", "3" } })
        QCOMPARE(server.fileContent(QString::fromLatin1(name)), QByteArray(content));
}

void TestRights::homesAreRoots()
{
    SharedFolders server;
    server.askForLogin("d:1 all:2");
    server.profile->accountRights.insert(QStringLiteral("d"), { {}, "/e/../d/" });
    const QByteArray mine = basicLogin("d:1");
    const QByteArray others = basicLogin("all:2");

    const RawReply listing = replyTo(server, "PROPFIND", "/", mine + "Depth: infinity\r\n");
    for (const char *part : { "<D:href>/</D:href>", "<D:href>/x</D:href>" })
        QVERIFY2(listing.body.contains(part), part);
    QCOMPARE(listing.body.count("<D:href>"), 2);
    const RawReply page = replyTo(server, "GET", "/", mine);
    QVERIFY(page.body.contains("<h1>/</h1>") && !page.body.contains("../"));
    const RawReply archive = replyTo(server, "GET", "/?archive=zip", mine);
    QVERIFY(archive.header("Content-Disposition").contains("\"d.zip\""));
    QCOMPARE(archive.body.count("d/x"), 1); // the content of "x"
    for (const char *path : { "/a", "/d/x", "/../a", "/%2e%2e/a", "/x/../../a" })
        QCOMPARE(server.status("GET", path, mine), 404);

    QCOMPARE(server.status("COPY", "/x", mine + destination("/../y")), 201);
    QCOMPARE(server.fileContent(QStringLiteral("d/y")), QByteArray("d/x"));
    QCOMPARE(server.status("MKCOL", "/s", mine), 201);
    QCOMPARE(replyTo(server, "GET", "/s", mine).header("Location"), QByteArray("/s/"));
    QCOMPARE(server.status("DELETE", "/", mine), 403);
    QCOMPARE(server.status("MOVE", "/s", mine + destination("/")), 409);

    // Locks know one name of a file, whoever asks for it.
    const auto lock = [&](const char *path) {
        return replyTo(server, "LOCK", path, others, lockBody).header("Lock-Token");
    };
    const QByteArray token = lock("/d/x");
    const RawReply locked = replyTo(server, "PUT", "/x", mine, "new");
    QCOMPARE(locked.status(), QByteArray("423 Locked"));
    QVERIFY(locked.body.contains("<D:href>/x</D:href>"));
    QCOMPARE(server.status("UNLOCK", "/d/x", others + "Lock-Token: " + token + "\r\n"), 204);
    const QByteArray above = lock("/d");
    QVERIFY(replyTo(server, "PROPFIND", "/x", mine).body.contains("lockroot><D:href>/</D:href>"));
    QCOMPARE(server.status("UNLOCK", "/d", others + "Lock-Token: " + above + "\r\n"), 204);
    const QByteArray tag = replyTo(server, "HEAD", "/x", mine).header("ETag");
    QCOMPARE(server.status("PUT", "/y", mine + "If: </x> ([" + tag + "])\r\n", "new"), 204);

    // One above the home keeps nobody from making folders in it.
    QCOMPARE(server.status("LOCK", "/e", others + "Depth: 0\r\n", lockBody), 200);
    QVERIFY(QDir().mkpath(server.sharePath(QStringLiteral("e/f/g"))));
    server.profile->accountRights.insert(QStringLiteral("d"), { {}, "/e/f/g" });
    const QByteArray deep =
        QByteArray(uploadHeaders)
            .replace("filename Yw==", "relativePath " + QByteArray("1/2/3/c").toBase64());
    QCOMPARE(server.status("POST", "/.quillon/tus", mine + deep), 201);

    server.profile->accountRights.insert(QStringLiteral("d"), { {}, "/missing" });
    QCOMPARE(server.status("GET", "/", mine), 404);
    QCOMPARE(server.status("PUT", "/x", mine, "new"), 409);
}

/// Where the profile is not strict, those of others lead on.
/// Whatever the profile has the classic answers do.
void TestRights::linksEndAtTheShare()
{
    SharedFolders server;
    const QTemporaryDir outside;
    writeFile(outside.filePath(QStringLiteral("x")), "secret");
    QVERIFY(!server.profile->isStrict());
    QVERIFY(QFile::link(outside.path(), server.sharePath(QStringLiteral("out"))));
    QVERIFY(QFile::link(QStringLiteral("d"), server.sharePath(QStringLiteral("in"))));
    QCOMPARE(server.status("GET", "/in/x"), 200);
    QCOMPARE(server.status("GET", "/out/x"), 404);
    QCOMPARE(server.status("DELETE", "/out/x"), 404);
    QVERIFY(server.status("PUT", "/out/new", {}, "new") >= 400);
    QVERIFY(server.status("MOVE", "/d/x", destination("/out/new")) >= 400);
    QCOMPARE(namesIn(outside.path()), QStringLiteral("x"));
}

void TestRights::linksEndAtHomes()
{
    SharedFolders server;
    server.askForLogin("h:1 all:2");
    server.profile->accountRights.insert(QStringLiteral("h"), { {}, "/h" });
    for (const auto &[name, target] :
         { std::pair("h", "d"), { "d/out", "../e" }, { "d/file", "../a" }, { "d/h", "." } })
        QVERIFY(QFile::link(QString::fromUtf8(target), server.sharePath(QString::fromUtf8(name))));
    const QByteArray mine = basicLogin("h:1");
    const QByteArray others = basicLogin("all:2");
    for (const char *path : { "/out/x", "/out/", "/file", "/file?preview=160" }) {
        QCOMPARE(server.status("GET", "/h/out/x", others), 200);
        QCOMPARE(server.status("GET", path, mine), 404);
    }
    const RawReply found =
        replyTo(server, "PROPFIND", "/?contains=x", mine + "Depth: infinity\r\n");
    QVERIFY(found.body.contains("/x<") && !found.body.contains("/out/"));
    QVERIFY(!replyTo(server, "GET", "/?archive=zip", mine).body.contains("e/x"));

    QCOMPARE(server.status("PUT", "/h/x", mine, "new"), 204);
    QCOMPARE(server.status("LOCK", "/d/x", others, lockBody), 200);
    QCOMPARE(server.status("PUT", "/h/x", mine, "newer"), 423);
}

void TestRights::pagesLearnThem()
{
    SharedFolders server;
    server.askForLogin("d:1");
    server.profile->accountRights.insert(QStringLiteral("d"),
                                         { Rights(Right::See) | Right::Add, "/d" });
    const auto told = [&server](const char *query) {
        return replyTo(server, "GET", QByteArray("/.quillon/visitor") + query, basicLogin("d:1"))
            .body;
    };
    const QByteArray mine = R"({"add":true,"change":false,"delete":false,"logout":null,)"
                            R"("name":"d","read":false,"see":true,"share":"d","uploads":)";
    QCOMPARE(told("?path=/s%20t/"), mine + R"("/.quillon/tus/s%20t"})");
    QCOMPARE(told(""), mine + R"("/.quillon/tus"})");
    QVERIFY(told("?path=/.quillon/tus").contains(R"("add":false)"));
    QCOMPARE(server.status("GET", "/.quillon/visitor"), 401);
}

/// What this server says itself: nobody frames it, nor does it load or tell anything elsewhere.
void TestRights::ownPagesAreProtected()
{
    SharedFolders server;
    const auto isProtected = [&server](const char *target, const char *status) {
        const RawReply page = replyTo(server, "GET", target, "Accept: text/html\r\n");
        const QByteArray policy = page.header("Content-Security-Policy");
        return page.status().left(3) == status && policy.startsWith("default-src '")
            && policy.contains("frame-ancestors 'none'")
            && page.header("X-Content-Type-Options") == "nosniff"
            && page.header("Cross-Origin-Opener-Policy") == "same-origin"
            && page.header("Cross-Origin-Resource-Policy") == "same-origin"
            && !page.header("Referrer-Policy").isEmpty();
    };
    for (const auto &[target, status] : { std::pair("/", "200"),
                                          { "/d", "308" },
                                          { "/missing", "404" },
                                          { "/%00", "400" },
                                          { "/.quillon/visitor", "200" },
                                          { "/.quillon/app/none", "404" },
                                          { "/.quillon/authority", "404" },

                                          { "/a?preview=1", "400" } })
        QVERIFY2(isProtected(target, status), target);
    server.profile->everyone = Rights(Right::Add);
    for (const auto &[target, status] : { std::pair("/d/", "200"), { "/a", "403" } })
        QVERIFY2(isProtected(target, status), target);
    server.askForLogin("a:1");
    for (const auto &[target, status] : { std::pair("/.quillon/login", "200"), { "/a", "401" } })
        QVERIFY2(isProtected(target, status), target);
}

void TestRights::accountsNeedALogin()
{
    ProfileValues profile;
    profile.everyone = Rights(Right::See);
    profile.accountRights.insert(QStringLiteral("a"), { Rights(Right::Read), "/h" });
    profile.authMode = AuthBasic;
    const Access own = Access::of(profile, "a");
    QVERIFY(own.may(Right::Read, "h/x") && own.may(Right::Read, "h"));
    for (const char *path : { "", "x", "hx", "g/h" })
        QVERIFY2(!own.may(Right::Read, path), path);
    QVERIFY(!own.may(Right::See, "h") && Access::of(profile, "b").may(Right::See, "x"));
    for (const AuthMode mode : { AuthNone, AuthPasswordPage }) {
        profile.authMode = mode; // any name will do
        QVERIFY(!Access::of(profile, "a").may(Right::Read, "h"));
        QVERIFY(Access::of(profile, "a").account.isEmpty());
    }
    QVERIFY(!Access().may(Right::See, ""));
}

} // namespace standard

QTEST_GUILESS_MAIN(standard::TestRights)
#include "tst_rights.moc"
