#include "net/TlsSocket.h"

#include "net/OpenSsl.h"

#include <algorithm>
#include <array>
#include <new>

#include <sys/socket.h>
#include <unistd.h>

namespace {

constexpr char handshakeRecord = 22; ///< RFC 8446, section 5.1
constexpr qint64 maxPlainHead = 4096; ///< bytes
constexpr qint64 recordSize = SSL3_RT_MAX_PLAIN_LENGTH; ///< bytes, the most that one may hold
constexpr qint64 pieceSize = 8 * recordSize; ///< is read at once from a file

TlsSocket *socketOf(const OpenSsl &tls, BIO *bio)
{
    return static_cast<TlsSocket *>(tls.BIO_get_data(bio));
}

} // namespace

TlsSocket::TlsSocket(FileDescriptor accepted, const QHostAddress &peerAddress,
                     std::shared_ptr<TlsContext> identity, PlainAnswer answer, Poller *watcher,
                     TrafficAccount *counter)
    : DescriptorSocket(std::move(accepted), peerAddress, watcher, counter)
    , context(std::move(identity))
    , plainAnswer(std::move(answer))
    , session(nullptr, context->library().SSL_free)
{
}

// --- until both ends agreed ---------------------------------------------------------------------

void TlsSocket::establish()
{
    flush();
    if (stage == Stage::Greeting && !greet())
        return;
    shakeHands();
}

/// Whether the peer begins a handshake. Somebody may have typed "http:" before the address of a
/// server that encrypts.
bool TlsSocket::greet()
{
    std::array<char, maxPlainHead> seen;
    const ssize_t size = ::recv(descriptor(), seen.data(), seen.size(), MSG_PEEK | MSG_DONTWAIT);
    if (size < 0 && mustWait())
        return false;
    if (size <= 0) {
        breakOff();
        return false;
    }
    if (seen.front() != handshakeRecord) {
        answerPlain(QByteArray(seen.data(), int(size)));
        return false;
    }
    session = context->session(this);
    if (!session)
        breakOff();
    stage = Stage::Handshake;
    return session != nullptr;
}

/// Nothing of it is ever taken for a request.
void TlsSocket::answerPlain(const QByteArray &head)
{
    if (!head.contains("\r\n\r\n") && head.size() < maxPlainHead)
        return;
    // What stays unread would have the system take the answer back.
    std::array<char, maxPlainHead> read;
    takeNow(read.data(), head.size());
    const QByteArray answer = plainAnswer(head);
    pass(answer.constData(), answer.size(), false);
    finish();
}

void TlsSocket::shakeHands()
{
    const OpenSsl &tls = context->library();
    tls.ERR_clear_error();
    const int result = tls.SSL_do_handshake(session.get());
    if (result == 1) {
        stage = Stage::Established;
        // The first request may have come with the last of the peer's part.
        mayDecrypt = true;
        return;
    }
    if (tls.SSL_get_error(session.get(), result) == SSL_ERROR_WANT_READ)
        return;
    // What it is told of its fault goes out first.
    flush();
    breakOff();
}

// --- receiving ----------------------------------------------------------------------------------

bool TlsSocket::mayReceive() const
{
    return inputOver || mayDecrypt || DescriptorSocket::mayReceive();
}

qint64 TlsSocket::receive(char *data, qint64 max)
{
    if (!isOpen() || inputOver)
        return -1;
    if (!mayReceive())
        return 0;
    const OpenSsl &tls = context->library();
    tls.ERR_clear_error();
    mayDecrypt = true;
    qint64 size = 0;
    while (size < max && mayDecrypt) {
        const int count = tls.SSL_read(session.get(), data + size, int(max - size));
        if (count > 0)
            size += count;
        else
            readFailed(count);
    }
    return size == 0 && inputOver ? -1 : size;
}

void TlsSocket::readFailed(int result)
{
    mayDecrypt = false;
    switch (context->library().SSL_get_error(session.get(), result)) {
    case SSL_ERROR_WANT_READ:
        return;
    case SSL_ERROR_ZERO_RETURN:
        // It may still wait for answers.
        noteEnd();
        break;
    default:
        breakOff();
    }
    inputOver = true;
}

int TlsSocket::readCipher(BIO *bio, char *data, int size)
{
    const OpenSsl &tls = *OpenSsl::library();
    tls.BIO_clear_flags(bio, BIO_FLAGS_RWS | BIO_FLAGS_SHOULD_RETRY);
    const qint64 count = socketOf(tls, bio)->takeNow(data, size);
    if (count != 0)
        return int(std::max<qint64>(count, 0));
    tls.BIO_set_flags(bio, BIO_FLAGS_READ | BIO_FLAGS_SHOULD_RETRY);
    return -1;
}

// --- sending ------------------------------------------------------------------------------------

bool TlsSocket::send(const QByteArray &bytes, bool more)
{
    for (qint64 sent = 0; canSend() && sent < bytes.size();) {
        const qint64 size = std::min<qint64>(recordSize, bytes.size() - sent);
        encrypt(bytes.constData() + sent, size, more || sent + size < bytes.size());
        sent += size;
    }
    return canSend();
}

qint64 TlsSocket::send(int file, qint64 offset, qint64 count)
{
    if (!canSend())
        return -1;
    if (isStuck())
        return 0;
    std::array<char, pieceSize> piece;
    const ssize_t size =
        ::pread(file, piece.data(), size_t(std::min<qint64>(count, pieceSize)), offset);
    if (size <= 0)
        return -1;
    qint64 sent = 0;
    while (sent < size && canSend() && !isStuck()) {
        const qint64 record = std::min<qint64>(recordSize, size - sent);
        encrypt(piece.data() + sent, record, sent + record < size);
        sent += record;
    }
    return canSend() ? sent : -1;
}

/// The library takes all of it, as its records are queued.
void TlsSocket::encrypt(const char *data, qint64 size, bool more)
{
    const OpenSsl &tls = context->library();
    tls.ERR_clear_error();
    moreFollows = more;
    if (tls.SSL_write(session.get(), data, int(size)) <= 0)
        breakOff();
}

int TlsSocket::writeCipher(BIO *bio, const char *data, int size)
{
    TlsSocket *socket = socketOf(*OpenSsl::library(), bio);
    try {
        socket->pass(data, size, socket->moreFollows);
        return size;
    } catch (const std::bad_alloc &) {
        // The library knows nothing of exceptions.
        socket->breakOff();
        return -1;
    }
}

/// So that the peer knows that nothing was cut off.
void TlsSocket::takeLeave()
{
    if (stage != Stage::Established || leaveTaken)
        return;
    leaveTaken = true;
    const OpenSsl &tls = context->library();
    tls.ERR_clear_error();
    moreFollows = false;
    tls.SSL_shutdown(session.get());
}
