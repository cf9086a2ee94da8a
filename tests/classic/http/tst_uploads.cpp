#include "classic/http/Responder.h"
#include "files/DiskWorker.h"
#include "files/Path.h"
#include "files/Share.h"
#include "files/UploadFile.h"
#include "tests/support/FullDisk.h"
#include "tests/support/LiveServer.h"

#include <QDir>
#include <QFile>
#include <QTest>

namespace {

/// Saves the body of a PUT and answers with the result code.
class SaveBody : public Responder
{
public:
    using Responder::Responder;
    void reply() override
    {
        file = std::make_shared<UploadFile>();
        Place place = exchange.service.share->place(nativePath(request.path));
        QCOMPARE(file->create(std::move(place)), DiskError::None);
        channel.saveBody(file.get(), request.contentLength);
    }
    void uploadEnded(SaveResult result) override
    {
        if (result != Saved)
            file->discard();
        exchange.service.setup.disk->run(
            file, this, [this, result] { sendHeader("200 " + QByteArray::number(result), 0); });
    }

private:
    std::shared_ptr<UploadFile> file;
};

Routes testRoutes()
{
    Routes routes = fileRoutes();
    routes.push_back({ Request::Put, nullptr, makeResponder<SaveBody> });
    return routes;
}

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
    void cleanup();
    void receivesAForm_data();
    void receivesAForm();
    void receivesAFormInAnyPackets_data();
    void receivesAFormInAnyPackets();
    void refusesAForm_data();
    void refusesAForm();
    void takesAFormWhateverTheUrlSays();
    void keepsTheFirstOfTwoUploads();
    void removesWhatALostConnectionCut();
    void waitsAMinuteForTheRest();
    void removesWhatDidNotFitOnTheDisk();
    void removesWhatTheServerCutOff();
    void savesBodiesOneAfterTheOther();

private:
    QByteArray uploaded(const QString &name) const
    {
        return live->fileContent(QLatin1String("uploads/") + name);
    }
    /// Waits until the server has taken in what `client` sent.
    void letArrive(qint64 bytes) const { QTRY_VERIFY(live->server->receivedBytes() >= bytes); }
    QStringList uploads() const
    {
        return QDir(live->sharePath(QStringLiteral("uploads")))
            .entryList(QDir::Files | QDir::Hidden);
    }

    std::unique_ptr<LiveServer> live;
};

void TestUploads::init()
{
    live = std::make_unique<LiveServer>(testRoutes());
    QVERIFY(QDir(live->sharePath()).mkdir(QStringLiteral("uploads")));
    live->start();
}

void TestUploads::cleanup()
{
    live.reset();
}

void TestUploads::receivesAForm_data()
{
    QTest::addColumn<QByteArray>("content");
    QTest::newRow("empty") << QByteArray();
    QTest::newRow("fits into the head buffer") << QByteArray(1000, 'x');
    QTest::newRow("ends where the buffer ends") << QByteArray(1700, 'x');
    QTest::newRow("almost delimiters") << QByteArray("\r\n--\r\n--A\r\n").repeated(500);
    QTest::newRow("megabytes") << QByteArray(5000000, '\r');
}

void TestUploads::receivesAForm()
{
    QFETCH(QByteArray, content);
    RawClient client(live->port());
    client.send(form("C:\\dir\\a.txt", content));
    // A plain upload is not answered, its end closes the connection.
    QCOMPARE(client.readToEnd(), QByteArray());
    QVERIFY(!client.isOpen());
    QCOMPARE(uploaded(QStringLiteral("a.txt")), content);
}

void TestUploads::receivesAFormInAnyPackets_data()
{
    QTest::addColumn<int>("size");
    for (const int size : { 1, 7, 100, 2047, 2048, 2049 })
        QTest::addRow("packets of %d bytes", size) << size;
}

void TestUploads::receivesAFormInAnyPackets()
{
    QFETCH(int, size);
    const QByteArray content = QByteArray("0123456789\r\n--").repeated(size == 1 ? 100 : 2000);
    const QByteArray request = form("a", content);
    RawClient client(live->port());
    for (int i = 0; i < request.size(); i += size) {
        client.send(request.mid(i, size));
        QTest::qWait(0);
    }
    QVERIFY(client.waitForClose());
    QCOMPARE(uploaded(QStringLiteral("a")), content);
}

void TestUploads::refusesAForm_data()
{
    QTest::addColumn<QByteArray>("request");
    const QByteArray type = "Content-Type: multipart/form-data; boundary=B\r\n";
    const auto post = [](const QByteArray &headers, const QByteArray &body) {
        return rawRequest("POST", "/?a=up", headers, body);
    };
    QTest::newRow("no boundary") << post("Content-Type: multipart/form-data\r\n", "--B\r\n\r\n");
    QTest::newRow("no file chosen") << form({}, {});
    QTest::newRow("no part at all") << post(type, "--B--\r\n");
    QTest::newRow("no body") << post(type, {});
    QTest::newRow("a name that climbs") << form("..", "x");
    QTest::newRow("a name with a NUL") << form(QByteArray("a\0b", 3), "x");
    QTest::newRow("a name too long") << form(QByteArray(300, 'n'), "x");
    QTest::newRow("no end in sight")
        << post(type, partHeaders("a") + QByteArray(100000, 'x') + "\r\n--C--");
    QTest::newRow("quotes count as part of the boundary")
        << form("a", "content").replace("boundary=B", "boundary=\"B\"");
    QTest::newRow("endless part headers")
        << post(type, "--B\r\nX: " + QByteArray(9000, 'x') + partHeaders("a") + "x\r\n--B--");
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
    QCOMPARE(uploads(), QStringList());
    QCOMPARE(live->fileContent(QStringLiteral("served")), QByteArray("safe"));
}

