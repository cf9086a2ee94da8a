#include "classic/pages/BrowserPages.h"
#include "classic/pages/Routes.h"

#include "tests/classic/pages/Pictures.h"
#include "tests/support/LiveServer.h"

#include <QDateTime>
#include <QDir>
#include <QFile>
#include <QTest>

#include <csignal>
#include <ctime>

#include <sys/resource.h>
#include <unistd.h>

namespace {

Routes rows()
{
    Routes all = pageRoutes();
    for (const Route &row : fileRoutes())
        all.push_back(row);
    return all;
}

/// The pages below are broken into lines to be read; what is sent has none.
QByteArray joined(QByteArray page)
{
    return page.replace('\n', QByteArray());
}

constexpr auto scripts = R"html(<script type="text/javascript">
function checkFolder(item){if(item.checked){if(!confirm('Delete all files in folder '
 + item.value + '?')){item.checked = false;return false;}}return true;}
function read_value(){if(document.fl.d[0] == null) return checkFolder(document.fl.d);
for(var i=0; i < document.fl.d.length; i++)
{if(!checkFolder(document.fl.d[i]))return false;}return true;}</script>)html";

constexpr auto sortForm = R"html(<form method="POST" name="s">
<td>Sorted by:<select name="a" onchange="s.submit();">
<option value="n" SELECTED>Name</option><option value="s">Size</option>
<option value="t">Time</option></select></td></form>)html";

constexpr auto actionForm = R"html(<form method="POST" name="af"><td>
<select name="a" onchange="if(af.a.selectedIndex>0){af.submit();af.a.selectedIndex=0;}">
<option value="" SELECTED>Select Action</option><option value="up">Add File</option>
<option value="cf">Create Folder</option><option value="upfm">File Manager in window</option>
<option value="upm">File Manager in browser</option></select></td></form>)html";

constexpr auto deleteForm = R"html(<form method="POST" name="fl" onsubmit="return read_value()">
<input type="hidden" name="a" value="del">
<td><input type="submit" value="Delete selected items"></td>)html";

constexpr auto itemsForm = R"html(<form method="post"><input type="hidden" name="a" value="c">
<td style="white-space: nowrap"><input type="submit"value="Set Item/Page:">
<input type="text" size="2" name="cv" value="24"></td></form>)html";

constexpr auto uploadForm = R"html(<html><head><title>Quillon</title><title>Upload</title>
<script type="text/javascript">function checkVal(val, msg){if(val == ''){alert(msg);
return false;}return true;}</script></head><body background="/_i/sand-light.jpg">
<center><h2>Send file to /a&lt;b&gt;</h2>
<form method="POST" name="up" enctype="multipart/form-data">
<table border="0" cellspacing="5"><tr><th align="right">File:</th>
<td align="left"><input type="file" name="f" size="40"></td></tr></table>
<input type="submit" name="submit" value="Send"
 onclick="return checkVal(up.f.value, 'No selected file');">&nbsp;&nbsp;&nbsp;
<input type="button" value="Back" onclick="javascript: history.go(-1);"/>
</form></center></body></html>)html";

constexpr auto createForm = R"html(<html><head><title>Quillon</title><title>Create Folder</title>
<script type="text/javascript">function checkVal(val, msg){if(val == ''){alert(msg);
return false;}return true;}</script></head><body><center><h2>Create new folder</h2>
<form method="POST" name="cf" onsubmit="return checkVal(cf.f.value, 'No folder name')">
<table border="0" cellspacing="5"><tr><th align="right">New folder name:</th>
<td align="left"><input type="text" name="f" size="40"></td></tr></table>
<input type="submit" name="submit" value="Create">&nbsp;&nbsp;&nbsp;
<input type="hidden" name="a" value="cfd">
<input type="button" value="Back" onclick="javascript: history.go(-1);"/>
</form></center></body></html>)html";

