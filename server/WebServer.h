#pragma once

#include "net/Listener.h"
#include "server/Connections.h"
#include "server/Service.h"
#include "server/TlsIdentity.h"

#include <QNetworkAddressEntry>
#include <QObject>

#include <memory>
#include <optional>
#include <vector>

class Profile;
class Socket;

/// The listening end of one server item: one address and port, one shared file or folder, one
/// profile. Owns its connections. Lives in the event loop; nothing in it blocks.
class WebServer : public QObject
{
    Q_OBJECT
public:
    /// Runs with `profile`, which outlives it, until `setProfile`.
    WebServer(const QNetworkAddressEntry &entry, Profile *profile,
              std::shared_ptr<const ServerSetup> common, QObject *parent = nullptr);

    /// A server of the same address, profile and shared item as `other`.
    explicit WebServer(const WebServer *other, QObject *parent = nullptr);

    ~WebServer() override;

    /// Clears the counters and takes over the profile's values and keys once more.
    /// True when connections will be encrypted.
    bool init();

    /// Listens on the address and `port`; 0 picks a free one, which `port` then holds.
    /// False when that fails; `errorString()` says why. With `opened`, a TCP socket that listens
    /// already, it goes on with that one, whose address and port are the server's then.
    bool start(FileDescriptor opened = {});

    /// Stops listening. Open connections go on.
    void stop();

    /// Stops listening and cuts all connections; partial uploads are removed.
    void stopAll();

    bool isListening() const { return listener.isListening(); }
    QString errorString() const { return listener.errorString(); }

    /// The server runs with `profile` from now on; the profiles' use counts follow.
    void setProfile(Profile *profile);

    /// Takes over the values of `profile`, the server's own or an edited copy of it.
    void profileEdited(const Profile *profile);

    /// Reads the key and certificate once more, for new connections. When they can't be used, those
    /// that were read stay, and the status sink is told why.
    void reloadKeys();

    /// Shares a file or folder; a path that can't be read makes it the home folder. Requests
    /// that are under way are not affected.
    void setShared(const QString &path);

    /// Whether connections are encrypted. False on a TLS profile whose keys can't be used.
    bool isTlsReady() const { return identity.has_value(); }

    Profile *profile() const { return service.profile; }
    const QFileInfo &shared() const { return service.shared; }
    QHostAddress ip() const { return address.ip(); }
    qint64 sentBytes() const { return service.traffic.sent(); }
    qint64 receivedBytes() const { return service.traffic.received(); }
    qint64 dataLimitBytes() const { return service.traffic.limit(); }
    void addSentBytes(qint64 count) { service.traffic.addSent(count); }
    void addReceivedBytes(qint64 count) { service.traffic.addReceived(count); }
    bool isBlocked() const { return service.traffic.isBlocked(); }
    /// Ends what peers have kept waiting for too long. Happens once a second by itself.
    void checkDeadlines(Connection::Clock::time_point now) { connections.checkDeadlines(now); }

    int connectionCount() const { return connections.count(); }

    /// The open connections, in no order.
    std::vector<Visit> visits() const { return connections.visits(); }

    /// Cuts those of them that are meant.
    void disconnect(const Connections::Choice &whom) { connections.dropSome(whom); }

    quint16 port = 0;

Q_SIGNALS:
    /// The traffic limit was reached. Emitted from the event loop, never inside a connection's
    /// own call, so a receiver may stop the server at once.
    void dataLimit(WebServer *server);

private:
    bool listen(FileDescriptor opened);
    void openShare();
    std::shared_ptr<const Share> opened(Share::Links links) const;
    void loadKeys(const Profile *profile);
    void warn(const QString &text) const;
    void accept(FileDescriptor accepted, const QHostAddress &peer, const QHostAddress &reached);
    std::unique_ptr<Socket> makeSocket(FileDescriptor accepted, const QHostAddress &peer,
                                       const QHostAddress &reached);
    void limitReached();

    QNetworkAddressEntry address;
    std::shared_ptr<const ServerSetup> setup;
    Service service;
    std::optional<TlsIdentity> identity;
    Listener listener;
    Connections connections;
    std::vector<FileDescriptor> ignored; ///< accepted while blocked
};
