#pragma once

#include "config/Directories.h"
#include "server/Channel.h"
#include "server/Routes.h"
#include "server/SessionTable.h"

#include <QFileInfo>
#include <QList>
#include <QNetworkAddressEntry>
#include <QSslCertificate>
#include <QSslKey>
#include <QTcpServer>

#include <memory>

class Profile;
class Connection;
class StatusSink;

/// What all servers of a program have in common. The sink outlives them.
struct ServerSetup
{
    Routes rows;
    StatusSink *sink = nullptr;
    Directories directories;
};

/// The listening end of one server item: one address and port, one shared file or folder, one
/// profile. Owns its connections. Lives in the event loop; nothing in it blocks.
class WebServer : public QTcpServer
{
    Q_OBJECT
public:
    /// `profile` outlives the server.
    WebServer(const QNetworkAddressEntry &entry, Profile *profile,
              std::shared_ptr<const ServerSetup> common, QObject *parent = nullptr);

    /// A server of the same address, profile and shared item as `other`.
    explicit WebServer(const WebServer *other, QObject *parent = nullptr);

    ~WebServer() override;

    /// Clears the counters and takes over the profile's values and keys once more.
    /// True when connections will be encrypted.
    bool init();

    /// Listens on the address and `port`; 0 picks a free one, which `port` then holds.
    /// False when that fails; `errorString()` says why.
    bool start();

    /// Stops listening. Open connections go on.
    void stop();

    /// Stops listening and cuts all connections; partial uploads are removed.
    void stopAll();

    /// Reads key and certificate of `profile`. True when both can be used together; otherwise
    /// the status sink is told what is wrong.
    bool loadKeys(const Profile *profile);

    /// The server runs with `profile` from now on; the profiles' use counts follow.
    void setProfile(Profile *profile);

    /// Takes over the values of `profile`, the server's own or an edited copy of it.
    void profileEdited(const Profile *profile);

    /// Shares a file or folder; a path that can't be read makes it the home folder. Requests
    /// that are under way are not affected.
    void setShared(const QString &path);

    /// Whether connections are encrypted. False on a TLS profile whose keys can't be used.
    bool isTlsReady() const { return privateKey && certificate; }

    QHostAddress ip() const { return address.ip(); }
    qint64 sentBytes() const { return traffic.sentBytes; }
    qint64 receivedBytes() const { return traffic.receivedBytes; }
    void addReceivedBytes(qint64 count) { traffic.receivedBytes += count; }
    qint64 dataLimitBytes() const { return traffic.dataLimit; }
    bool isBlocked() const { return traffic.blocked; }
    int connectionCount() const { return int(connections.size()); }

    QList<Connection *> connections; ///< the live connections; each removes itself
    bool singleFile = false;
    QFileInfo shared;
    Profile *config = nullptr;
    quint16 port = 0;

Q_SIGNALS:
    /// The traffic limit was reached. Emitted from the event loop, never inside a connection's
    /// own call, so a receiver may stop the server at once.
    void dataLimit(WebServer *server);

protected:
    void incomingConnection(qintptr descriptor) override;

private Q_SLOTS:
    void limitReached();

private:
    void dropKeys();
    void warn(const QString &text) const;
    void closeIgnored();
    void startEncryption(QSslSocket &socket) const;

    QNetworkAddressEntry address;
    std::shared_ptr<const ServerSetup> setup;
    Channel::Traffic traffic;
    std::unique_ptr<QSslKey> privateKey;
    std::unique_ptr<QSslCertificate> certificate;
    SessionTable clients;
    QList<qintptr> ignored; ///< descriptors accepted while blocked
};