QByteArray uploadBody(const QByteArray &name, const QByteArray &content)
{
    return "--XX\r\nContent-Disposition: form-data; name=\"f\"; filename=\"" + name + "\"\r\n\r\n"
        + content + "\r\n--XX--\r\n";
}

/// The targets of the links of a page's entries, in their order.
QList<QByteArray> shown(const RawReply &reply)
{
    QList<QByteArray> links;
    QByteArray body = reply.body;
    const QList<QByteArray> cells =
        body.replace("<td align=\"center\" width=\"200\">", "\r").split('\r');
    for (const QByteArray &cell : cells.mid(1))
        links.append(cell.mid(cell.indexOf("<a href=\"") + 9).split('"').first());
    return links;
}

} // namespace

class TestBrowserPages : public QObject
{
    Q_OBJECT
private Q_SLOTS:
    void initTestCase();
    void init();
    void cleanup();

    void pageWithPictures();
    void pageWithoutPictures();
    void previewsAppear();
    void sorting();
    void pages_data();
    void pages();
    void formsAndLaunchPages();
    void actionsThatDoNothing();
    void deleting();
    void deletingFails();
    void deletingIsGuarded_data();
    void deletingIsGuarded();
    void creatingFolders_data();
    void creatingFolders();
    void uploads_data();
    void uploads();
    void uploadToFullDisk();
    void specialFolders();
    void oneConnectionForAll();
    void deepFolders();

private:
    RawReply get(const QByteArray &target) const;
    RawReply post(const QByteArray &target, const QByteArray &body,
                  const QByteArray &type = "application/x-www-form-urlencoded") const;
    RawReply upload(const QByteArray &target, const QByteArray &body) const;
    void add(const QByteArray &name, const QByteArray &content = {},
             qint64 time = 1600000000) const;
    bool exists(const QByteArray &name) const;

    std::unique_ptr<LiveServer> live;
};

RawReply TestBrowserPages::get(const QByteArray &target) const
{
    return RawClient(live->port()).exchange(rawRequest("GET", target, "Cookie: ID=42\r\n"));
}

RawReply TestBrowserPages::post(const QByteArray &target, const QByteArray &body,
                                const QByteArray &type) const
{
    const QByteArray headers = "Cookie: ID=42\r\nContent-Type: " + type + "\r\n";
    return RawClient(live->port()).exchange(rawRequest("POST", target, headers, body));
}

RawReply TestBrowserPages::upload(const QByteArray &target, const QByteArray &body) const
{
    return post(target, body, "multipart/form-data; boundary=XX");
}

void TestBrowserPages::add(const QByteArray &name, const QByteArray &content, qint64 time) const
{
    live->addFile(QString::fromUtf8(name), content);
    QFile file(live->sharePath(QString::fromUtf8(name)));
    QVERIFY(file.open(QIODevice::ReadWrite));
    QVERIFY(
        file.setFileTime(QDateTime::fromSecsSinceEpoch(time), QFileDevice::FileModificationTime));
}

bool TestBrowserPages::exists(const QByteArray &name) const
{
    return QFileInfo::exists(live->sharePath(QString::fromUtf8(name)));
}

void TestBrowserPages::initTestCase()
{
    qputenv("TZ", "UTC");
    tzset();
    QLocale::setDefault(QLocale::c());
}

void TestBrowserPages::init()
{
    live = std::make_unique<LiveServer>(rows());
    live->start();
}

void TestBrowserPages::cleanup()
{
    BrowserPages::previews.clear();
    live.reset();
}

void TestBrowserPages::pageWithPictures()
{
    add("My Trip/in/x");
    add("My Trip/<b> & \"c\".txt", QByteArray(1025, 'x'), 1000000000);
    add("My Trip/Makefile", QByteArray(7, 'x'), 1234567890);
    add("My Trip/small 1.png", QByteArray(19999, 'x'));

    const RawReply reply = get("/My%20Trip");
    QCOMPARE(reply.status(), QByteArray("200 OK"));
    QCOMPARE(reply.header("Content-Type"), QByteArray("text/html; charset=UTF-8"));
    const QByteArray expected = QByteArray("<html><head><title>Quillon</title>") + scripts
        + R"html(</head><body background="/_i/sand-light.jpg">
<table><tr><td><b><a href="/">../My Trip</a></b></td>)html"
        + sortForm + actionForm + deleteForm
        + R"html(</tr></table><table border="1" frame="border"><tr>
