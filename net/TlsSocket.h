#pragma once

#include "files/FileDescriptor.h"
#include "net/Socket.h"

#include <QObject>
#include <QSslSocket>

#include <functional>

class Poller;
class QSslConfiguration;

/// What is sent to a peer whose first byte begins no handshake, made of the head that it sends;
/// nothing, or that, and the connection ends.
using PlainAnswer = std::function<QByteArray(const QByteArray &head)>;

/// An encrypted connection, by the toolkit's own class. The only place that needs its TLS library.
class TlsSocket final : public QObject, public Socket
{
    Q_OBJECT
public:
    /// Takes an accepted descriptor and answers the handshake as a server. At most
    /// 64 KiB wait here unread. Both pointers are borrowed and outlive the socket.
    TlsSocket(FileDescriptor accepted, const QSslConfiguration &identity, PlainAnswer answer,
              Poller *engine, TrafficAccount *counter);
    ~TlsSocket() override;

    bool canSend() const override;
    qint64 queued() const override;
    bool isCongested() const override;
    void again() override;
    void endWriting() override { }
    void finish() override;
    void abort() override;

    bool isEncrypted() const override { return socket.isEncrypted(); }
    bool isEstablished() const override { return socket.isEncrypted(); }
    QHostAddress peerAddress() const override { return socket.peerAddress(); }
    QHostAddress localAddress() const override { return socket.localAddress(); }
    quint16 localPort() const override { return socket.localPort(); }

private:
    int descriptor() const override { return int(socket.socketDescriptor()); }
    /// Nothing that comes then is ever taken for a request.
    bool isPlain() const { return socket.mode() == QSslSocket::UnencryptedMode; }
    bool mayReceive() const override
    {
        return ended || (!isPlain() && socket.bytesAvailable() > 0);
    }
    qint64 receive(char *data, qint64 max) override;
    bool send(const QByteArray &bytes, bool more) override;
    qint64 send(int file, qint64 offset, qint64 count) override;
    void arrived();
    void greet();
    void written();
    void countQueued();
    void takeTurn();
    void disconnected();

    Poller *poller;
    PlainAnswer plainAnswer;
    QSslSocket socket;
    qint64 counted = 0; ///< queued bytes that are in the poller's backlog
    bool ended = false; ///< the connection is over; what arrived can still be read
    bool turnAsked = false;
    bool writing = false;
};
