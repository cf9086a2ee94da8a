#include "classic/pages/Routes.h"
#include "config/Profile.h"
#include "tests/classic/pages/Fixtures.h"
#include "tests/files/Pictures.h"
#include "tests/support/FullDisk.h"

#include <QDateTime>

#include <ctime>

#include <sys/socket.h>
#include <unistd.h>

namespace {

/// A page as it is sent. In its file beside this one it is broken into lines to be read.
QByteArray page(const char *name)
{
    const QString folder = QStringLiteral(PAGES "/");
    return readFile(folder + QLatin1String(name)).replace('\n', QByteArray());
}

QByteArray uploadBody(const QByteArray &name, const QByteArray &content = "content")
{
    return "--XX\r\nContent-Disposition: form-data; name=\"f\"; filename=\"" + name + "\"\r\n\r\n"
        + content + "\r\n--XX--\r\n";
}

/// A posted body, or a GET without one.
QByteArray requestFor(const QByteArray &target, const QByteArray &body)
{
    const QByteArray type = body.startsWith("--XX") ? "multipart/form-data; boundary=XX"
                                                    : "application/x-www-form-urlencoded";
    const QByteArray headers =
        "Cookie: ID=42\r\nAuthorization: Basic YW5uOiJ4\r\nContent-Type: " + type + "\r\n";
    return rawRequest(body.isNull() ? "GET" : "POST", target, headers, body);
}

/// What a reply comes to: the status of a refusal, the content of a file, or of a listing its
/// message, a bar and the last names of its links.
QByteArray essence(const RawReply &reply)
{
    QByteArray body = reply.body;
    const int table = int(body.indexOf("<table border=\"1\" frame=\"border\">"));
    if (table < 0)
        return reply.status() == "200 OK" ? body : reply.status().left(3);
    const int message = int(body.lastIndexOf('>', table)) + 1;
    QByteArray text = body.mid(message, table - message) + '|';
    const QList<QByteArray> cells = body.replace("width=\"200\">", "\r").split('\r').mid(1);
    for (const QByteArray &cell : cells)
        text += cell.mid(cell.indexOf("<a href=\"")).split('"').at(1).split('/').last() + ' ';
    return text.endsWith(' ') ? text.chopped(1) : text;
}

struct Step
{
    QByteArray target;
    QByteArray body; ///< null: a GET
    QByteArray answer; ///< its essence
};

} // namespace

Q_DECLARE_METATYPE(Step)

class TestBrowserPages : public QObject
{
    Q_OBJECT
private Q_SLOTS:
    void init();
    void cleanup() { live.reset(); }
    void pageWithPictures();
    void pageWithoutPictures();
    void previewsAppear();
    void conversations_data();
    void conversations();
    void switchedOff();
    void ownerIsToldOfForms();
    void largePages();
    void deletingFails();
    void uploadsThatBreakOff();
    void linksStayHere();

private:
    RawReply get(const QByteArray &target, const QByteArray &body = {}) const
    {
        return RawClient(live->port()).exchange(requestFor(target, body));
    }
    void add(const QByteArray &name, const QByteArray &content = {}, qint64 time = 1600000000) const
    {
        live->addFile(QString::fromUtf8(name), content);
        QFile file(live->sharePath(QString::fromUtf8(name)));
        QVERIFY(file.open(QIODevice::ReadWrite));
        const QDateTime modified = QDateTime::fromSecsSinceEpoch(time);
        QVERIFY(file.setFileTime(modified, QFileDevice::FileModificationTime));
    }

    std::unique_ptr<LiveServer> live;
};

void TestBrowserPages::init()
{
    qputenv("TZ", "UTC");
    tzset();
    QLocale::setDefault(QLocale::c());
    live = std::make_unique<LiveServer>(withFiles(pageRoutes()), QLatin1String(QUILLON_PREVIEW));
    live->start();
}

void TestBrowserPages::pageWithPictures()
{
    add("My Trip/in/x");
    add("My Trip/<b> & \"c\".txt", QByteArray(1025, 'x'), 1000000000);
    add("My Trip/Makefile", QByteArray(7, 'x'), 1234567890);
    add("My Trip/small 1.png", QByteArray(19999, 'x'));
    const RawReply reply = get("/My%20Trip");
    QCOMPARE(reply.header("Content-Type"), QByteArray("text/html; charset=UTF-8"));
    QCOMPARE(reply.body, page("pictures.html"));
    QVERIFY(get("/", "a=upfm").header("Content-Disposition").endsWith("=\"filemanager.jnlp\""));
}

