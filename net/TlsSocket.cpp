#include "net/TlsSocket.h"

#include "net/Poller.h"

#include <QScopedValueRollback>
#include <QSslConfiguration>

#include <algorithm>
#include <array>

#include <unistd.h>

namespace {

constexpr qint64 readBufferSize = qint64(64) * 1024;
constexpr char handshakeRecord = 22; ///< RFC 8446, section 5.1
constexpr qint64 maxPlainHead = 4096; ///< bytes
constexpr qint64 pieceSize = qint64(128) * 1024; ///< many records for one call and one wake-up

} // namespace

TlsSocket::TlsSocket(FileDescriptor accepted, const QSslConfiguration &identity, PlainAnswer answer,
                     Poller *engine, TrafficAccount *counter)
    : Socket(counter)
    , poller(engine)
    , plainAnswer(std::move(answer))
{
    connect(&socket, &QIODevice::readyRead, this, &TlsSocket::arrived);
    connect(&socket, &QIODevice::bytesWritten, this, &TlsSocket::written);
    connect(&socket, &QSslSocket::encryptedBytesWritten, this, &TlsSocket::written);
    // Queued: a failing write must not end the connection inside its user's call.
    connect(&socket, &QAbstractSocket::disconnected, this, &TlsSocket::disconnected,
            Qt::QueuedConnection);
    if (!socket.setSocketDescriptor(accepted.get())) {
        QMetaObject::invokeMethod(this, &TlsSocket::disconnected, Qt::QueuedConnection);
        return;
    }
    accepted.release();
    socket.setSocketOption(QAbstractSocket::LowDelayOption, 1);
    socket.setReadBufferSize(readBufferSize);
    socket.setSslConfiguration(identity);
}

TlsSocket::~TlsSocket()
{
    QObject::disconnect(&socket, nullptr, this, nullptr);
    poller->addBacklog(-counted);
}

qint64 TlsSocket::receive(char *data, qint64 max)
{
    const qint64 size = isPlain() ? 0 : socket.read(data, max);
    return size <= 0 && ended ? -1 : size;
}

bool TlsSocket::send(const QByteArray &bytes, bool more)
{
    if (!canSend())
        return false;
    const QScopedValueRollback<bool> guard(writing, true);
    socket.write(bytes);
    if (!more)
        socket.flush();
    countQueued();
    return true;
}

qint64 TlsSocket::send(int file, qint64 offset, qint64 count)
{
    if (!canSend())
        return -1;
    if (isCongested())
        return 0;
    const QScopedValueRollback<bool> guard(writing, true);
    std::array<char, pieceSize> piece;
    const ssize_t size =
        ::pread(file, piece.data(), size_t(std::min<qint64>(count, pieceSize)), offset);
    if (size <= 0 || socket.write(piece.data(), size) != size)
        return -1;
    socket.flush();
    countQueued();
    return size;
}

bool TlsSocket::canSend() const
{
    return socket.state() == QAbstractSocket::ConnectedState;
}

qint64 TlsSocket::queued() const
{
    return std::max(socket.bytesToWrite(), socket.encryptedBytesToWrite());
}

bool TlsSocket::isCongested() const
{
    return poller->isCrowded(queued());
}

/// What waits here counts with what waits in all other sockets.
void TlsSocket::countQueued()
{
    const qint64 now = queued();
    poller->addBacklog(now - counted);
    counted = now;
}

/// A write may decrypt what has arrived meanwhile: that is told once the writer is done.
void TlsSocket::arrived()
{
    if (isPlain())
        greet();
    else if (writing)
        again();
    else
        user->readable();
}

/// Somebody typed "http:" before the address of a server that encrypts.
void TlsSocket::greet()
{
    char first = 0;
    if (ended || socket.peek(&first, 1) != 1)
        return;
    if (first == handshakeRecord)
        return socket.startServerEncryption();
    const QByteArray head = socket.peek(maxPlainHead);
    if (!head.contains("\r\n\r\n") && head.size() < maxPlainHead)
        return;
    socket.readAll();
    socket.write(plainAnswer(head));
    socket.disconnectFromHost();
}

/// The toolkit tells it also inside a write; whoever writes goes on by itself.
void TlsSocket::written()
{
    if (writing)
        return;
    countQueued();
    user->writable();
}

void TlsSocket::again()
{
    if (turnAsked)
        return;
    turnAsked = true;
    QMetaObject::invokeMethod(this, &TlsSocket::takeTurn, Qt::QueuedConnection);
}

void TlsSocket::takeTurn()
{
    turnAsked = false;
    user->writable();
    user->readable();
}

void TlsSocket::finish()
{
    socket.disconnectFromHost();
}

void TlsSocket::abort()
{
    socket.abort();
    // The toolkit says nothing when it never was connected.
    QMetaObject::invokeMethod(this, &TlsSocket::disconnected, Qt::QueuedConnection);
}

void TlsSocket::disconnected()
{
    if (ended)
        return;
    ended = true;
    if (socket.bytesAvailable() > 0)
        user->readable();
    user->gone();
}