<td align="center" width="200"><input type="checkbox" name="d" value="in"> <a href="/My%20Trip/in">
<br>in<br><img src="/_i/folder.png" vspace="8" align="center" border="0"></a></td>
<td align="center" width="200">
<input type="checkbox" name="f" value="&lt;b&gt; & &quot;c&quot;.txt">
 <a href="/My%20Trip/%3Cb%3E%20&%20%22c%22.txt">
<img src="/_i/txt.png" vspace="8" align="center" border="0"><br>&lt;b&gt; & &quot;c&quot;.txt<br></a>
1KB<br>9 Sep 2001 01:46:40</td>
<td align="center" width="200"><input type="checkbox" name="f" value="Makefile">
 <a href="/My%20Trip/Makefile"><br>Makefile<br></a>7Byte<br>13 Feb 2009 23:31:30</td></tr><tr>
<td align="center" width="200"><input type="checkbox" name="f" value="small 1.png">
 <a href="/My%20Trip/small%201.png">
<img src="/My%20Trip/small%201.png" vspace="8" align="center" border="0"><br>small 1.png<br></a>
19KB<br>13 Sep 2020 12:26:40</td></tr></table></form><table><tr>)html"
        + itemsForm + "</tr></table></body></html>";
    QCOMPARE(reply.body, joined(expected));
}

void TestBrowserPages::pageWithoutPictures()
{
    live->profile->showImages = Qt::Unchecked;
    live->profile->enableDelete = Qt::Unchecked;
    live->profile->enableUpload = Qt::Unchecked;
    add("a\"b/c");
    add("photo.jpg", QByteArray(20000, 'x'));

    const QByteArray start =
        QByteArray("<html><head><title>Quillon</title></head><body><table><tr>") + sortForm
        + "</tr></table>";
    const QByteArray expected = start + R"html(<table border="1" frame="border"><tr>
<td align="center" width="200"><a href="/a%22b">a&quot;b</a><br>Folder</td>
<td align="center" width="200"><a href="/photo.jpg">photo.jpg</a><br>
19KB<br>13 Sep 2020 12:26:40</td></tr></table><table><tr>)html"
        + itemsForm + "</tr></table></body></html>";
    QCOMPARE(get("/").body, joined(expected));

    live->profile->showFolders = Qt::Unchecked;
    QCOMPARE(shown(get("/")), QList<QByteArray>({ "/photo.jpg" }));

    QVERIFY(QFile::remove(live->sharePath(QStringLiteral("photo.jpg"))));
    const QByteArray empty = start + R"html(Unknown request &lt;i&gt;
<table border="1" frame="border"><tr><td><h2>Empty</h2></td></tr></table><table><tr>)html"
        + itemsForm + "</tr></table></body></html>";
    QCOMPARE(post("/", "a=<i>").body, joined(empty));
    QVERIFY(!get("/").body.contains("Unknown request"));
}

void TestBrowserPages::previewsAppear()
{
    add("big #1.jpg", encoded(noise(600, 300), "JPEG"));
    const RawReply pending = get("/");
    QCOMPARE(pending.status(), QByteArray("202 Accepted"));
    QVERIFY(pending.body.startsWith(
        "<html><head><meta http-equiv=\"refresh\" content=\"2\"/><title>Quillon</title>"));
    QVERIFY(pending.body.contains("<img src=\"/_i/image.png\" vspace=\"8\""));

    QTRY_COMPARE(get("/").status(), QByteArray("200 OK"));
    const QByteArray url = "/_t/" + live->sharePath().toUtf8() + "/big%20%231.jpg";
    const RawReply ready = get("/");
    QVERIFY(!ready.body.contains("http-equiv"));
    QVERIFY(ready.body.contains("<img src=\"" + url + "\" vspace=\"8\""));
    QCOMPARE(QImage::fromData(get(url).body, "JPEG").size(), QSize(124, 62));
}