void TestBrowserPages::pageWithoutPictures()
{
    live->profile->showImages = Qt::Unchecked;
    live->profile->enableDelete = Qt::Unchecked;
    live->profile->enableUpload = Qt::Unchecked;
    add("a\"b/c");
    add("photo.jpg", QByteArray(20000, 'x'));
    QCOMPARE(get("/", "a=c&cv=1").body, page("plain.html"));
    get("/", "a=c&cv=24");
    live->profile->showFolders = Qt::Unchecked;
    QVERIFY(QFile::remove(live->sharePath(QStringLiteral("photo.jpg"))));
    QCOMPARE(get("/", "a=<i>").body, page("empty.html"));
}

void TestBrowserPages::previewsAppear()
{
    add("big #1.jpg", encoded(noise(600, 300), "JPEG"));
    const RawReply pending = get("/");
    QCOMPARE(pending.status(), QByteArray("202 Accepted"));
    QVERIFY(pending.body.startsWith(
        "<html><head><meta http-equiv=\"refresh\" content=\"2\"/><title>Quillon</title>"));

    QTRY_COMPARE(get("/").status(), QByteArray("200 OK"));
    const QByteArray url = "/_t/" + live->sharePath().toUtf8() + "/big%20%231.jpg";
    const RawReply preview = get(url);
    QVERIFY(preview.header("Content-Type").isEmpty()
            && preview.header("Content-Disposition").contains("=\"big #1.jpg."));

    // What another item shares is none of this one's business.
    add("sub/x");
    live->server->setShared(live->sharePath(QStringLiteral("sub")));
    QCOMPARE(essence(get(url)), QByteArray("404"));
}

void TestBrowserPages::conversations_data()
{
    QTest::addColumn<QList<Step>>("steps");
    const auto row = [](const char *name, const QList<Step> &steps) {
        QTest::newRow(name) << steps;
    };
    const QByteArray get;
    row("sorting, which only posts do",
        { { "/s", "a=s", "|z b a c" },
          { "/s", "a=t", "|z c b a" },
          { "/s?a=n", get, "|z c b a" } });
    row("pages",
        { { "/s", "a=c&cv=3", "|z a b" },
          { "/s?a=p&p=1", get, "|c" },
          { "/s?a=p&p=5", get, "|z a b" },
          { "/s?a=p&p=-1", "a=c&cv=many", "|z" },
          { "/s?a=p&p=3", get, "|c" },
          { "/s", "a=c&cv=-7", "|c" },
          { "/s?a=p&p=2147483647", "a=c&cv=2000000000", "|z a b c" } });
    row("messages, which do not pile up",
        { { "/s", "a=p&p=1", "Unknown request p|z a b c" },
          { "/s", "a=", "File send failed: Unsupported browser or no file selected.|z a b c" },
          { "/s/c", "a=del&f=1", "c" },
          { "/s/c", "a=del&f=2", "c" },
          { "/s", get, "0 file removed. |z a b c" },
          { "/s/c", "a=" + QByteArray(1000000, 'x'), "c" },
          { "/s", get, "Unknown request " + QByteArray(8176, 'x') + "|z a b c" } });
    row("pages beside the listing",
        { { "/a%3Cb%3E", "a=up", page("upload.html") },
          { "/", "a=cf", page("create.html") },
          { "/my+docs/", "a=upm", page("applet.html") },
          { "/docs/", "a=upfm", page("launch.jnlp") } });
    row("special folders",
        { { "/_i/a%20b.png", get, "icon" },
          { "/_i/mine", get, "404" },
          { "/other/_i/mine", get, "mine" },
          { "/_t/", get, "404" },
          { "/_t//s/c", get, "404" },
          { "/s/c/", get, "404" } });
    const QByteArray more = QByteArray("&f=no").repeated(900); // than a head holds
    row("deleting",
        { { "/sub", "a=del" + more + "&f=a+b", "1 file removed. |keep link loop a+b l%0Af" },
          { "/sub", "a=del&d=keep&d=link&d=loop&f=a%2Bb&f=l%0D%0Af&d=no", "4 file removed. |" },
          { "/other", get, "|_i in file" } });
    QList<Step> nothing{ { "/sub", "a=del&d=keep&f=..%2Fother%2Ffile", "403" },
                         { "/sub", "a=del&d=..", "403" } };
    for (const char *field : { "d=", "d=.&d=%2F", "d=keep%2F..", "f=keep&d=a+b", "f=link%2F..%2Fa",
                               "f=keep%2Fa%00x&d=keep%00x" })
        nothing.append({ "/sub", QByteArray("a=del&") + field,
                         "0 file removed. |keep link loop a%20b a+b l%0Af" });
    row("deleting what is not to be deleted", nothing);
    const QByteArray folders = "|new%20+ tmp x z a b c";
    row("creating folders",
        { { "/s", "a=cfd&f=x%2Fy", "New folder created|x z a b c" },
          { "/s", "a=cfd&f=%2Ftmp", "New folder created|tmp x z a b c" },
          { "/s", "f=new+%2B&submit=Create&a=cfd", "New folder created" + folders },
          { "/s", "a=cfd&f=", "Folder create failed: Folder exists" + folders },
          { "/s", "a=cfd&f=a", "Create new folder failed" + folders },
          { "/s", "a=cfd&f=" + QByteArray(256, 'n'), "Create new folder failed" + folders },
          { "/s", "a=cfd&f=n%00x", "Create new folder failed" + folders },
          { "/s/x", get, "|y" } });
    row("uploads",
        { { "/s", uploadBody("new"), "File sent success.|z a b c new" },
          { "/s?a=p&p=1", uploadBody("up"), "File sent success.|z a b c new up" },
          { "/s", uploadBody("c"), "File send failed: File exists|z a b c new up" },
          { "/s", uploadBody("", ""),
            "File send failed: Unsupported browser or no file selected.|z a b c new up" },
          { "/s/z", uploadBody("cut").chopped(10),
            "File send failed: Network error or unsupported browser.|in" },
          { "/gone", uploadBody("new"), "File send failed: Network read error.|" },
          { "/s/z%00x", uploadBody("NUL"), "File send failed: Network read error.|" },
          { "/s/z", get, "|in" },
          { "/s/up", get, "content" },
          { "/s/c", get, "c" } });
}

