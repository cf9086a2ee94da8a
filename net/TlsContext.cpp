#include "net/TlsContext.h"

#include "net/OpenSsl.h"
#include "net/TlsSocket.h"

#include <QRandomGenerator>

#include <algorithm>
#include <array>

namespace {

// Forward secrecy and authenticated encryption. Keys of 128 bits first, as nobody breaks those and
// telephones save a third of the time; who has no AES in hardware asks for the other.
constexpr char ciphers12[] = "ECDHE+AES128+AESGCM:ECDHE+AES256+AESGCM:ECDHE+CHACHA20";
constexpr char ciphers13[] =
    "TLS_AES_128_GCM_SHA256:TLS_AES_256_GCM_SHA384:TLS_CHACHA20_POLY1305_SHA256";
/// As many records as one call to the system may bring.
constexpr std::size_t readAhead = std::size_t(64) * 1024;
// Of name, encryption and authentication.
constexpr std::size_t ticketKeysSize = 80;
// Keys that leak open what was recorded of TLS 1.2 in this time, and no more.
constexpr std::chrono::hours ticketKeysAge(1);

long control(BIO * /*bio*/, int command, long /*value*/, void * /*data*/)
{
    // Nothing waits in it that could be flushed.
    return command == BIO_CTRL_FLUSH ? 1 : 0;
}

} // namespace

TlsContext::TlsContext(const OpenSsl &library)
    : tls(library)
    , context(tls.SSL_CTX_new(tls.TLS_server_method()), tls.SSL_CTX_free)
    , transportMethod(tls.BIO_meth_new(BIO_TYPE_SOURCE_SINK, "quillon"), tls.BIO_meth_free)
{
}

std::shared_ptr<TlsContext> TlsContext::make(const QList<QByteArray> &chain, const QByteArray &key,
                                             QString *problem)
{
    const OpenSsl *library = OpenSsl::library();
    if (!library) {
        *problem = QStringLiteral("libssl %1 not found").arg(OPENSSL_VERSION_MAJOR);
        return nullptr;
    }
    library->ERR_clear_error();
    std::shared_ptr<TlsContext> made(new TlsContext(*library));
    if (made->context && made->transportMethod && made->setUp(chain, key))
        return made;
    const char *reason = library->ERR_reason_error_string(library->ERR_get_error());
    *problem = QString::fromLatin1(reason ? reason : "out of memory");
    return nullptr;
}

bool TlsContext::setUp(const QList<QByteArray> &chain, const QByteArray &key)
{
    tls.BIO_meth_set_read(transportMethod.get(), &TlsSocket::readCipher);
    tls.BIO_meth_set_write(transportMethod.get(), &TlsSocket::writeCipher);
    tls.BIO_meth_set_ctrl(transportMethod.get(), &control);

    SSL_CTX *ctx = context.get();
    tls.SSL_CTX_ctrl(ctx, SSL_CTRL_SET_MIN_PROTO_VERSION, TLS1_2_VERSION, nullptr);
    // Many connections are at rest, and what they would hold for records is free then.
    tls.SSL_CTX_ctrl(ctx, SSL_CTRL_MODE, SSL_MODE_RELEASE_BUFFERS, nullptr);
    tls.SSL_CTX_ctrl(ctx, SSL_CTRL_SET_READ_AHEAD, 1, nullptr);
    tls.SSL_CTX_set_default_read_buffer_len(ctx, readAhead);
    // Whether what came is whole is known by its own lengths, as without encryption.
    tls.SSL_CTX_set_options(ctx,
                            SSL_OP_NO_RENEGOTIATION | SSL_OP_CIPHER_SERVER_PREFERENCE
                                | SSL_OP_PRIORITIZE_CHACHA | SSL_OP_IGNORE_UNEXPECTED_EOF);
    tls.SSL_CTX_ctrl(ctx, SSL_CTRL_SET_SESS_CACHE_MODE, SSL_SESS_CACHE_OFF, nullptr);
    const auto bytes = [](const QByteArray &der) {
        return reinterpret_cast<const unsigned char *>(der.constData());
    };
    const QByteArray own = chain.value(0);
    return renewTicketKeys() && tls.SSL_CTX_set_num_tickets(ctx, 1) == 1
        && tls.SSL_CTX_set_cipher_list(ctx, ciphers12) == 1
        && tls.SSL_CTX_set_ciphersuites(ctx, ciphers13) == 1
        && tls.SSL_CTX_use_certificate_ASN1(ctx, int(own.size()), bytes(own)) == 1
        && tls.SSL_CTX_use_PrivateKey_ASN1(EVP_PKEY_RSA, ctx, bytes(key), long(key.size())) == 1
        && std::all_of(chain.begin() + 1, chain.end(),
                       [this](const QByteArray &next) { return addAuthority(next); });
}

bool TlsContext::addAuthority(const QByteArray &certificate)
{
    const auto *der = reinterpret_cast<const unsigned char *>(certificate.constData());
    Owned<X509> parsed(tls.d2i_X509(nullptr, &der, long(certificate.size())), tls.X509_free);
    if (!parsed || tls.SSL_CTX_ctrl(context.get(), SSL_CTRL_EXTRA_CHAIN_CERT, 0, parsed.get()) != 1)
        return false;
    // The context's now.
    static_cast<void>(parsed.release());
    return true;
}

bool TlsContext::renewTicketKeys()
{
    std::array<quint32, ticketKeysSize / sizeof(quint32)> keys{};
    QRandomGenerator::system()->fillRange(keys.data(), int(keys.size()));
    ticketKeysMade = std::chrono::steady_clock::now();
    return tls.SSL_CTX_ctrl(context.get(), SSL_CTRL_SET_TLSEXT_TICKET_KEYS, ticketKeysSize,
                            keys.data())
        == 1;
}

TlsSession TlsContext::session(TlsSocket *transport)
{
    if (std::chrono::steady_clock::now() - ticketKeysMade > ticketKeysAge)
        renewTicketKeys();
    TlsSession made(tls.SSL_new(context.get()), tls.SSL_free);
    BIO *bio = made ? tls.BIO_new(transportMethod.get()) : nullptr;
    if (!bio)
        return { nullptr, tls.SSL_free };
    tls.BIO_set_data(bio, transport);
    tls.BIO_set_init(bio, 1);
    tls.SSL_set_bio(made.get(), bio, bio);
    tls.SSL_set_accept_state(made.get());
    return made;
}
