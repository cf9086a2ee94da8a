#include "server/Authority.h"

#include "config/Profile.h"

#include <QFile>

namespace {

constexpr int bytesInARow = 8;
constexpr auto ourName = "Quillon"; ///< as make-keys.sh has it
constexpr auto page =
    "<!DOCTYPE html>\n<html lang=\"en\"><head><meta charset=\"utf-8\">"
    "<meta name=\"viewport\" content=\"width=device-width\"><title>Quillon</title></head><body>"
    "<h1>Trust this computer</h1><p>Its certificates are signed by an authority of its own, which "
    "can vouch for private addresses, names in <i>.local</i> and this computer's name alone. Once "
    "you trust it, your browser does not warn any more, wherever the computer moves.</p>"
    "<p><a href=\"ca\">Get its certificate</a>, and have your device install it as that of an "
    "authority (CA). Trust it only if the fingerprint (SHA-256) that your device shows of it is "
    "the one that the computer itself shows, in Settings, &quot;Server&quot;, or where "
    "<i>quillon-serve</i> was started: somebody on the way could send another. It should be</p>"
    "<pre>%1</pre></body></html>\n";

} // namespace

QSslCertificate authorityOf(const QString &file)
{
    QFile stored(file);
    if (!stored.open(QIODevice::ReadOnly))
        return QSslCertificate();
    const QList<QSslCertificate> chain = QSslCertificate::fromDevice(&stored, QSsl::Pem);
    if (chain.size() < 2 || !chain.constLast().isSelfSigned())
        return QSslCertificate();
    const QStringList makers = chain.constLast().subjectInfo(QSslCertificate::Organization);
    return makers.contains(QLatin1String(ourName)) ? chain.constLast() : QSslCertificate();
}

QStringList fingerprintRows(const QSslCertificate &certificate)
{
    const QByteArray digest = certificate.digest(QCryptographicHash::Sha256);
    QStringList rows;
    for (int i = 0; i < digest.size(); i += bytesInARow)
        rows.append(QString::fromLatin1(digest.mid(i, bytesInARow).toHex(':').toUpper()));
    return rows;
}

std::optional<AuthorityReply> authorityReply(const QByteArray &path, const Profile &profile)
{
    const bool wantsPage = path == authorityPagePath;
    if (!wantsPage && path != authorityPath)
        return {};
    const QSslCertificate authority = authorityOf(profile.publicKeyFile);
    if (authority.isNull())
        return {};
    if (wantsPage) {
        const QString rows = fingerprintRows(authority).join(QLatin1Char('\n'));
        return { { "text/html; charset=UTF-8", "inline",
                   QString::fromLatin1(page).arg(rows).toUtf8() } };
    }
    // Some phones install what is shown, others what was stored under this name.
    return { { "application/x-x509-ca-cert", "inline; filename=\"quillon-authority.crt\"",
               authority.toPem() } };
}
