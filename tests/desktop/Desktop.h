#pragma once

#include "config/Profiles.h"
#include "desktop/window/MainWindow.h"

#include <QList>
#include <QNetworkAddressEntry>
#include <QTcpServer>
#include <QTemporaryDir>

#include <functional>
#include <memory>

/// A home folder, resources and application settings of their own for one test. No profile is
/// loaded yet: that is the window's.
class DesktopHome
{
public:
    DesktopHome();
    ~DesktopHome() { qputenv("HOME", realHome); }

    QString path(const QByteArray &name = {}) const;
    void addFile(const QByteArray &name, const QByteArray &content = "x") const;

private:
    QTemporaryDir dir;
    QByteArray realHome = qgetenv("HOME");

public:
    Directories directories;
};

/// A port that nothing listens on right now.
quint16 freePort();

/// The whole program but its `main`, on loopback addresses.
class Desktop
{
public:
    /// Changes what "Global.conf" says before the window loads it.
    using Prepare = std::function<void(Profile &)>;

    explicit Desktop(const Prepare &prepare = {}, int addresses = 1);

    /// Opens the window anew, as the next run would.
    void open(const char *mode = nullptr);

    /// Closes the window in order and lets it go.
    void close();

    /// Shares the file or folder of this name as if it had been chosen.
    void choose(const QByteArray &name) const { window->fileOrDirSelected(home.path(name)); }

    AddressList *list() const { return window->addressList(); }
    ServerItem *item(int row = 0) const { return list()->getServer(row); }
    QString shared(int row = 0) const;
    QString label() const;
    QString status() const;

    DesktopHome home;
    QStringList addresses; ///< of the device; `lookForChanges` takes changes in
    std::unique_ptr<Profiles> profiles;
    std::unique_ptr<MainWindow> window;
};

/// `Desktop::Prepare` for expert mode, on or off.
Desktop::Prepare inExpertMode(bool on = true);

/// A small web server that stands in for the web services.
class StandIn : public QTcpServer
{
    Q_OBJECT
public:
    StandIn();

    QString base() const { return QStringLiteral("http://127.0.0.1:%1").arg(serverPort()); }

    /// What to send from now on; without it requests find a closed connection.
    void answer(const QByteArray &body, const QByteArray &status = "200 OK",
                const QByteArray &headers = {});

    QList<QByteArray> requests; ///< whole heads
    bool silent = false; ///< takes requests and never answers

private:
    void take(QTcpSocket *socket);

    QByteArray reply;
};