void TestBrowserPages::sorting()
{
    add("a", QByteArray(10, 'x'), 1000);
    add("b", QByteArray(30, 'x'), 2000);
    add("c", QByteArray(20, 'x'), 1500000000);
    add("z/x");
    const auto order = [](const char *links) { return QByteArray(links).split(' '); };

    QCOMPARE(shown(get("/")), order("/z /a /b /c"));
    QCOMPARE(shown(post("/", "a=s")), order("/z /b /c /a"));
    QCOMPARE(shown(post("/", "a=t")), order("/z /c /b /a"));
    const RawReply later = get("/?a=n"); // only what is posted sorts
    QCOMPARE(shown(later), order("/z /c /b /a"));
    QVERIFY(later.body.contains("<option value=\"t\" SELECTED>Time</option>"));
    QCOMPARE(shown(post("/", "a=n")), order("/z /a /b /c"));
}

void TestBrowserPages::pages_data()
{
    QTest::addColumn<int>("files");
    QTest::addColumn<QByteArray>("perPage");
    QTest::addColumn<QByteArray>("target");
    QTest::addColumn<int>("first");
    QTest::addColumn<int>("count");
    QTest::addColumn<QByteArray>("links");
    const auto row = [](const char *name, int files, const char *perPage, const char *target,
                        int first, int count, const char *links) {
        QTest::newRow(name) << files << QByteArray(perPage) << QByteArray(target) << first << count
                            << QByteArray(links);
    };
    const char *onFirst = "<td>Pages: <b>1</b> <a href=\"?a=p&p=1\">2</a> </td>";
    const char *onSecond = "<td>Pages: <a href=\"?a=p&p=0\">1</a> <b>2</b> </td>";
    row("a full page", 24, "24", "/", 0, 24, "");
    row("one more", 25, "24", "/", 0, 24, onFirst);
    row("the last page", 25, "24", "/?a=p&p=1", 24, 1, onSecond);
    row("beyond the last page", 25, "24", "/?a=p&p=5", 0, 24, onFirst);
    row("a negative page", 4, "3", "/?a=p&p=-1", 0, 3, onFirst);
    row("no number of items", 2, "many", "/", 0, 1, onFirst);
    row("a negative number of items", 2, "-7", "/?a=p&p=1", 1, 1, onSecond);
    row("beyond 32 bits", 2, "2147483647", "/?a=p&p=2147483647", 0, 2, "");
}

void TestBrowserPages::pages()
{
    QFETCH(int, files);
    QFETCH(QByteArray, perPage);
    QFETCH(QByteArray, target);
    QFETCH(int, first);
    QFETCH(int, count);
    QFETCH(QByteArray, links);
    for (int i = 0; i < files; ++i)
        add(QByteArray::number(100 + i));

    post("/", "a=c&cv=" + perPage);
    const RawReply reply = get(target);
    QCOMPARE(shown(reply).size(), count);
    QCOMPARE(shown(reply).first(), "/" + QByteArray::number(100 + first));
    const QByteArray end = "name=\"cv\" value=\"" + QByteArray::number(perPage.toInt())
        + "\"></td></form>" + links + "</tr></table></body></html>";
    QVERIFY2(reply.body.endsWith(end), reply.body.constData());
}

