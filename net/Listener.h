#pragma once

#include "files/FileDescriptor.h"
#include "net/Poller.h"

#include <QHostAddress>
#include <QTcpServer>

#include <functional>

/// Listens on one address and port and accepts in batches.
/// Owned by its server, which it tells of every new connection.
class Listener final : private PollTarget
{
public:
    struct Events
    {
        /// A client came; the descriptor does not block. `reached` is the address of ours.
        std::function<void(FileDescriptor accepted, const QHostAddress &peer,
                           const QHostAddress &reached)>
            accepted;
        /// No descriptor is left for the next client: true when some were made free.
        std::function<bool()> crowded;
    };

    /// `watcher` is borrowed and outlives the listener.
    Listener(Poller *watcher, Events listenerEvents);
    ~Listener() override;

    /// Listens on `address`; port 0 takes a free one. False when that fails, see `errorString`.
    bool listen(const QHostAddress &address, quint16 port);

    /// Goes on with `opened`, a TCP socket that listens already. False as for `listen`.
    bool adopt(FileDescriptor opened);

    /// Stops listening; what was accepted goes on.
    void close();

    bool isListening() const { return server.isListening(); }
    QHostAddress address() const { return server.serverAddress(); }
    quint16 port() const { return server.serverPort(); }
    QString errorString() const { return server.errorString(); }

    /// Accepts nobody until `resume`.
    void pause() { paused = true; }

    /// Goes on accepting after a crowd, once descriptors may be free again.
    void resume();

private:
    bool watch();
    void ready(quint32 events) override;
    bool acceptOne();

    QTcpServer server; ///< binds and names errors; it never accepts by itself
    Poller *poller;
    Events events;
    QHostAddress bound; ///< null where it listens on all of ours
    bool paused = false;
};
