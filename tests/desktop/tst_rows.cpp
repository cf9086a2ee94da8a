#include "desktop/window/MainWindow.h"
#include "desktop/window/SavedRows.h"
#include "desktop/window/ServerItem.h"
#include "desktop/window/WebServices.h"
#include "server/Url.h"

#include <QFile>
#include <QTemporaryDir>
#include <QTest>

/// What needs no window: the rows on disk, addresses, and what web services say.
class tst_rows : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void roundTrip();
    void junk_data();
    void junk();
    void keptRows();
    void texts_data();
    void texts();
    void portCheck_data();
    void portCheck();
    void dnsAnswer();
    void serviceUrls();

private:
    static SavedRow row(int port, const QString &addedTo = {});

    const QString first = QStringLiteral("127.0.0.1");
    const QString second = QStringLiteral("127.0.0.2");
    QTemporaryDir dir;
};

SavedRow tst_rows::row(int port, const QString &address)
{
    SavedRow saved;
    saved.port = port;
    saved.file = QStringLiteral("/a/ü b");
    saved.profile = QStringLiteral("work");
    saved.address = address;
    saved.addedPort = !address.isEmpty();
    return saved;
}

void tst_rows::roundTrip()
{
    const QString path = dir.filePath(QStringLiteral("round.ini"));
    {
        SavedRows rows(path);
        row(8080).write(rows.settings(), 0);
        row(8081, first).write(rows.settings(), 1);
        row(8082).write(rows.settings(), 2);
        rows.writeRest(3);
        QVERIFY(rows.flush());
    }
    const QSettings file(path, QSettings::IniFormat);
    QCOMPARE(file.value(QStringLiteral("len")).toInt(), 3);
    QCOMPARE(file.value(QStringLiteral("0/port")).toInt(), 8080);
    QCOMPARE(file.value(QStringLiteral("0/cnf")).toString(), QStringLiteral("work"));
    QVERIFY(!file.contains(QStringLiteral("0/address")));

    SavedRows again(path);
    const SavedRow saved = SavedRow::read(again.settings(), 0);
    QCOMPARE(saved.file, QStringLiteral("/a/ü b"));
    QVERIFY(!saved.addedPort);
    QCOMPARE(again.addedPorts(first), QList<int>{ 1 });
    QCOMPARE(again.indexOf(1), 2); // the second address of the device

    // A row that is an address's own now must not stay an added port in the file.
    row(5).write(again.settings(), 1);
    QVERIFY(again.addedPorts(first).isEmpty());
}

void tst_rows::junk_data()
{
    QTest::addColumn<QByteArray>("content");
    QTest::addColumn<int>("port");
    QTest::addColumn<bool>("damaged");
    QTest::addColumn<int>("added");

    const QByteArray rows = "\n[0]\nport=80\n[7]\nport=81\naddress=127.0.0.1\n";
    QTest::newRow("no file at all") << QByteArray() << 0 << false << 0;
    QTest::newRow("a huge number of rows") << "len=2000000000" + rows << 80 << false << 1;
    QTest::newRow("a negative number of rows") << "len=-5" + rows << 80 << false << 0;
    QTest::newRow("a port that is no number") << QByteArray("[0]\nport=many") << 0 << true << 0;
    QTest::newRow("a port past the last") << QByteArray("[0]\nport=65536") << 0 << true << 0;
    QTest::newRow("an added port that is none")
        << QByteArray("len=9\n[1]\nport=x\naddress=127.0.0.1\n") << 0 << false << 0;
    QTest::newRow("bytes of something else")
        << QByteArray("\0\xff]=[\n\n=\n[[0]\nport\n[1", 21) << 0 << false << 0;
}

void tst_rows::junk()
{
    QFETCH(QByteArray, content);
    const QString path = dir.filePath(QStringLiteral("junk.ini"));
    QFile file(path);
    QVERIFY(file.open(QIODevice::WriteOnly));
    file.write(content);
    file.close();

    SavedRows rows(path);
    const SavedRow saved = SavedRow::read(rows.settings(), 0);
    QTEST(saved.port, "port");
    QTEST(saved.portDamaged, "damaged");
    QTEST(int(rows.addedPorts(first).size()), "added");

    row(8080).write(rows.settings(), 0);
    QVERIFY(rows.flush());
    QCOMPARE(SavedRow::read(SavedRows(path).settings(), 0).port, 8080);
    QFile kept(path + QLatin1String(".bad"));
    QCOMPARE(kept.open(QIODevice::ReadOnly), content.contains('\0'));
    if (kept.isOpen())
        QCOMPARE(kept.readAll(), content);
    kept.remove();
}

void tst_rows::keptRows()
{
    SavedRows rows(dir.filePath(QStringLiteral("kept.ini")));
    rows.keep(row(1, first));
    rows.keep(row(2, second));
    rows.keep(row(3, first));
    const QList<SavedRow> taken = rows.take(first);
    QCOMPARE(taken.size(), 2);
    QCOMPARE(taken.at(1).port, 3);
    QVERIFY(rows.take(first).isEmpty());

    // The rest goes behind the rows that are there.
    rows.writeRest(1);
    QCOMPARE(SavedRow::read(rows.settings(), 1).port, 2);
    QCOMPARE(rows.settings()->value(QStringLiteral("len")).toInt(), 2);
}

