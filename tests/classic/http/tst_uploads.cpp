#include "tests/support/Data.h"
#include "tests/support/LiveServer.h"

namespace {

QByteArray partHeaders(const QByteArray &fileName)
{
    return "--B\r\nContent-Disposition: form-data; name=\"f\"; filename=\"" + fileName
        + "\"\r\nContent-Type: application/octet-stream\r\n\r\n";
}

QByteArray form(const QByteArray &fileName, const QByteArray &content)
{
    return rawRequest("POST", "/", "Content-Type: multipart/form-data; boundary=B\r\n",
                      partHeaders(fileName) + content + "\r\n--B--\r\n");
}

} // namespace

/// Request bodies on their way into files.
class TestUploads : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup() { live.reset(); }
    void receivesAForm_data();
    void receivesAForm();
    void refusesAForm_data();
    void refusesAForm();
    void removesWhatALostConnectionCut();

private:
    QString uploads() const { return namesIn(live->sharePath(QStringLiteral("uploads"))); }

    std::unique_ptr<LiveServer> live;
};

void TestUploads::init()
{
    live = std::make_unique<LiveServer>();
    QVERIFY(QDir(live->sharePath()).mkdir(QStringLiteral("uploads")));
    live->start();
}

void TestUploads::receivesAForm_data()
{
    // `fileName` is the name as the client tells it
    columnsOf<QByteArray, QString, QByteArray, int>("fileName", "name", "content", "packet");

    const auto named = [](const char *row, const char *fileName, const char *name) {
        QTest::newRow(row) << QByteArray(fileName) << QString::fromUtf8(name) << QByteArray("x")
                           << 2048;
    };
    named("a client's path", R"(C:\dir\a.txt)", "a.txt");
    named("a path with slashes", R"(/x/y\z.txt)", R"(y\z.txt)");
    named("UTF-8", "\xc3\xa4.txt", "\xc3\xa4.txt");
    named("Latin-1", "\xe4.txt", "\xc3\xa4.txt");

    const auto sized = [](const char *row, const QByteArray &content, int packet = 1 << 30) {
        QTest::addRow("%s, packets of %d bytes", row, packet)
            << QByteArray("a") << QStringLiteral("a") << content << packet;
    };
    const int around = int(form("a", QByteArray(1000, 'x')).size()) - 1000;
    sized("empty", {});
    sized("fits into the head buffer", QByteArray(1000, 'x'));
    sized("ends where the buffer ends", QByteArray(2048 - around, 'x'));
    sized("megabytes", QByteArray(5000000, '\r'));
    const QByteArray almostDelimiters("0123456789\r\n--\r\n--A");
    sized("short", almostDelimiters.repeated(100), 1);
    for (const int packet : { 7, 100, 2047, 2048, 2049 })
        sized("long", almostDelimiters.repeated(2000), packet);
}

void TestUploads::receivesAForm()
{
    QFETCH(QByteArray, fileName);
    QFETCH(QByteArray, content);
    QFETCH(int, packet);
    const QByteArray request = form(fileName, content);
    RawClient client(live->port());
    for (int i = 0; i < request.size(); i += packet) {
        client.send(request.mid(i, packet));
        QTest::qWait(0);
    }
    // A plain upload is not answered, its end closes the connection.
    QCOMPARE(client.readToEnd(), QByteArray());
    QVERIFY(!client.isOpen());
    QFETCH(QString, name);
    QCOMPARE(live->fileContent(QLatin1String("uploads/") + name), content);
}

void TestUploads::refusesAForm_data()
{
    columns<QByteArray>({ "request" });
    const QByteArray type = "Content-Type: multipart/form-data; boundary=B\r\n";
    const auto post = [](const QByteArray &headers, const QByteArray &body) {
        return rawRequest("POST", "/?a=up", headers, body);
    };
    row("no boundary", post("Content-Type: multipart/form-data\r\n", "--B\r\n\r\n"));
    row("no file field", form("a", "x").replace(" filename=", " filesize="));
    row("no closing quote", form("a", "x").replace("\"a\"", "\"a'"));
    row("a name too long", form(QByteArray(300, 'n'), "x"));
    row("no end in sight", post(type, partHeaders("a") + QByteArray(100000, 'x') + "\r\n--C--"));
    row("quotes count as part of the boundary",
        form("a", "content").replace("boundary=B", "boundary=\"B\""));
    row("endless part headers",
        post(type, "--B\r\nX: " + QByteArray(9000, 'x') + partHeaders("a") + "x\r\n--B--"));
}

void TestUploads::refusesAForm()
{
    live->addFile(QStringLiteral("served"), "safe");
    QFETCH(QByteArray, request);
    RawClient client(live->port());
    // The same responder has just served a file: that one must not be taken for the upload.
    QCOMPARE(client.exchange(rawRequest("GET", "/served")).body, QByteArray("safe"));
    client.send(request);
    QVERIFY(client.waitForClose());
    QCOMPARE(uploads(), QString());
    QCOMPARE(live->fileContent(QStringLiteral("served")), QByteArray("safe"));
}

void TestUploads::removesWhatALostConnectionCut()
{
    const QByteArray request = form("a", QByteArray(100000, 'x'));
    for (const bool reset : { false, true }) {
        RawClient client(live->port());
        const qint64 had = live->server->receivedBytes();
        client.send(request.left(50000));
        QTRY_VERIFY(live->server->receivedBytes() >= had + 50000);
        RawClient second(live->port()); // the name is taken, and nobody sees half a file
        second.send(form("a", "2"));
        QVERIFY(second.waitForClose());
        QCOMPARE(uploads(), QString());
        if (reset)
            client.socket->abort();
        else
            client.socket->disconnectFromHost();
        QTRY_COMPARE(live->server->connectionCount(), 0);
        QCOMPARE(uploads(), QString());
    }
}

QTEST_GUILESS_MAIN(TestUploads)
#include "tst_uploads.moc"
