#pragma once

#include <QByteArray>
#include <QCryptographicHash>
#include <QtGlobal>

#include <optional>

namespace standard {

/// What a visitor proves to know a password with, and doesn't tell it (RFC 7616, with qop "auth").
struct DigestCredentials
{
    /// Out of the value of an Authorization field. None when it is of another scheme, or something
    /// that is needed is missing or not understood.
    static std::optional<DigestCredentials> parse(const QByteArray &value);

    /// Whether it is the proof of this password, given with a request of `method`.
    bool fits(const QByteArray &method, const QByteArray &password) const;

    QCryptographicHash::Algorithm algorithm = QCryptographicHash::Md5;
    QByteArray user;
    QByteArray realm;
    QByteArray nonce;
    QByteArray uri; ///< of the request it was given with
    QByteArray countText; ///< as sent
    quint32 count = 0; ///< of the requests with that nonce, from 1 on
    QByteArray clientNonce;
    QByteArray response;
};

} // namespace standard
