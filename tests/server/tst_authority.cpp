#include "classic/http/ClassicFace.h"
#include "server/Authority.h"
#include "server/FaceChoice.h"
#include "server/KeyTool.h"
#include "standard/http/StandardFace.h"
#include "standard/web/Routes.h"
#include "tests/support/Data.h"
#include "tests/support/LiveServer.h"

#include <QProcess>

/// Keys and certificates that the machine's own authority signs, and how visitors get its own.
class TestAuthority : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void signsForPrivateNamesAlone_data();
    void signsForPrivateNamesAlone();
    void renewsItsOwnAlone();
    void isThereForEveryone();
    void isThereUnencrypted();

private:
    QString file(const char *name) const { return keys.filePath(QLatin1String(name)); }
    QByteArray bytes(const char *name) const { return readFile(file(name)); }
    bool run(const QString &program, const char *arguments) const;
    bool openssl(const char *arguments) const { return run(QStringLiteral("openssl"), arguments); }
    bool makeKeys(const char *arguments) const;

    QTemporaryDir keys;
};

bool TestAuthority::run(const QString &program, const char *arguments) const
{
    QProcess process;
    process.setWorkingDirectory(keys.path());
    process.start(program, QString::fromLatin1(arguments).split(QLatin1Char(' ')));
    return process.waitForFinished() && process.exitCode() == 0;
}

bool TestAuthority::makeKeys(const char *arguments) const
{
    return run(QCoreApplication::applicationDirPath() + QLatin1String("/make-keys.sh"), arguments);
}

void TestAuthority::initTestCase()
{
    QVERIFY(makeKeys(". server 10.1.2.3 8.8.8.8"));
    for (const char *key : { "authority.key", "server.key" })
        QVERIFY(!(QFile::permissions(file(key)) & QFileDevice::Permissions(0x77)));
}

void TestAuthority::signsForPrivateNamesAlone_data()
{
    columnsOf<QByteArray, bool>("name", "holds");
    row("private address", "IP:192.168.9.9", true);
    row("name on the link", "DNS:other.local", true);
    row("public address", "IP:8.8.8.8", false);
    row("public IPv6 address", "IP:2001:db8::1", false);
    row("public name", "DNS:example.com", false);
}

void TestAuthority::signsForPrivateNamesAlone()
{
    QFETCH(const QByteArray, name);
    QFETCH(const bool, holds);
    writeFile(file("names"), "subjectAltName=" + name);
    QVERIFY(openssl("req -new -key server.key -subj /CN=x -out csr"));
    QVERIFY(openssl("x509 -req -in csr -CA authority.crt -CAkey authority.key -set_serial "
                    "7 -extfile names -out signed"));
    QCOMPARE(openssl("verify -trusted authority.crt signed"), holds);
}

void TestAuthority::renewsItsOwnAlone()
{
    const QByteArray key = bytes("server.key");
    const QByteArray authority = bytes("authority.crt");
    const QByteArray first = bytes("server.crt");
    QVERIFY(makeKeys(". server 10.1.2.3"));
    QCOMPARE(bytes("server.crt"), first);
    QVERIFY(makeKeys(". server 10.1.2.4"));
    QVERIFY(bytes("server.crt") != first);
    QCOMPARE(bytes("server.key") + bytes("authority.crt"), key + authority);
    QVERIFY(openssl("verify -purpose sslserver -verify_ip "
                    "10.1.2.4 -trusted authority.crt server.crt"));

    QVERIFY(openssl("req -x509 -newkey rsa:2048 -nodes -keyout own.key "
                    "-out own.crt -days 2 -subj /CN=own"));
    const QByteArray own = bytes("own.crt");
    QVERIFY(KeyTool::canRenew(file("own.crt")));
    KeyTool tool(file("own.crt"));
    QString said = QStringLiteral("nothing");
    connect(&tool, &KeyTool::ended, &tool, [&said](const QString &problem) { said = problem; });
    tool.start();
    QTRY_COMPARE_WITH_TIMEOUT(said, QString(), 20000);
    QCOMPARE(bytes("own.crt"), own);
    QVERIFY(authorityOf(file("own.crt")).isNull());

    // Somebody may have chosen the authority's own as those of the server.
    QVERIFY(!makeKeys(". authority"));
    QVERIFY(QFile::copy(file("authority.key"), file("copy.key"))
            && QFile::copy(file("authority.crt"), file("copy.crt")));
    QVERIFY(makeKeys(". copy"));
    QCOMPARE(bytes("authority.crt") + bytes("copy.crt"), authority + authority);
    QVERIFY(QFile::remove(file("copy.key")) && !KeyTool::canRenew(file("copy.crt")));
}