void TestBrowserPages::formsAndLaunchPages()
{
    const RawReply uploadReply = post("/a%3Cb%3E", "a=up");
    QCOMPARE(uploadReply.header("Content-Type"), QByteArray("text/html; charset=UTF-8"));
    QCOMPARE(uploadReply.body, joined(uploadForm));
    live->profile->showImages = Qt::Unchecked;
    QCOMPARE(post("/", "a=cf").body, joined(createForm));

    QVERIFY(post("/", "a=upm").body.contains("<param name=Cookie value=\"42\">Applet not"));
    live->profile->sslMode = Qt::Checked;
    const RawReply descriptor =
        post("/docs", "a=upfm", "application/x-www\r\nAuthorization: Basic YW5uOng=");
    QCOMPARE(descriptor.header("Content-Type"),
             QByteArray("application/x-java-jnlp-file; charset=UTF-8"));
    QCOMPARE(descriptor.header("Content-Disposition"),
             QByteArray("attachment; filename=\"filemanager.jnlp\""));
    QVERIFY(descriptor.body.endsWith(
        "<argument>URL=https://localhost/</argument><argument>Cookie=42</argument>"
        "<argument>Path=/docs/</argument><argument>Aut=ann:x</argument>"
        "</application-desc></jnlp>"));
}

void TestBrowserPages::actionsThatDoNothing()
{
    for (int i = 0; i < 25; ++i)
        add(QByteArray::number(100 + i));
    const RawReply paged = post("/", "a=p&p=1");
    QVERIFY(paged.body.contains("</table>Unknown request p<table"));
    QCOMPARE(shown(paged).size(), 1);
    QVERIFY(post("/", "a=log").body.contains("</table><table border"));
    QVERIFY(post("/", "a=").body.contains("Unsupported browser or no file selected."));

    live->profile->enableDelete = Qt::Unchecked;
    QVERIFY(post("/", "a=del&f=100").body.contains("</table><table border"));
    QVERIFY(exists("100"));
}

void TestBrowserPages::deleting()
{
    for (const char *name : { "C++ notes", "C   notes", "My Trip/a", "My Trip/.b", "line\nfeed" })
        add(QByteArray("sub/") + name);
    add("outside/kept");
    const auto link = [this](const char *target, const char *name) {
        QVERIFY(QFile::link(live->sharePath(QLatin1String(target)),
                            live->sharePath(QLatin1String(name))));
    };
    link("outside", "sub/link");
    link("sub", "sub/loop");

    const RawReply reply = post("/sub",
                                "a=del&f=C%2B%2B+notes&d=My+Trip&d=link&d=loop&"
                                "f=line%0D%0Afeed&f=missing");
    QVERIFY2(reply.body.contains("</table>4 file removed. <table"), reply.body.constData());
    QCOMPARE(shown(reply), QList<QByteArray>({ "/sub/C%20%20%20notes" }));
    QVERIFY(exists("outside/kept"));
}

void TestBrowserPages::deletingFails()
{
    add("locked/file");
    const QString folder = live->sharePath(QStringLiteral("locked"));
    QVERIFY(QFile::setPermissions(
        folder, QFile::ReadOwner | QFile::ExeOwner | QFile::ReadOther | QFile::ExeOther));
    QVERIFY(QFile::setPermissions(live->sharePath(), QFile::Permissions(0x7755)));
    // Nothing stops the superuser, so for a moment this is somebody else.
    const bool superuser = ::geteuid() == 0;
    QVERIFY(!superuser || ::seteuid(65534) == 0);
    const RawReply reply = post("/", "a=del&d=locked&f=locked%2Ffile");
    QVERIFY(!superuser || ::seteuid(0) == 0);
    QFile::setPermissions(folder, QFile::Permissions(0x7755));

    const QByteArray target = live->sharePath().toUtf8() + "//locked";
    QVERIFY2(reply.body.contains("</table> delete " + target + " failed,0 file removed. <table"),
             reply.body.constData());
    QVERIFY(exists("locked/file"));
}

void TestBrowserPages::deletingIsGuarded_data()
{
    QTest::addColumn<QByteArray>("field");
    QTest::addColumn<bool>("forbidden");
    const auto row = [](const char *name, const char *field, bool forbidden = false) {
        QTest::newRow(name) << QByteArray(field) << forbidden;
    };
    row("an empty name", "d=");
    row("the folder itself", "d=.");
    row("the folder itself by a slash", "d=%2F");
    row("the folder itself by way of an entry", "d=keep%2F..");
    row("a folder as a file", "f=keep");
    row("a NUL in the name", "f=keep%2Ffile%00x");
    row("the other side of a link", "f=link%2F..%2Ffile");
    row("the folder above", "d=..", true);
    row("an entry, then one outside", "d=keep&f=..%2Fother%2Ffile", true);
}