/// Each on one connection as long as that lasts.
void TestBrowserPages::conversations()
{
    QFETCH(QList<Step>, steps);
    for (const char *name : { "other/_i/mine", "other/in/x", "other/file", "sub/keep/a",
                              "sub/keep/.b", "sub/a b", "sub/a+b", "sub/l\nf", "s/z/in" })
        add(name, "mine");
    add("s/a", QByteArray(10, 'x'), 1000);
    add("s/b", QByteArray(30, 'x'), 2000);
    add("s/c", "c", 1500000000);
    QVERIFY(
        QFile::link(QStringLiteral("../other/in"), live->sharePath(QStringLiteral("sub/link"))));
    QVERIFY(QFile::link(QStringLiteral("."), live->sharePath(QStringLiteral("sub/loop"))));
    writeFile(live->home.directories.icons + QLatin1String("a b.png"), "icon");
    std::unique_ptr<RawClient> client;
    for (const Step &step : steps) {
        if (!client || !client->isOpen())
            client = std::make_unique<RawClient>(live->port());
        QCOMPARE(essence(client->exchange(requestFor(step.target, step.body))), step.answer);
    }
}

void TestBrowserPages::switchedOff()
{
    add("file");
    live->profile->enableUpload = Qt::Unchecked;
    for (const QByteArray &body : { uploadBody("new"), QByteArray("a=up") })
        QVERIFY(essence(get("/", body)) == "File send failed: Uploads are not allowed.|file");
    QCOMPARE(essence(get("/", "a=cfd&f=x")), QByteArray("Create new folder failed|file"));
    live->profile->enableDelete = Qt::Unchecked;
    QCOMPARE(essence(get("/", "a=del&f=file")), QByteArray("|file"));
}

