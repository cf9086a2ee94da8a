#pragma once

#include <QByteArray>
#include <QList>
#include <QString>

#include <chrono>
#include <memory>

struct OpenSsl;
struct bio_method_st;
struct ssl_ctx_st;
struct ssl_st;

/// An encrypted connection as the TLS library sees it.
using TlsSession = std::unique_ptr<ssl_st, void (*)(ssl_st *)>;

/// Key, certificate and rules by which a server opens encrypted connections: TLS 1.2 with a key of
/// its own for each connection and authenticated encryption, or 1.3. Who comes back within the hour
/// goes on with a ticket (RFC 8446, section 2.2; RFC 5077), and peers can't ask for new keys
/// in 1.2.
class TlsContext
{
public:
    /// `chain` is the server's certificate with those that vouch for it, `key` is of RSA (RFC 8017,
    /// appendix A.1.2), all in DER. Null when the library is missing or refuses one of them;
    /// `problem` then says why, in the library's words.
    static std::shared_ptr<TlsContext> make(const QList<QByteArray> &chain, const QByteArray &key,
                                            QString *problem);

    /// A connection that answers a handshake; null when memory is used up. Its bytes come from and
    /// go to `transport`, which is borrowed, as is the context.
    TlsSession session(class TlsSocket *transport);

    const OpenSsl &library() const { return tls; }

private:
    template <typename T> using Owned = std::unique_ptr<T, void (*)(T *)>;

    explicit TlsContext(const OpenSsl &library);
    bool setUp(const QList<QByteArray> &chain, const QByteArray &key);
    bool addAuthority(const QByteArray &certificate);
    bool renewTicketKeys();

    const OpenSsl &tls;
    Owned<ssl_ctx_st> context;
    Owned<bio_method_st> transportMethod;
    std::chrono::steady_clock::time_point ticketKeysMade;
};