void TestBrowserPages::deletingIsGuarded()
{
    QFETCH(QByteArray, field);
    QFETCH(bool, forbidden);
    add("sub/keep/file");
    add("other/file");
    add("other/in/x");
    QVERIFY(QFile::link(live->sharePath(QStringLiteral("other/in")),
                        live->sharePath(QStringLiteral("sub/link"))));

    const RawReply reply = post("/sub", "a=del&" + field);
    QCOMPARE(reply.status(), QByteArray(forbidden ? "403 Forbidden" : "200 OK"));
    QCOMPARE(reply.body.contains("</table>0 file removed. <table"), !forbidden);
    QVERIFY(exists("sub/keep/file"));
    QVERIFY(exists("other/file"));
}

void TestBrowserPages::creatingFolders_data()
{
    QTest::addColumn<QByteArray>("name");
    QTest::addColumn<QByteArray>("folder");
    QTest::addColumn<QByteArray>("message");
    const auto row = [](const char *what, const QByteArray &name, const char *folder,
                        const char *message) {
        QTest::newRow(what) << name << QByteArray(folder) << QByteArray(message);
    };
    const char *created = "</table>New folder created<table";
    const char *failed = "</table>Create new folder failed<table";
    const char *there = "</table>Folder create failed: Folder exists<table";
    row("a plain name", "new+%2B", "sub/new +", created);
    row("with folders between", "x%2Fy", "sub/x/y", created);
    row("an absolute path stays in the share", "%2Ftmp%2Fx", "sub/tmp/x", created);
    row("a folder that exists", "old", "sub/old/kept", there);
    row("no name", "", "sub", there);
    row("a file in the way", "file", "sub/file", failed);
    row("a name that is too long", QByteArray(256, 'n'), "sub", failed);
    row("a NUL in the name", "n%00x", "sub", failed);
    row("a folder outside", "..%2Fup", "sub", "");
}

void TestBrowserPages::creatingFolders()
{
    QFETCH(QByteArray, name);
    QFETCH(QByteArray, folder);
    QFETCH(QByteArray, message);
    add("sub/old/kept");
    add("sub/file");

    const RawReply reply = post("/sub", "f=" + name + "&submit=Create&a=cfd");
    QCOMPARE(reply.status(), QByteArray(message.isEmpty() ? "403 Forbidden" : "200 OK"));
    QVERIFY2(reply.body.contains(message), reply.body.constData());
    QVERIFY(exists(folder));
    QVERIFY(!exists("up"));
}

void TestBrowserPages::uploads_data()
{
    QTest::addColumn<QByteArray>("target");
    QTest::addColumn<QByteArray>("body");
    QTest::addColumn<QByteArray>("message");
    const auto row = [](const char *name, const char *target, const QByteArray &body,
                        const char *message) {
        QTest::newRow(name) << QByteArray(target) << body << QByteArray(message);
    };
    const QByteArray form = uploadBody("new", "content");
    row("a file", "/sub", form, "success.");
    row("from a listing's second page", "/sub?a=p&p=1", form, "success.");
    row("a name that is taken", "/sub", uploadBody("old", "x"), "failed: File exists");
    row("no file chosen", "/sub", uploadBody("", ""),
        "failed: Unsupported browser or no file selected.");
    row("no end of the form", "/sub", form.chopped(10),
        "failed: Network error or unsupported browser.");
    row("a folder that is missing", "/gone", form, "failed: Network read error.");
}