void TestBrowserPages::ownerIsToldOfForms()
{
    add("sub/a b");
    add("sub/d/x");
    for (const char *name : { "new", "new" })
        get("/sub", uploadBody(name));
    for (const char *posted : { "a=cfd&f=e", "a=cfd&f=e", "a=del&f=a+b&f=none&d=d" })
        get("/sub", posted);
    live->profile->enableUpload = live->profile->enableDelete = Qt::Unchecked;
    get("/sub", uploadBody("more"));
    get("/sub", "a=del&f=new");
    QByteArray told;
    for (const Deed &deed : std::as_const(live->sink.deeds))
        told += deed.method + deed.path + ' ' + QByteArray::number(deed.status) + '|';
    QCOMPARE(told,
             QByteArray("POST/sub/new 201|POST/sub/new 409|MKCOL/sub/e 200|MKCOL/sub/e 403|"
                        "DELETE/sub/a b 200|DELETE/sub/d 200|POST/sub 403|DELETE/sub 403|"));
}

/// They go out as they are taken, whole, and nobody waits for them.
void TestBrowserPages::largePages()
{
    const QByteArray url = '/' + addManyFiles(*live).toLatin1();
    QCOMPARE(get(url, "a=c&cv=1").body.count("<a href=\"?a=p"), 11999);
    const RawReply whole = get(url, "a=c&cv=2000000000");
    QVERIFY(whole.body.contains("name=\"cv\" value=\"10000\""));
    QCOMPARE(whole.header("Content-Length"), QByteArray::number(whole.body.size()));
    QVERIFY(whole.body.count("<td align") == 10000
            && whole.body.endsWith("</tr></table></body></html>"));
    RawClient client(live->port());
    QVERIFY(waitsAndServes(*live, client, requestFor(url, {})));
}

void TestBrowserPages::deletingFails()
{
    add("locked/file");
    const QString folder = live->sharePath(QStringLiteral("locked"));
    QVERIFY(QFile::setPermissions(folder, QFile::Permissions(0x5005)));
    QVERIFY(QFile::setPermissions(live->sharePath(), QFile::Permissions(0x7755)));
    // Nothing stops the superuser, so for a moment this is somebody else.
    const bool superuser = ::geteuid() == 0;
    QVERIFY(!superuser || ::seteuid(65534) == 0);
    const RawReply reply = get("/", "a=del&d=locked&f=locked%2Ffile");
    QVERIFY(!superuser || ::seteuid(0) == 0);
    QFile::setPermissions(folder, QFile::Permissions(0x7755));
    QCOMPARE(essence(reply),
             " delete " + live->sharePath().toUtf8() + "//locked failed,0 file removed. |locked");
}

void TestBrowserPages::uploadsThatBreakOff()
{
    auto disk = std::make_unique<FullDisk>(100000);
    QCOMPARE(essence(get("/", uploadBody("large", QByteArray(300000, 'x')))),
             QByteArray("File send failed: Maybe insufficient storage.|"));
    disk.reset();
    // Whom the page of a broken connection would tell of it learns it from the next one.
    const std::pair<int, const char *> cuts[] = {
        { 12, "File send failed: Network read error.|" },
        { 40, "File send failed: Unsupported browser or no file selected.|" }, // in the part's head
    };
    for (const auto &[missing, message] : cuts) {
        RawClient client(live->port());
        const qint64 before = live->server->sentBytes();
        const QByteArray part = requestFor("/", uploadBody("half")).chopped(missing);
        const qint64 end = live->server->receivedBytes() + part.size();
        client.send(part);
        QTRY_COMPARE(live->server->receivedBytes(), end);
        const linger reset{ 1, 0 };
        ::setsockopt(int(client.socket->socketDescriptor()), SOL_SOCKET, SO_LINGER, &reset,
                     sizeof reset);
        client.socket->abort();
        QTRY_COMPARE(live->server->connectionCount(), 0);
        QCOMPARE(live->server->sentBytes(), before);
        QCOMPARE(essence(get("/")), QByteArray(message));
    }
}

/// Browsers take what follows two slashes, or what they read as such, for another host.
void TestBrowserPages::linksStayHere()
{
    add("a/b/file");
    add("\\a/b/file");
    const QByteArray page = get("//a/b").body;
    QVERIFY(page.contains("<a href=\"/a/b/file\">") && page.contains("<a href=\"/a\">..//a/b</a>"));
    QVERIFY(get("/%5Ca/b").body.contains("<a href=\"/%5Ca\">../\\a/b</a>"));
}

QTEST_GUILESS_MAIN(TestBrowserPages)
#include "tst_browserpages.moc"