void TestUploads::takesAFormWhateverTheUrlSays()
{
    RawClient client(live->port());
    QByteArray request = form("a", "content");
    client.send(request.replace("POST / ", "POST /?a=p&p=1 "));
    QVERIFY(client.waitForClose());
    QCOMPARE(uploaded(QStringLiteral("a")), QByteArray("content"));
}

void TestUploads::keepsTheFirstOfTwoUploads()
{
    const QByteArray first = form("a", QByteArray(10000, '1'));
    RawClient slow(live->port());
    slow.send(first.left(5000));
    letArrive(5000);
    QCOMPARE(uploads(), QStringList()); // nobody sees half a file

    RawClient second(live->port());
    second.send(form("a", "2"));
    QVERIFY(second.waitForClose());
    slow.send(first.mid(5000));
    QVERIFY(slow.waitForClose());
    QCOMPARE(uploaded(QStringLiteral("a")), QByteArray(10000, '1'));
}

void TestUploads::removesWhatALostConnectionCut()
{
    const QByteArray request = form("a", QByteArray(100000, 'x'));
    for (const bool reset : { false, true }) {
        RawClient client(live->port());
        const qint64 had = live->server->receivedBytes();
        client.send(request.left(50000));
        letArrive(had + 50000);
        // What somebody else put there meanwhile is not ours to remove.
        live->addFile(QStringLiteral("uploads/a"), "another's");
        if (reset)
            client.socket->abort();
        else
            client.socket->disconnectFromHost();
        QTRY_COMPARE(live->server->connectionCount(), 0);
        QCOMPARE(uploads(), QStringList{ QStringLiteral("a") });
        QVERIFY(QFile::remove(live->sharePath(QStringLiteral("uploads/a"))));
    }
}

void TestUploads::waitsAMinuteForTheRest()
{
    RawClient client(live->port());
    client.send(form("a", QByteArray(10000, 'x')).left(5000));
    letArrive(5000);
    live->server->checkDeadlines(Face::Clock::now() + std::chrono::seconds(55));
    QVERIFY(!client.waitForClose(50));
    live->server->checkDeadlines(Face::Clock::now() + std::chrono::seconds(61));
    QVERIFY(client.waitForClose());
    // The name is free again.
    RawClient again(live->port());
    again.send(form("a", "again"));
    QVERIFY(again.waitForClose());
    QCOMPARE(uploaded(QStringLiteral("a")), QByteArray("again"));
}

void TestUploads::removesWhatDidNotFitOnTheDisk()
{
    RawClient client(live->port());
    {
        const FullDisk disk(60000);
        client.send(form("a", QByteArray(200000, 'x')));
        QVERIFY(client.waitForClose());
        QCOMPARE(uploads(), QStringList());

        RawClient plain(live->port());
        plain.send(rawRequest("PUT", "/b", {}, QByteArray(200000, 'x')));
        QCOMPARE(plain.reply().status(), QByteArray("200 3"));
        QCOMPARE(plain.exchange(rawRequest("PUT", "/c", {}, "fits")).status(), QByteArray("200 0"));
    }
}

void TestUploads::removesWhatTheServerCutOff()
{
    const QByteArray request = form("a", QByteArray(100000, 'x'));
    RawClient client(live->port());
    client.send(request.left(50000));
    letArrive(50000);
    live->server->stopAll();
    QVERIFY(client.waitForClose());
    QCOMPARE(uploads().size(), 0);

    // So does the traffic limit.
    live->profile->dataLimit = 60;
    live->start();
    RawClient limited(live->port());
    limited.send(request);
    QVERIFY(limited.waitForClose());
    QCOMPARE(uploads().size(), 0);
    QVERIFY(live->server->isBlocked());
}

void TestUploads::savesBodiesOneAfterTheOther()
{
    RawClient client(live->port());
    const QByteArray big = QByteArray("0123456789abcdef").repeated(20000);
    // In one stream, so that each body has to end at its own last byte.
    client.send(rawRequest("PUT", "/1", {}, "one") + rawRequest("PUT", "/2", {}, big)
                + rawRequest("PUT", "/3", "Content-Length: 0\r\n")
                + rawRequest("PUT", "/4", {}, "four") + rawRequest("GET", "/2"));
    for (int i = 1; i <= 4; ++i)
        QCOMPARE(client.reply().status(), QByteArray("200 0"));
    QCOMPARE(client.reply().body, big);
    QCOMPARE(live->fileContent(QStringLiteral("1")), QByteArray("one"));
    QCOMPARE(live->fileContent(QStringLiteral("4")), QByteArray("four"));
    QVERIFY(QFile::exists(live->sharePath(QStringLiteral("3"))));
}

QTEST_GUILESS_MAIN(TestUploads)
#include "tst_uploads.moc"
