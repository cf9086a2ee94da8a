#include "files/HiddenUploads.h"
#include "standard/web/FormUpload.h"
#include "standard/web/Routes.h"
#include "tests/standard/StandardTest.h"

#include <QDir>
#include <QTest>

using namespace standard;

namespace {

constexpr auto formType = "Content-Type: multipart/form-data; boundary=b\r\n";

QByteArray disposition(const QByteArray &name)
{
    return "Content-Disposition: form-data; name=\"file\"; filename=\"" + name + '"';
}

QByteArray form(const QByteArray &name, const QByteArray &content)
{
    return "--b\r\n" + disposition(name) + "\r\nContent-Type: text/plain\r\n\r\n" + content
        + "\r\n--b--\r\n";
}

} // namespace

class TestForms : public QObject
{
    Q_OBJECT
private Q_SLOTS:
    void partsHaveNames_data();
    void partsHaveNames();
    void addsAFile();
    void replacesNothing();
    void refuses_data();
    void refuses();
};

void TestForms::partsHaveNames_data()
{
    QTest::addColumn<QByteArray>("given");
    QTest::addColumn<QByteArray>("name");
    const auto row = [](const char *title, const QByteArray &given, const QByteArray &name) {
        QTest::newRow(title) << disposition(given) << name;
    };
    row("a name", "a b.txt", "a b.txt");
    row("quotes", "%22a%22", "\"a\"");
    row("folders", "../../x/a", "a");
    row("folders of other systems", "C:\\x\\a", "a");
    row("none", "", "");
    row("the folder above", "..", "");
    row("too long", QByteArray(256, 'a'), "");
    row("one that is kept", hiddenUploadName(), "");
    QTest::newRow("no file") << QByteArray("Content-Disposition: form-data; name=\"x\"")
                             << QByteArray();
}

void TestForms::partsHaveNames()
{
    QFETCH(const QByteArray, given);
    QTEST(partFileName("--b\r\n" + given), "name");
}

void TestForms::addsAFile()
{
    StandardServer server({ { "sub/old", "x" } }, withForms(standard::fileRoutes()));
    const QByteArray page = replyTo(server, "GET", "/sub/").body;
    QVERIFY(page.contains("enctype=\"multipart/form-data\""));
    // Longer than what is read at once, with what looks like an end.
    const QByteArray content = QByteArray(300000, 'x') + "\r\n--" + QByteArray(300000, 'y');
    const RawReply reply = replyTo(server, "POST", "/sub/", formType, form("a.txt", content));
    QCOMPARE(reply.status(), QByteArray("303 See Other"));
    QCOMPARE(reply.header("Location"), QByteArray("/sub/"));
    const Deed deed = server.sink.deeds.value(1);
    QCOMPARE(deed.method + deed.path, QByteArray("PUT/sub/a.txt"));
    QVERIFY(deed.status == 201 && deed.isWhole && !deed.isFolder);
    QCOMPARE(replyTo(server, "GET", "/sub/a.txt").body, content);
}

void TestForms::replacesNothing()
{
    StandardServer server({ { "a.tar.gz", "old" } }, withForms(standard::fileRoutes()));
    QCOMPARE(server.status("POST", "/", formType, form("a.tar.gz", "new")), 303);
    QCOMPARE(replyTo(server, "GET", "/a.tar.gz").body, QByteArray("old"));
    QCOMPARE(replyTo(server, "GET", "/a.tar%20(2).gz").body, QByteArray("new"));
}

void TestForms::refuses_data()
{
    QTest::addColumn<QByteArray>("target");
    QTest::addColumn<QByteArray>("fields");
    QTest::addColumn<QByteArray>("body");
    QTest::addColumn<int>("status");
    const QByteArray type = formType;
    const QByteArray good = form("new", "x");
    const auto row = [](const char *title, const char *target, const QByteArray &fields,
                        const QByteArray &body, int status) {
        QTest::newRow(title) << QByteArray(target) << fields << body << status;
    };
    row("a file as the folder", "/a", type, good, 405);
    row("no such folder", "/no/", type, good, 405);
    row("another form", "/", "Content-Type: application/x-www-form-urlencoded\r\n", "a=b", 415);
    row("no boundary", "/", "Content-Type: multipart/form-data\r\n", good, 415);
    row("no file chosen", "/", type, form("", ""), 400);
    row("cut off", "/", type, good.left(good.size() - 9), 400);
    row("no end of the head", "/", type, QByteArray(20000, 'x'), 400);
    row("the server's own name", "/", type, form(".quillon", "x"), 400);
    row("another site", "/", type + "Sec-Fetch-Site: cross-site\r\n", good, 403);
}

void TestForms::refuses()
{
    QFETCH(const QByteArray, target);
    QFETCH(const QByteArray, fields);
    QFETCH(const QByteArray, body);
    StandardServer server({ { "a", "A" } }, withForms(standard::fileRoutes()));
    QTEST(server.status("POST", target, fields, body), "status");
    server.profile->everyone = Rights(Right::See | Right::Read);
    QCOMPARE(server.status("POST", "/", fields, body), 403);
    QCOMPARE(QDir(server.sharePath()).entryList(QDir::Files), QStringList{ QStringLiteral("a") });
}

QTEST_GUILESS_MAIN(TestForms)
#include "tst_forms.moc"
