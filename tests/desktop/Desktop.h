#pragma once

#include "classic/dav/Routes.h"
#include "classic/http/ClassicFace.h"
#include "desktop/look/Look.h"
#include "desktop/window/AcceptedFolders.h"
#include "desktop/window/AddressHero.h"
#include "desktop/window/AddressList.h"
#include "desktop/window/EventHandler.h"
#include "desktop/window/MainWindow.h"
#include "desktop/window/RowPanel.h"
#include "desktop/window/ServerRow.h"
#include "server/Engine.h"
#include "tests/support/LiveServer.h"

#include <QLabel>
#include <QSettings>
#include <QTcpServer>

#include <functional>
#include <memory>

/// Answers that take files, too.
inline FaceMaker faces()
{
    Routes routes = davRoutes();
    const Routes others = fileRoutes();
    routes.insert(routes.end(), others.begin(), others.end());
    return classicFaces(std::move(routes));
}

/// A home with application settings of its own and a device with loopback addresses.
struct Device
{
    using Prepare = std::function<void(Profile &)>; ///< changes the global profile

    Device(const Prepare &prepare, int count)
    {
        QCoreApplication::setOrganizationName("Tessaroy"_q);
        QCoreApplication::setApplicationName("Quillon"_q);
        QSettings::setPath(QSettings::NativeFormat, QSettings::UserScope, path("settings"));
        for (int i = 1; i <= count; ++i)
            addresses.append("127.0.0.%1"_q.arg(i));
        global()->port = freePort();
        global()->warningMode = Qt::Unchecked;
        acceptFolder(home.path());
        if (prepare)
            prepare(*global());
        global()->save();
    }

    QString path(const QByteArray &name) const
    {
        return home.path() + QLatin1Char('/') + QString::fromUtf8(name);
    }

    void addFile(const QByteArray &name, const QByteArray &content = "x") const
    {
        writeFile(path(name), content);
    }

    AddressSource source() const
    {
        return [this] {
            QList<QNetworkAddressEntry> entries;
            for (const QString &address : addresses) {
                entries.append(QNetworkAddressEntry());
                entries.last().setIp(QHostAddress(address));
            }
            return entries;
        };
    }

    Profile *global() const { return home.profiles->global(); }
    ServerRow *row(int index = 0) const { return rows->at(index); }

    /// Gives the device these addresses.
    void move(const QStringList &now)
    {
        addresses = now;
        keeper->lookForChanges();
    }

    /// Changes the global profile, or another one, as the settings do.
    void edit(const Prepare &change, const Profile *profile = nullptr) const
    {
        const std::unique_ptr<Profile> copy = (profile ? profile : global())->clone();
        change(*copy);
        rows->profileEdited(copy.get());
    }

    TestHome home;
    QStringList addresses; ///< of the device; `lookForChanges` takes changes in
    RowKeeper *keeper = nullptr;
    ServerRows *rows = nullptr;
};

/// `Device::Prepare` for expert mode, on or off.
inline Device::Prepare inExpertMode(bool on = true)
{
    return [on](Profile &global) { global.expertMode = on; };
}

/// The rows without a window.
struct Rows : Device
{
    explicit Rows(const Prepare &prepare = {}, int count = 1)
        : Device(prepare, count)
    {
        open();
    }

    void open()
    {
        owned = std::make_unique<RowKeeper>(home.profiles.get(), engine.setup(), source());
        keeper = owned.get();
        rows = keeper->rows();
    }

    /// The next run, after an orderly end.
    void reopen()
    {
        QVERIFY(keeper->end());
        home.restart();
        open();
    }

    /// Starts the first row, and gives what is said when that can't be.
    QString refusal()
    {
        sink.messages.clear();
        row()->start();
        return row()->isListening() ? QString() : sink.messages.value(0);
    }

    QString shared() const { return row()->server()->shared().filePath(); }

    RecordingSink sink;
    Engine engine{ faces(), home.directories, &sink, nullptr };
    std::unique_ptr<RowKeeper> owned;
};

/// The whole program but its `main`.
struct Desktop : Device
{
    explicit Desktop(const Prepare &prepare = {}, int count = 1)
        : Device(prepare, count)
    {
        open();
    }

    void open(bool rootMode = false)
    {
        makeWindow(rootMode);
        window->show();
        QVERIFY(QTest::qWaitForWindowExposed(window.get()));
    }

    /// Not shown yet.
    void makeWindow(bool rootMode = false)
    {
        window = std::make_unique<MainWindow>(home.profiles.get(), &look, &events, engine.setup(),
                                              rootMode, source());
        keeper = window->keeper();
        rows = window->rows();
    }

    /// Closes the window in order and lets it go; the next run begins.
    void close()
    {
        QVERIFY(window->close());
        window.reset();
        home.restart();
    }

    AddressList *list() const { return window->addressList(); }
    RowPanel *panel() const { return window->rowPanel(); }

    Look look;
    EventHandler events;
    Engine engine{ faces(), home.directories, &events, nullptr };
    std::unique_ptr<MainWindow> window;
};

/// A small web server that stands in for the web services.
struct StandIn : QTcpServer
{
    StandIn()
    {
        connect(this, &QTcpServer::newConnection, this, [this] {
            QTcpSocket *socket = nextPendingConnection();
            connect(socket, &QTcpSocket::readyRead, this, [this, socket] {
                requests.append(socket->readAll());
                socket->write(reply);
                if (reply.isEmpty() && !silent)
                    socket->disconnectFromHost();
            });
        });
        listen(QHostAddress(QHostAddress::LocalHost));
    }

    QString base() const { return "http://127.0.0.1:%1"_q.arg(serverPort()); }

    /// What to send from now on; without it requests find a closed connection.
    void answer(const QByteArray &body, const QByteArray &status = "200 OK",
                const QByteArray &headers = {})
    {
        reply = "HTTP/1.1 " + status + "\r\n" + headers
            + "Content-Length: " + QByteArray::number(body.size()) + "\r\n\r\n" + body;
    }

    QByteArray reply;
    QList<QByteArray> requests; ///< whole heads
    bool silent = false; ///< takes requests and never answers
};
