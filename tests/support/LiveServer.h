#pragma once

#include "classic/http/Routes.h"
#include "config/Profiles.h"
#include "files/Previews.h"
#include "server/Activity.h"
#include "server/Engine.h"
#include "server/StatusSink.h"
#include "server/WebServer.h"
#include "tests/support/Files.h"

#include <QByteArray>
#include <QList>
#include <QStringList>
#include <QTcpSocket>
#include <QTemporaryDir>

#include <functional>
#include <memory>

/// A home folder, resources and profiles of their own for one test; the real home stays untouched.
class TestHome
{
public:
    TestHome();
    ~TestHome();

    QString path() const { return dir.path(); }

    /// Begins a run, and ends one in order before it begins the next.
    void begin();
    void restart();

    /// The bytes of a file in the folder of the profiles, and what it is made to hold.
    QByteArray profileBytes(const QString &fileName) const;
    void writeProfile(const QString &fileName, const QByteArray &bytes) const;

    /// Saves another profile, of the defaults and what `change` makes of them.
    void storeProfile(const QString &name, const std::function<void(Profile &)> &change = {}) const;

private:
    QTemporaryDir dir;
    QByteArray realHome;

public:
    Directories directories;
    std::unique_ptr<Profiles> profiles;
};

/// Remembers what the server core reports.
class RecordingSink : public StatusSink
{
public:
    void newConnection(const QString &peer) override { peers.append(peer); }
    void msg(const QString &title, const QString &text) override
    {
        messages.append(title + QLatin1Char('\n') + text);
    }

    bool listens() const override { return true; }
    void told(const Deed &deed) override { deeds.append(deed); }

    QStringList peers;
    QStringList messages;
    QList<Deed> deeds;
};

/// A real server on a free loopback port that shares a fresh folder under its own profile.
class LiveServer
{
public:
    /// With the classic face, by the choice for strangers; with QUILLON_TEST_MODE=classic in the
    /// environment, by its mode. `previewProgram` makes previews; none are made without.
    explicit LiveServer(Routes routes = fileRoutes(), const QString &previewProgram = {});

    /// With another face.
    explicit LiveServer(FaceMaker faces, const QString &previewProgram = {});

    /// Starts to listen; fails the test when that is not possible.
    void start();

    quint16 port() const { return server->port; }
    QString sharePath(const QString &name = {}) const;
    void addFile(const QString &name, const QByteArray &content) const;
    QByteArray fileContent(const QString &name) const;

    TestHome home;
    QTemporaryDir share;
    RecordingSink sink;
    Profile *profile; ///< the global profile of this test
    std::unique_ptr<Previews> previews;
    Engine engine;
    std::unique_ptr<WebServer> server;
};

/// One reply, taken apart.
struct RawReply
{
    QByteArray head; ///< without its blank line
    QByteArray body;

    /// "200 OK"
    QByteArray status() const;
    /// The value of the first header of this name, byte for byte.
    QByteArray header(const QByteArray &name) const;
};

/// A client that speaks bytes. It shares the event loop with the server under test, so it waits by
/// running that loop.
class RawClient
{
public:
    /// `socket` may be a QSslSocket; a plain one is made when there is none.
    explicit RawClient(quint16 port, std::unique_ptr<QTcpSocket> socket = nullptr);

    /// A plain one that comes from another address of this machine.
    RawClient(quint16 port, const QHostAddress &from);

    void send(const QByteArray &bytes);

    /// One reply by its Content-Length; an empty one when the connection closes first. Bytes that
    /// follow stay for the next call.
    RawReply reply();

    /// Sends a request and takes its reply.
    RawReply exchange(const QByteArray &request);

    /// Everything until the server closes.
    QByteArray readToEnd();

    bool waitForClose(int msecs = 5000);
    bool isOpen() const { return socket->state() == QAbstractSocket::ConnectedState; }
    bool waitUntil(const std::function<bool()> &condition, int msecs = 5000);

    std::unique_ptr<QTcpSocket> socket;

private:
    void takeArrived();

    QByteArray received;
};

/// For a `RawClient` of a server with TLS.
std::unique_ptr<QTcpSocket> tlsSocket();

/// "METHOD target HTTP/1.1", a Host line, `headers` (each ended by CR LF), the blank line, `body`.
/// A body brings its Content-Length along.
QByteArray rawRequest(const QByteArray &method, const QByteArray &target,
                      const QByteArray &headers = {}, const QByteArray &body = {});

/// A header line; none for an empty value.
inline QByteArray destination(const QByteArray &value)
{
    return value.isEmpty() ? QByteArray() : "Destination: " + value + "\r\n";
}

/// A port that nothing listens on right now; 0 when there is none.
quint16 freePort();
