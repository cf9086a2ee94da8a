#pragma once

#include <openssl/bio.h>
#include <openssl/err.h>
#include <openssl/ssl.h>

/// The functions of the TLS library that are used, by their own names.
#define QUILLON_TLS_FUNCTIONS(FUNCTION)                                                            \
    FUNCTION(BIO_clear_flags)                                                                      \
    FUNCTION(BIO_get_data)                                                                         \
    FUNCTION(BIO_meth_free)                                                                        \
    FUNCTION(BIO_meth_new)                                                                         \
    FUNCTION(BIO_meth_set_ctrl)                                                                    \
    FUNCTION(BIO_meth_set_read)                                                                    \
    FUNCTION(BIO_meth_set_write)                                                                   \
    FUNCTION(BIO_new)                                                                              \
    FUNCTION(BIO_set_data)                                                                         \
    FUNCTION(BIO_set_flags)                                                                        \
    FUNCTION(BIO_set_init)                                                                         \
    FUNCTION(ERR_clear_error)                                                                      \
    FUNCTION(ERR_get_error)                                                                        \
    FUNCTION(ERR_reason_error_string)                                                              \
    FUNCTION(SSL_CTX_ctrl)                                                                         \
    FUNCTION(SSL_CTX_free)                                                                         \
    FUNCTION(SSL_CTX_new)                                                                          \
    FUNCTION(SSL_CTX_set_cipher_list)                                                              \
    FUNCTION(SSL_CTX_set_ciphersuites)                                                             \
    FUNCTION(SSL_CTX_set_default_read_buffer_len)                                                  \
    FUNCTION(SSL_CTX_set_num_tickets)                                                              \
    FUNCTION(SSL_CTX_set_options)                                                                  \
    FUNCTION(SSL_CTX_use_PrivateKey_ASN1)                                                          \
    FUNCTION(SSL_CTX_use_certificate_ASN1)                                                         \
    FUNCTION(SSL_do_handshake)                                                                     \
    FUNCTION(SSL_free)                                                                             \
    FUNCTION(SSL_get_error)                                                                        \
    FUNCTION(SSL_new)                                                                              \
    FUNCTION(SSL_read)                                                                             \
    FUNCTION(SSL_set_accept_state)                                                                 \
    FUNCTION(SSL_set_bio)                                                                          \
    FUNCTION(SSL_shutdown)                                                                         \
    FUNCTION(SSL_write)                                                                            \
    FUNCTION(TLS_server_method)                                                                    \
    FUNCTION(X509_free)                                                                            \
    FUNCTION(d2i_X509)

/// The TLS library, which takes 1.7 MiB that servers without keys never need: it is loaded by the
/// first who asks for it.
struct OpenSsl
{
    /// Null where version 3 is not installed.
    static const OpenSsl *library();

// NOLINTNEXTLINE(bugprone-macro-parentheses): a member's name has none
#define QUILLON_TLS_MEMBER(name) decltype(&::name) name = nullptr;
    QUILLON_TLS_FUNCTIONS(QUILLON_TLS_MEMBER)
#undef QUILLON_TLS_MEMBER

private:
    bool load();
};
