#pragma once

#include <QByteArray>
#include <QSslCertificate>
#include <QString>
#include <QStringList>

#include <optional>

class Profile;

/// The authority of this machine that has signed the certificate in `file`, which holds both; who
/// trusts it trusts what it signs later, too. Null when another has, or nobody.
QSslCertificate authorityOf(const QString &file);

/// The SHA-256 fingerprint that people compare, in hexadecimal digits, a few bytes a row.
QStringList fingerprintRows(const QSslCertificate &certificate);

/// Where everyone finds the authority of a server, login or not: its certificate, and a page with
/// the fingerprint. Paths of the server, without the first "/".
constexpr auto authorityPath = ".quillon/ca";
constexpr auto authorityPagePath = ".quillon/authority";

struct AuthorityReply
{
    QByteArray contentType;
    QByteArray disposition; ///< the value of Content-Disposition (RFC 6266)
    QByteArray body;
};

/// Lines for the head of such a reply: its page needs nothing from elsewhere and is nobody's part.
constexpr auto authorityProtection =
    "X-Content-Type-Options: nosniff\r\n"
    "Content-Security-Policy: default-src 'none'; base-uri 'none'; frame-ancestors 'none'; "
    "form-action 'none'\r\n"
    "Referrer-Policy: no-referrer\r\n"
    "Cross-Origin-Opener-Policy: same-origin\r\n"
    "Cross-Origin-Resource-Policy: same-origin\r\n";

/// What is found at `path` on a server with `profile`, encrypted or not. None when that is another
/// path, or there is no such authority. The page is in the language of the program's that a visitor
/// wants most by `acceptLanguage`, a field of the request (RFC 9110, 12.5.4), else in English.
std::optional<AuthorityReply> authorityReply(const QByteArray &path, const Profile &profile,
                                             const QByteArray &acceptLanguage = {});
