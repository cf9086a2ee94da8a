#include "server/TlsIdentity.h"

#include "config/Profile.h"

#include <QCoreApplication>
#include <QFile>
#include <QSslCertificate>
#include <QSslKey>

namespace {

QString text(const char *source)
{
    return QCoreApplication::translate("WebServer", source);
}

/// Whether the certificate is that of the private key. Modulus and exponent stand side by side in
/// both encodings (RFC 8017, appendix A.1), in the public one at its end.
bool belongTogether(const QSslKey &privateKey, const QSslCertificate &certificate)
{
    const QByteArray publicDer = certificate.publicKey().toDer();
    const int modulusBytes = privateKey.length() / 8;
    return modulusBytes > 0 && privateKey.toDer().contains(publicDer.right(modulusBytes));
}

QString problemWithPair(const QSslKey &key, const QSslCertificate &certificate,
                        const Profile &profile)
{
    if (certificate.isNull())
        return text(QT_TRANSLATE_NOOP("WebServer", "This is no certificate: %1"))
            .arg(profile.publicKeyFile);
    if (key.isNull())
        return text(QT_TRANSLATE_NOOP(
                        "WebServer",
                        "The private key can't be used, its pass phrase may be wrong: %1"))
            .arg(profile.privateKeyFile);
    if (!belongTogether(key, certificate))
        return text(QT_TRANSLATE_NOOP("WebServer",
                                      "The certificate %1 is not that of the private key %2"))
            .arg(profile.publicKeyFile, profile.privateKeyFile);
    return {};
}

} // namespace

std::optional<TlsIdentity> TlsIdentity::load(const Profile &profile, QString *problem)
{
    QFile certificateFile(profile.publicKeyFile);
    if (!certificateFile.open(QIODevice::ReadOnly)) {
        *problem = text(QT_TRANSLATE_NOOP("WebServer", "The certificate can't be read: %1"))
                       .arg(profile.publicKeyFile);
        return {};
    }
    QFile keyFile(profile.privateKeyFile);
    if (!keyFile.open(QIODevice::ReadOnly)) {
        *problem = text(QT_TRANSLATE_NOOP("WebServer", "The private key can't be read: %1"))
                       .arg(profile.privateKeyFile);
        return {};
    }
    const QList<QSslCertificate> chain = QSslCertificate::fromDevice(&certificateFile, QSsl::Pem);
    const QSslCertificate certificate = chain.value(0);
    const QSslKey key(&keyFile, QSsl::Rsa, QSsl::Pem, QSsl::PrivateKey,
                      profile.keyPassword.toLatin1());
    *problem = problemWithPair(key, certificate, profile);
    if (!problem->isEmpty())
        return {};

    QList<QByteArray> encodedChain;
    for (const QSslCertificate &next : chain)
        encodedChain.append(next.toDer());
    QString reason;
    auto context = TlsContext::make(encodedChain, key.toDer(), &reason);
    if (context)
        return TlsIdentity{ std::move(context) };
    *problem =
        text(QT_TRANSLATE_NOOP("WebServer", "The TLS library refuses the keys: %1")).arg(reason);
    return {};
}