void tst_rows::texts_data()
{
    QTest::addColumn<QString>("made");
    QTest::addColumn<QString>("expected");

    const QHostAddress v4(QStringLiteral("192.0.2.1"));
    QTest::newRow("plain on its own port") << shortServerUrl(false, v4, 80) << "http://192.0.2.1";
    QTest::newRow("TLS on its own port") << shortServerUrl(true, v4, 443) << "https://192.0.2.1";
    QTest::newRow("TLS on the plain port")
        << shortServerUrl(true, v4, 80) << "https://192.0.2.1:80";
    QTest::newRow("IPv6 in brackets")
        << shortServerUrl(false, QHostAddress(QStringLiteral("2001:db8::1")), 81)
        << "http://[2001:db8::1]:81";

    const auto label = [](const char *name, int port) {
        return publicAddressLabel(QString::fromLatin1(name), QStringLiteral("192.0.2.7"), port);
    };
    QTest::newRow("port 80 with a name")
        << label("me.example", 80) << "<centcer>Public addresses: me.example , 192.0.2.7</center>";
    QTest::newRow("port 80") << label("", 80) << "<center>Public addresses: 192.0.2.7</center>";
    QTest::newRow("another port") << label("", 81)
                                  << "<center>Public addresses: 192.0.2.7:81</center>";
    QTest::newRow("a name that looks like a placeholder and a tag")
        << label("%1<b>", 81) << "<center>Public addresses: %1&lt;b&gt;:81 , 192.0.2.7:81</center>";

    const auto recent = [](const char *path) { return recentFileLabel(QString::fromLatin1(path)); };
    QTest::newRow("17 characters in full") << recent("/home/user/ab.txt") << "/home/user/ab.txt";
    QTest::newRow("18 characters by the name") << recent("/home/user/abc.txt") << "abc.txt";
    QTest::newRow("a folder with a slash") << recent("/home/user/pictures/") << "pictures";
    QTest::newRow("a name with an ampersand") << recent("/a&b") << "/a&&b";
}

void tst_rows::texts()
{
    QFETCH(QString, made);
    QTEST(made, "expected");
}

void tst_rows::portCheck_data()
{
    QTest::addColumn<QByteArray>("body");
    QTest::addColumn<QString>("result"); ///< empty: not understood

    QTest::newRow("an open port") << QByteArray(
        R"({"status":"success","message":"Port 80 is open on 192.0.2.7."})")
                                  << "open 192.0.2.7";
    QTest::newRow("a closed port")
        << QByteArray(R"({"status":"failure","message":"Port 80 is closed on 192.0.2.7."})")
        << "closed 192.0.2.7";
    QTest::newRow("success too early in the answer")
        << QByteArray(R"(success  {"status":"other","message":"Port 80 is open on 192.0.2.7."})")
        << "closed 192.0.2.7";
    QTest::newRow("something else") << QByteArray("<html>busy</html>") << "";
    QTest::newRow("nothing") << QByteArray() << "";
    QTest::newRow("no address in it") << QByteArray("status") << "closed status";
    QTest::newRow("a quote right at the start of the address")
        << QByteArray(R"({"status":"success","message":"Port 1 is open on "})") << "open ";
}

void tst_rows::portCheck()
{
    QFETCH(QByteArray, body);
    const std::optional<PortCheck> check = parsePortCheck(body);
    QString result;
    if (check)
        result = QLatin1String(check->open ? "open " : "closed ") + check->publicAddress;
    QTEST(result, "result");
}

void tst_rows::dnsAnswer()
{
    const auto updated = [](int position) {
        return isDnsUpdated(QByteArray(position, '.') + "has been updated" + QByteArray(300, '.'));
    };
    QVERIFY(!updated(119)); // only in the head of the page
    QVERIFY(updated(120));
    QVERIFY(updated(4000));
}

void tst_rows::serviceUrls()
{
    const QString path = QStringLiteral("/tools/open-ports/check.php?portNumber=80");
    QCOMPARE(portCheckUrl(QStringLiteral("check.example"), 80),
             QUrl(QStringLiteral("https://check.example") + path));
    QCOMPARE(portCheckUrl(QStringLiteral("http://check.example:81/a/"), 80),
             QUrl(QStringLiteral("http://check.example:81/a") + path));
    QVERIFY(isPortCheck(portCheckUrl(QStringLiteral("check.example"), 80)));

    const QUrl dns = dynamicDnsUrl(QStringLiteral("http://dns.example"), QStringLiteral("me"),
                                   QStringLiteral("a#b+&x=1"));
    QVERIFY(isDynamicDns(dns));
    QCOMPARE(dns.toEncoded(),
             QByteArray("http://dns.example/cgi-bin/dynip.cgi?username=me&password=a%23b+&x=1"));
}

QTEST_GUILESS_MAIN(tst_rows)
#include "tst_rows.moc"
