#include "standard/web/Routes.h"
#include "tests/files/Pictures.h"
#include "tests/standard/StandardTest.h"

#include <QColor>

namespace standard {

class TestPictureReplies : public QObject
{
    Q_OBJECT
private Q_SLOTS:
    void preview();
    void transparentOnesStaySo();
    void refusals();
    void whoLeavesGivesWay();

private:
    static std::unique_ptr<LiveServer>
    newServer(const QString &program = QLatin1String(QUILLON_PREVIEW))
    {
        auto server =
            std::make_unique<LiveServer>(standardFaces(withPreviews(fileRoutes())), program);
        server->start();
        server->addFile(QStringLiteral("a.jpg"),
                        withOrientation(encoded(noise(400, 300), "JPEG"), 6));
        return server;
    }
};

void TestPictureReplies::preview()
{
    const auto server = newServer();
    const RawReply first = replyTo(*server, "GET", "/a.jpg?preview=160");
    QCOMPARE(first.status(), QByteArray("200 OK"));
    QCOMPARE(QImage::fromData(first.body).size(), QSize(120, 160));
    QCOMPARE(first.header("Content-Type"), QByteArray("image/jpeg"));
    QCOMPARE(first.header("Cache-Control"), QByteArray("private, no-cache"));
    const RawReply head = replyTo(*server, "HEAD", "/a.jpg?preview=160");
    QCOMPARE(head.header("Content-Length").toInt(), first.body.size());

    const QByteArray seen = "If-None-Match: " + first.header("ETag") + "\r\n";
    const RawReply same = replyTo(*server, "GET", "/a.jpg?preview=160", seen);
    QCOMPARE(same.status(), QByteArray("304 Not Modified"));
    for (const char *field : { "ETag", "Last-Modified", "Cache-Control" })
        QCOMPARE(same.header(field), first.header(field));
    for (const char *other : { "/a.jpg", "/a.jpg?preview=320" })
        QVERIFY(replyTo(*server, "GET", other, seen).status().startsWith("200"));
    server->addFile(QStringLiteral("a.jpg"), encoded(noise(40, 30), "JPEG"));
    const RawReply replaced = replyTo(*server, "GET", "/a.jpg?preview=160", seen);
    QCOMPARE(QImage::fromData(replaced.body).size(), QSize(40, 30));
    QVERIFY(replyTo(*server, "OPTIONS", "/a.jpg")
                .header("Allow")
                .startsWith("OPTIONS, GET, HEAD, PUT"));
}

void TestPictureReplies::transparentOnesStaySo()
{
    const auto server = newServer();
    QImage picture(400, 300, QImage::Format_ARGB32);
    for (const int alpha : { 128, 255 }) {
        picture.fill(QColor(1, 2, 3, alpha));
        server->addFile(QStringLiteral("a.png"), encoded(picture, "PNG"));
        QCOMPARE(replyTo(*server, "GET", "/a.png?preview=320").header("Content-Type"),
                 QByteArray(alpha == 128 ? "image/png" : "image/jpeg"));
    }
}

void TestPictureReplies::refusals()
{
    const auto server = newServer();
    server->addFile(QStringLiteral("broken.jpg"), "\xff\xd8\xff");
    const auto status = [&server](const QByteArray &target) {
        return replyTo(*server, "GET", target).status().left(3);
    };
    for (const char *size : { "", "0", "161", "0160" })
        QCOMPARE(status("/a.jpg?preview=" + QByteArray(size)), QByteArray("400"));
    for (const char *name : { "broken.jpg", "missing.jpg", "", "a.jpg/" })
        QCOMPARE(status(QByteArray("/") + name + "?preview=160"), QByteArray("404"));
}

void TestPictureReplies::whoLeavesGivesWay()
{
    const QTemporaryDir dir;
    const QString program = dir.filePath(QStringLiteral("program"));
    const QString runs = dir.filePath(QStringLiteral("runs"));
    writeFile(program,
              "#!/bin/sh\necho >>" + QFile::encodeName(runs)
                  + "\n[ $1 = 160 ] && exec sleep 1000\ncat\n");
    QVERIFY(QFile::setPermissions(program, QFile::ReadOwner | QFile::ExeOwner));
    const auto server = newServer(program);
    for (const bool atOnce : { false, true }) {
        RawClient client(server->port());
        client.send(rawRequest("GET", "/a.jpg?preview=160"));
        if (!atOnce)
            QTRY_VERIFY(!readFile(runs).isEmpty());
        client.socket->disconnectFromHost();
        const RawReply next = replyTo(*server, "GET", "/a.jpg?preview=320");
        QCOMPARE(next.body, server->fileContent(QStringLiteral("a.jpg")));
        server->addFile(QStringLiteral("a.jpg"), "other");
    }
}

} // namespace standard

QTEST_GUILESS_MAIN(standard::TestPictureReplies)
#include "tst_picture_replies.moc"
