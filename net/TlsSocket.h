#pragma once

#include "files/FileDescriptor.h"
#include "net/Socket.h"

#include <QObject>
#include <QSslSocket>

class QSslConfiguration;

/// An encrypted connection, by the toolkit's own class. The only place that needs its TLS library.
class TlsSocket final : public QObject, public Socket
{
    Q_OBJECT
public:
    /// Takes an accepted descriptor and begins the handshake as a server. At most
    /// 64 KiB wait here unread. `counter` is borrowed and outlives the socket.
    TlsSocket(FileDescriptor accepted, const QSslConfiguration &identity, TrafficAccount *counter);
    ~TlsSocket() override;

    bool mayRead() const override { return ended || socket.bytesAvailable() > 0; }
    bool canSend() const override;
    qint64 queued() const override;
    bool isCongested() const override;
    void again() override;
    void endWriting() override { }
    void finish() override;
    void abort() override;

    bool isEncrypted() const override { return socket.isEncrypted(); }
    QHostAddress peerAddress() const override { return socket.peerAddress(); }
    QHostAddress localAddress() const override { return socket.localAddress(); }
    quint16 localPort() const override { return socket.localPort(); }

private:
    qint64 receive(char *data, qint64 max) override;
    bool send(const QByteArray &bytes, bool more) override;
    qint64 send(int file, qint64 offset, qint64 count) override;
    void written();
    void takeTurn();
    void disconnected();

    QSslSocket socket;
    bool ended = false; ///< the connection is over; what arrived can still be read
    bool turnAsked = false;
    bool writing = false;
};
