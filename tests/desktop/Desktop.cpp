#include "tests/desktop/Desktop.h"

#include "desktop/window/EventHandler.h"
#include "desktop/window/ServerItem.h"

#include <QDir>
#include <QLabel>
#include <QSettings>
#include <QTcpSocket>
#include <QTest>

#include <utility>

DesktopHome::DesktopHome()
{
    qputenv("HOME", dir.path().toUtf8());
    QDir().mkpath(path("res/lang/C/help"));
    QDir().mkpath(path("settings"));
    qputenv("QUILLON_RESDIR", path("res").toUtf8());
    QCoreApplication::setOrganizationName(QStringLiteral("Tessaroy"));
    QCoreApplication::setApplicationName(QStringLiteral("Quillon"));
    QSettings::setPath(QSettings::NativeFormat, QSettings::UserScope, path("settings"));
    directories = Directories::ofProcess();
    if (!directories.makeProfileFolder())
        qFatal("no configuration directory");
}

QString DesktopHome::path(const QByteArray &name) const
{
    return name.isEmpty() ? dir.path() : dir.path() + QLatin1Char('/') + QString::fromUtf8(name);
}

void DesktopHome::addFile(const QByteArray &name, const QByteArray &content) const
{
    QDir().mkpath(QFileInfo(path(name)).absolutePath());
    QFile file(path(name));
    QVERIFY(file.open(QIODevice::WriteOnly));
    QCOMPARE(file.write(content), qint64(content.size()));
}

quint16 freePort()
{
    QTcpServer probe;
    return probe.listen(QHostAddress(QHostAddress::LocalHost)) ? probe.serverPort() : quint16(0);
}

Desktop::Desktop(const Prepare &prepare, int count)
{
    for (int i = 1; i <= count; ++i)
        addresses.append(QStringLiteral("127.0.0.%1").arg(i));
    Profile global(home.directories, QStringLiteral("Global.conf"));
    global.port = freePort();
    global.warningMode = Qt::Unchecked;
    if (prepare)
        prepare(global);
    if (!global.save())
        qFatal("no global profile");
    open();
}

void Desktop::open(const char *mode)
{
    const auto source = [this] {
        QList<QNetworkAddressEntry> entries;
        for (const QString &address : std::as_const(addresses)) {
            entries.append(QNetworkAddressEntry());
            entries.last().setIp(QHostAddress(address));
        }
        return entries;
    };
    profiles = std::make_unique<Profiles>(home.directories);
    window = std::make_unique<MainWindow>(profiles.get(), mode, fileRoutes(), source);
    window->show();
    QVERIFY(QTest::qWaitForWindowExposed(window.get()));
}

void Desktop::close()
{
    QVERIFY(window->close());
    window.reset();
    profiles.reset();
}

QString Desktop::shared(int row) const
{
    return item(row)->server()->shared.filePath();
}

QString Desktop::label() const
{
    return list()->statusLabel()->text();
}

QString Desktop::status() const
{
    return EventHandler::statusWidget->text();
}

Desktop::Prepare inExpertMode(bool on)
{
    return [on](Profile &global) { global.expertMode = on; };
}

StandIn::StandIn()
{
    connect(this, &QTcpServer::newConnection, this, [this] {
        QTcpSocket *socket = nextPendingConnection();
        connect(socket, &QTcpSocket::readyRead, this, [this, socket] { take(socket); });
    });
    if (!listen(QHostAddress(QHostAddress::LocalHost)))
        qFatal("no port for the stand-in");
}

void StandIn::answer(const QByteArray &body, const QByteArray &status, const QByteArray &headers)
{
    reply = "HTTP/1.1 " + status + "\r\n" + headers
        + "Content-Length: " + QByteArray::number(body.size()) + "\r\n\r\n" + body;
}

void StandIn::take(QTcpSocket *socket)
{
    requests.append(socket->readAll());
    if (silent)
        return;
    socket->write(reply);
    if (reply.isEmpty())
        socket->disconnectFromHost();
}
