#include "server/Authority.h"

#include "config/Profile.h"

#include <QFile>

#include <algorithm>
#include <array>

namespace {

constexpr int bytesInARow = 8;
constexpr auto ourName = "Quillon"; ///< as make-keys.sh has it
constexpr auto page =
    "<!DOCTYPE html>\n<html lang=\"%1\"><head><meta charset=\"utf-8\">"
    "<meta name=\"viewport\" content=\"width=device-width\"><title>Quillon</title></head><body>"
    "%2<pre>%3</pre></body></html>\n";

struct PageText
{
    const char *language; ///< the primary subtag (RFC 5646)
    const char *text; ///< HTML
};

/// Who asks for none of them gets the first.
constexpr std::array pageTexts{
    PageText{
        "en",
        "<h1>Trust this computer</h1><p>Its certificates are signed by an authority of its own, "
        "which can vouch for private addresses, names in <i>.local</i> and this computer's name "
        "alone. Once you trust it, your browser does not warn any more, wherever the computer "
        "moves.</p><p><a href=\"ca\">Get its certificate</a>, and have your device install it as "
        "that of an authority (CA). Trust it only if the fingerprint (SHA-256) that your device "
        "shows of it is the one that the computer itself shows, in Settings, "
        "&quot;Server&quot;, or where <i>quillon-serve</i> was started: somebody on the way could "
        "send another. It should be</p>" },
    PageText{
        "de",
        "<h1>Diesem Computer vertrauen</h1><p>Seine Zertifikate unterschreibt eine eigene "
        "Zertifizierungsstelle, die allein für private Adressen, Namen in <i>.local</i> und den "
        "Namen dieses Computers bürgen kann. Wenn Sie ihr vertrauen, warnt Ihr Browser nicht "
        "mehr, wohin der Computer auch umzieht.</p><p><a href=\"ca\">Holen Sie ihr Zertifikat</a> "
        "und lassen Sie es Ihr Gerät als das einer Zertifizierungsstelle (CA) installieren. "
        "Vertrauen Sie ihm nur, wenn Ihr Gerät denselben Fingerabdruck (SHA-256) zeigt wie der "
        "Computer selbst, in den Einstellungen unter „Server“ oder dort, wo "
        "<i>quillon-serve</i> gestartet wurde: Unterwegs könnte jemand ein anderes "
        "unterschieben. Er sollte so lauten:</p>" },
    PageText{
        "es",
        "<h1>Confiar en este equipo</h1><p>Sus certificados los firma una autoridad propia, que "
        "solo puede responder de direcciones privadas, de nombres en <i>.local</i> y del nombre de "
        "este equipo. Si confía en ella, su navegador ya no avisa, vaya donde vaya el "
        "equipo.</p><p><a href=\"ca\">Obtenga su certificado</a> y haga que su dispositivo lo "
        "instale como el de una autoridad (CA). Confíe en él solo si la huella (SHA-256) "
        "que muestra su dispositivo es la que muestra el propio equipo, en Ajustes, "
        "«Servidor», o donde se inició <i>quillon-serve</i>: alguien en el camino "
        "podría enviar otro. Debería ser</p>" },
    PageText{ "fr",
              "<h1>Faire confiance à cet ordinateur</h1><p>Ses certificats sont signés par une "
              "autorité qui lui est propre et ne peut répondre que d’adresses "
              "privées, de noms en <i>.local</i> et du nom de cet ordinateur. Si vous lui faites "
              "confiance, votre navigateur n’avertit plus, où que l’ordinateur se "
              "déplace.</p><p><a href=\"ca\">Prenez son certificat</a> et faites-le installer par "
              "votre appareil comme celui d’une autorité (CA). Ne lui faites confiance que si "
              "l’empreinte (SHA-256) que montre votre appareil est celle que montre "
              "l’ordinateur lui-même, dans Paramètres, « Serveur », "
              "ou là où <i>quillon-serve</i> a été lancé : "
              "quelqu’un en chemin pourrait en envoyer un autre. Elle devrait être</p>" },
};

/// What a range of languages, "de-AT;q=0.8", weighs; 1 where it does not say.
double weightOf(const QByteArray &range)
{
    const auto weight = range.indexOf("q=");
    return weight < 0 ? 1 : range.mid(weight + 2).trimmed().toDouble();
}

const PageText &pageTextFor(const QByteArray &acceptLanguage)
{
    const PageText *best = &pageTexts.front();
    double most = 0;
    for (const QByteArray &range : acceptLanguage.split(',')) {
        const QByteArray language = range.split(';').constFirst().split('-').constFirst();
        const auto known =
            std::find_if(pageTexts.begin(), pageTexts.end(),
                         [wanted = language.trimmed().toLower()](const PageText &each) {
                             return wanted == each.language;
                         });
        const double weight = weightOf(range);
        if (known == pageTexts.end() || weight <= most)
            continue;
        best = known;
        most = weight;
    }
    return *best;
}

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

std::optional<AuthorityReply> authorityReply(const QByteArray &path, const Profile &profile,
                                             const QByteArray &acceptLanguage)
{
    const bool wantsPage = path == authorityPagePath;
    if (!wantsPage && path != authorityPath)
        return {};
    const QSslCertificate authority = authorityOf(profile.publicKeyFile);
    if (authority.isNull())
        return {};
    if (wantsPage) {
        const PageText &text = pageTextFor(acceptLanguage);
        const QString rows = fingerprintRows(authority).join(QLatin1Char('\n'));
        return { { "text/html; charset=UTF-8", "inline",
                   QString::fromLatin1(page)
                       .arg(QLatin1String(text.language), QString::fromUtf8(text.text), rows)
                       .toUtf8() } };
    }
    // Some phones install what is shown, others what was stored under this name.
    return { { "application/x-x509-ca-cert", "inline; filename=\"quillon-authority.crt\"",
               authority.toPem() } };
}