/// A file of that name in the share is found by the classic face, which has no reserved names.
void TestAuthority::isThereForEveryone()
{
    LiveServer live(
        chosenFaces(classicFaces(fileRoutes()),
                    standard::standardFaces(standard::withAuthority(standard::fileRoutes()))));
    live.profile->authMode = AuthBasic;
    live.profile->users = QStringList{ QStringLiteral("a:1") };
    live.start();
    const auto get = [&live](const char *path, const char *agent) {
        const QByteArray fields = QByteArray("User-Agent: ") + agent + "\r\n";
        return RawClient(live.port()).exchange(rawRequest("GET", path, fields));
    };
    live.profile->publicKeyFile = file("server.crt");
    for (const char *agent : { "curl/7", "gvfs/1" }) {
        const RawReply reply = get("/.quillon/ca", agent);
        QCOMPARE(reply.body, bytes("authority.crt"));
        QCOMPARE(reply.header("Content-Type"), QByteArray("application/x-x509-ca-cert"));
        const QString print = fingerprintRows(authorityOf(file("server.crt"))).constFirst();
        const RawReply page = get("/.quillon/authority", agent);
        QVERIFY(page.body.contains(print.toLatin1()));
        QVERIFY(page.header("Content-Security-Policy").contains("frame-ancestors 'none'"));
        QCOMPARE(page.header("Cross-Origin-Resource-Policy"), QByteArray("same-origin"));
        QVERIFY(get("/.quillon/authority/a", agent).status() != "200 OK");
        QCOMPARE(get("/a", agent).status().left(3), QByteArray("401"));
    }
    live.addFile(QStringLiteral(".quillon/ca"), "mine");
    QCOMPARE(get("/.quillon/ca", "curl/7").status().left(3), QByteArray("401"));
    live.profile->publicKeyFile = file("own.crt");
    QCOMPARE(get("/.quillon/ca", "gvfs/1").status(), QByteArray("404 Not Found"));
}

/// On a port that encrypts, beside the way to what is to be encrypted.
void TestAuthority::isThereUnencrypted()
{
    LiveServer live;
    live.addFile(QStringLiteral("a"), "secret");
    live.profile->sslMode = Qt::Checked;
    live.profile->privateKeyFile = file("server.key");
    live.profile->publicKeyFile = file("server.crt");
    live.start();
    const auto get = [&live](const char *path) {
        return RawClient(live.port()).exchange(rawRequest("GET", path));
    };
    QCOMPARE(get("/.quillon/ca").body, bytes("authority.crt"));
    const QByteArray policy = get("/.quillon/authority").header("Content-Security-Policy");
    QVERIFY(policy.contains("frame-ancestors 'none'"));
    for (const auto &[wanted, heading] : { std::pair("fr;q=0.5, pl, de-AT;q=0.7", "<h1>Diesem"),
                                           { "ES", "<h1>Confiar" },
                                           { "de;q=0, pl", "<h1>Trust" },
                                           { "q=;,-;q=x", "<h1>Trust" } }) {
        const QByteArray field = "Accept-Language: " + QByteArray(wanted) + "\r\n";
        QVERIFY2(RawClient(live.port())
                     .exchange(rawRequest("GET", "/.quillon/authority", field))
                     .body.contains(heading),
                 wanted);
    }
    const RawReply way = get("/a?b");
    QCOMPARE(way.status().left(3), QByteArray("307"));
    QCOMPARE(way.header("Location"), QByteArray("https://localhost/a?b"));
    QVERIFY(way.header("Date").endsWith(" GMT") && !way.header("Server").isEmpty());
    for (const auto &[strict, host, isRefused] : { std::tuple(0, "evil.example", false),
                                                   { 1, "localhost", false },
                                                   { 1, "evil.example", true } }) {
        live.profile->strict = strict;
        for (const char *path : { "/.quillon/ca", "/a" }) {
            const QByteArray head = "GET " + QByteArray(path) + " HTTP/1.1\r\nHost: " + host;
            const RawReply reply = RawClient(live.port()).exchange(head + "\r\n\r\n");
            QCOMPARE(reply.status().startsWith("421"), isRefused);
        }
    }
    RawClient splitting(live.port());
    splitting.send("GET /a\rX-Evil:1 HTTP/1.1\r\nHost: b\r\n\r\n");
    QCOMPARE(splitting.readToEnd(), QByteArray());
    live.profile->faceMode = FaceClassic;
    QCOMPARE(get("/.quillon/ca").body, bytes("authority.crt"));
    for (const char *none : { "GET /a HTTP/1.0\n\n", "DELETE /a HTTP/1.1\r\n\r\n",
                              "GET /a HTTP/1.1\r\nHost: b\r\n\r\n", "\r\n\r\n" }) {
        RawClient client(live.port());
        client.send(none);
        if (!QByteArray(none).contains("\r\n\r\n"))
            client.socket->disconnectFromHost();
        QCOMPARE(client.readToEnd(), QByteArray());
    }
    QCOMPARE(live.fileContent(QStringLiteral("a")), QByteArray("secret"));
}

QTEST_GUILESS_MAIN(TestAuthority)
#include "tst_authority.moc"