void TestBrowserPages::uploads()
{
    QFETCH(QByteArray, target);
    QFETCH(QByteArray, body);
    QFETCH(QByteArray, message);
    add("sub/old", "old");

    const RawReply reply = upload(target, body);
    QCOMPARE(reply.status(), QByteArray("200 OK"));
    const bool success = message == "success.";
    const QByteArray text = "</table>File sen" + QByteArray(success ? "t " : "d ") + message;
    QVERIFY2(reply.body.contains(text + "<table"), reply.body.constData());
    QCOMPARE(live->fileContent(QStringLiteral("sub/new")), QByteArray(success ? "content" : ""));
    QCOMPARE(exists("sub/new"), success);
    QCOMPARE(live->fileContent(QStringLiteral("sub/old")), QByteArray("old"));
}

void TestBrowserPages::uploadToFullDisk()
{
    rlimit usual = {};
    QVERIFY(::getrlimit(RLIMIT_FSIZE, &usual) == 0);
    const auto usualHandler = std::signal(SIGXFSZ, SIG_IGN);
    const rlimit full{ 100000, usual.rlim_max };
    QVERIFY(::setrlimit(RLIMIT_FSIZE, &full) == 0);
    const RawReply reply = upload("/", uploadBody("large", QByteArray(300000, 'x')));
    QVERIFY(::setrlimit(RLIMIT_FSIZE, &usual) == 0);
    std::signal(SIGXFSZ, usualHandler);

    QVERIFY(reply.body.contains("</table>File send failed: Maybe insufficient storage.<table"));
    QVERIFY(!exists("large"));
}

void TestBrowserPages::specialFolders()
{
    add("_i/mine", "mine");
    add("sub/_i/mine", "mine");
    QFile icon(live->home.directories.icons + QLatin1String("a b.png"));
    QVERIFY(icon.open(QIODevice::WriteOnly | QIODevice::Unbuffered));
    icon.write("icon");

    QCOMPARE(get("/_i/a%20b.png").body, QByteArray("icon"));
    QCOMPARE(get("/_i/mine").status(), QByteArray("404 Not Found"));
    QCOMPARE(get("/_I/a%20b.png").status(), QByteArray("404 Not Found"));
    QCOMPARE(get("/sub/_i/mine").body, QByteArray("mine"));
    const QByteArray path = live->sharePath(QStringLiteral("_i/mine")).toUtf8();
    QCOMPARE(get("/_t/" + path).status(), QByteArray("404 Not Found"));
    QCOMPARE(get("/_t/").status(), QByteArray("404 Not Found"));
}

void TestBrowserPages::oneConnectionForAll()
{
    add("a b.txt", "text");
    RawClient client(live->port());
    const QByteArray type = "Content-Type: multipart/form-data; boundary=XX\r\n";
    for (const char *name : { "1", "2" }) {
        QCOMPARE(client.exchange(rawRequest("GET", "/a%20b.txt")).body, QByteArray("text"));
        QVERIFY(client.exchange(rawRequest("GET", "/")).body.contains("a b.txt"));
        QCOMPARE(client.exchange(rawRequest("GET", "/a%20b.txt/")).status(),
                 QByteArray("404 Not Found"));
        const RawReply reply =
            client.exchange(rawRequest("POST", "/", type, uploadBody(name, "content")));
        QVERIFY(reply.body.contains("</table>File sent success.<table"));
        QCOMPARE(client.exchange(rawRequest("GET", QByteArray("/") + name)).body,
                 QByteArray("content"));
    }
}

void TestBrowserPages::deepFolders()
{
    const QByteArray path = QByteArray("level 1/").repeated(50);
    const QByteArray longName(255, 'n');
    add(path + longName, "deep");
    const QByteArray url = "/" + QByteArray("level%201/").repeated(50);
    QCOMPARE(shown(get(url)), QList<QByteArray>({ url + longName }));
    QCOMPARE(get(url + longName).body, QByteArray("deep"));
    QVERIFY(post("/", "a=del&d=level+1").body.contains("</table>50 file removed. <table"));
    QVERIFY(!exists("level 1"));
}

QTEST_GUILESS_MAIN(TestBrowserPages)
#include "tst_browserpages.moc"
