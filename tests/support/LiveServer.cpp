#include "tests/support/LiveServer.h"

#include "classic/http/ClassicFace.h"
#include "server/FaceChoice.h"

#include <QCoreApplication>
#include <QElapsedTimer>
#include <QEventLoop>
#include <QSslSocket>
#include <QTcpServer>
#include <QTimer>

#include <utility>

namespace {

std::unique_ptr<Face> refusedFace(Connection & /*connection*/)
{
    qFatal("a stranger gets the standard face");
    return nullptr;
}

} // namespace

TestHome::TestHome()
    : realHome(qgetenv("HOME"))
{
    qputenv("HOME", dir.path().toUtf8());
    qunsetenv("XDG_STATE_HOME");
    qunsetenv("XDG_CACHE_HOME");
    const QString resources = dir.path() + QLatin1String("/res");
    QDir().mkpath(resources + QLatin1String("/img"));
    QDir().mkpath(resources + QLatin1String("/lang/C"));
    qputenv("QUILLON_RESDIR", resources.toUtf8());
    directories = Directories::ofProcess();
    if (!directories.makeProfileFolder())
        qFatal("no folder for profiles");
    begin();
}

TestHome::~TestHome()
{
    qputenv("HOME", realHome);
}

void TestHome::restart()
{
    profiles->endInOrder();
    profiles.reset(); // one process holds one mark
    begin();
}

void TestHome::begin()
{
    profiles = std::make_unique<Profiles>(directories);
    profiles->beginRun();
}

QByteArray TestHome::profileBytes(const QString &fileName) const
{
    return readFile(directories.profiles + fileName);
}

void TestHome::writeProfile(const QString &fileName, const QByteArray &bytes) const
{
    writeFile(directories.profiles + fileName, bytes);
}

void TestHome::storeProfile(const QString &name, const std::function<void(Profile &)> &change) const
{
    Profile profile(directories);
    profile.setFileName(name);
    profile.name = name;
    if (change)
        change(profile);
    QVERIFY(profile.save());
}

LiveServer::LiveServer(Routes routes, const QString &previewProgram)
    : LiveServer(chosenFaces(classicFaces(std::move(routes)), refusedFace), previewProgram)
{
    if (qgetenv("QUILLON_TEST_MODE") == "classic")
        profile->faceMode = FaceClassic;
}

LiveServer::LiveServer(FaceMaker faces, const QString &previewProgram)
    : profile(home.profiles->global())
    , previews(previewProgram.isEmpty()
                   ? nullptr
                   : std::make_unique<Previews>(previewProgram,
                                                home.path() + QLatin1String("/.thumbnails")))
    , engine(std::move(faces), home.directories, &sink, previews.get())
{
    QNetworkAddressEntry loopback;
    loopback.setIp(QHostAddress(QHostAddress::LocalHost));
    server = std::make_unique<WebServer>(loopback, profile, engine.setup());
    server->setShared(share.path());
}

void LiveServer::start()
{
    server->init();
    server->port = 0;
    QVERIFY2(server->start(), qPrintable(server->errorString()));
}

QString LiveServer::sharePath(const QString &name) const
{
    return name.isEmpty() ? share.path() : share.path() + QLatin1Char('/') + name;
}

void LiveServer::addFile(const QString &name, const QByteArray &content) const
{
    writeFile(sharePath(name), content);
}

QByteArray LiveServer::fileContent(const QString &name) const
{
    return readFile(sharePath(name));
}

QByteArray RawReply::status() const
{
    const int blank = int(head.indexOf(' '));
    return head.mid(blank + 1, head.indexOf('\r') - blank - 1);
}

QByteArray RawReply::header(const QByteArray &name) const
{
    const int start = int(head.indexOf("\r\n" + name + ": "));
    if (start < 0)
        return {};
    const int value = start + int(name.size()) + 4;
    const int end = int(head.indexOf("\r\n", value));
    return head.mid(value, end < 0 ? -1 : end - value);
}

RawClient::RawClient(quint16 port, std::unique_ptr<QTcpSocket> given)
    : socket(given ? std::move(given) : std::make_unique<QTcpSocket>())
{
    socket->connectToHost(QHostAddress(QHostAddress::LocalHost), port);
    waitUntil([this] { return isOpen(); });
}

RawClient::RawClient(quint16 port, const QHostAddress &from)
    : socket(std::make_unique<QTcpSocket>())
{
    socket->bind(from);
    socket->connectToHost(QHostAddress(QHostAddress::LocalHost), port);
    waitUntil([this] { return isOpen(); });
}

void RawClient::send(const QByteArray &bytes)
{
    socket->write(bytes);
    socket->flush();
}

RawReply RawClient::reply()
{
    RawReply reply;
    if (!waitUntil([this] { return received.contains("\r\n\r\n"); }))
        return reply;

    const int end = int(received.indexOf("\r\n\r\n"));
    reply.head = received.left(end);
    const int length = reply.header("Content-Length").toInt();
    waitUntil([this, end, length] { return received.size() >= end + 4 + length; });
    reply.body = received.mid(end + 4, length);
    received.remove(0, end + 4 + length);
    return reply;
}

RawReply RawClient::exchange(const QByteArray &request)
{
    send(request);
    return reply();
}

QByteArray RawClient::readToEnd()
{
    waitForClose();
    takeArrived();
    return std::exchange(received, {});
}

bool RawClient::waitForClose(int msecs)
{
    waitUntil([this] { return socket->state() == QAbstractSocket::UnconnectedState; }, msecs);
    return socket->state() == QAbstractSocket::UnconnectedState;
}

bool RawClient::waitUntil(const std::function<bool()> &condition, int msecs)
{
    QElapsedTimer clock;
    clock.start();
    for (;;) {
        takeArrived();
        if (condition())
            return true;
        const bool closed = socket->state() == QAbstractSocket::UnconnectedState;
        if (closed || clock.hasExpired(msecs))
            return false;
        QEventLoop loop;
        QObject::connect(socket.get(), &QIODevice::readyRead, &loop, &QEventLoop::quit);
        QObject::connect(socket.get(), &QAbstractSocket::stateChanged, &loop, &QEventLoop::quit);
        QTimer::singleShot(5, &loop, &QEventLoop::quit);
        loop.exec();
    }
}

void RawClient::takeArrived()
{
    received += socket->readAll();
}

std::unique_ptr<QTcpSocket> tlsSocket()
{
    auto socket = std::make_unique<QSslSocket>();
    socket->setPeerVerifyMode(QSslSocket::VerifyNone);
    QSslSocket *tls = socket.get();
    QObject::connect(tls, &QAbstractSocket::connected, tls, &QSslSocket::startClientEncryption);
    return socket;
}

QByteArray rawRequest(const QByteArray &method, const QByteArray &target, const QByteArray &headers,
                      const QByteArray &body)
{
    QByteArray request = method + ' ' + target + " HTTP/1.1\r\nHost: localhost\r\n" + headers;
    if (!body.isEmpty())
        request += "Content-Length: " + QByteArray::number(body.size()) + "\r\n";
    return request + "\r\n" + body;
}

quint16 freePort()
{
    // Below those the kernel hands out: one of them is somebody's before it is listened on.
    constexpr int first = 15000, count = 15000;
    static int next = int(QCoreApplication::applicationPid() % 997) * 15; // tests run side by side
    for (int tries = 0; tries < count; ++tries) {
        const auto port = quint16(first + next++ % count);
        QTcpServer probe;
        if (probe.listen(QHostAddress(QHostAddress::LocalHost), port))
            return port;
    }
    return 0;
}
