#include "desktop/settings/KeyMaker.h"

#include <QFile>
#include <QHostAddress>
#include <QHostInfo>
#include <QNetworkInterface>
#include <QSslCertificate>

#include <utility>

namespace {

constexpr int validDays = 825; ///< phones refuse certificates that are valid for longer
constexpr int longestCommonName = 64; ///< RFC 5280, ub-common-name
constexpr int bytesInARow = 8;

QString machineName()
{
    const QString name = QHostInfo::localHostName();
    return name.isEmpty() ? QStringLiteral("localhost") : name;
}

/// All that visitors may type for this machine, as the tool wants it.
QString alternativeNames()
{
    const QString machine = machineName();
    QStringList names = { QStringLiteral("DNS:localhost"), QLatin1String("DNS:") + machine };
    if (!machine.contains(QLatin1Char('.')))
        names.append(QStringLiteral("DNS:%1.local").arg(machine));
    const QList<QHostAddress> addresses = QNetworkInterface::allAddresses();
    for (QHostAddress address : addresses) {
        address.setScopeId({});
        names.append(QLatin1String("IP:") + address.toString());
    }
    names.removeDuplicates();
    return names.join(QLatin1Char(','));
}

QStringList toolArguments(const QString &key, const QString &certificate)
{
    const auto extension = [](const char *text) {
        return QStringList{ QStringLiteral("-addext"), QLatin1String(text) };
    };
    return QStringList{
        QStringLiteral("req"),      QStringLiteral("-x509"),
        QStringLiteral("-sha256"),  QStringLiteral("-newkey"),
        QStringLiteral("rsa:2048"), QStringLiteral("-nodes"),
        QStringLiteral("-keyout"),  key,
        QStringLiteral("-out"),     certificate,
        QStringLiteral("-days"),    QString::number(validDays),
        QStringLiteral("-subj"),    QLatin1String("/CN=") + machineName().left(longestCommonName),
        QStringLiteral("-addext"),  QLatin1String("subjectAltName=") + alternativeNames()
    }
    + extension("keyUsage=digitalSignature,keyEncipherment")
        + extension("extendedKeyUsage=serverAuth")
        + extension("basicConstraints=critical,CA:FALSE");
}

/// "server", or with a number where that is taken.
QString freeName(const QString &folder)
{
    QString name = QStringLiteral("server");
    for (int number = 2; QFile::exists(folder + name + QLatin1String(".key"))
         || QFile::exists(folder + name + QLatin1String(".crt"));
         ++number)
        name = QStringLiteral("server-%1").arg(number);
    return name;
}

QSslCertificate certificateIn(const QString &file)
{
    QFile stored(file);
    return stored.open(QIODevice::ReadOnly) ? QSslCertificate(&stored, QSsl::Pem)
                                            : QSslCertificate();
}

} // namespace

KeyMaker::KeyMaker(QString folder, QObject *parent)
    : QObject(parent)
    , target(std::move(folder))
    , work(target + QLatin1String(".new-keys-XXXXXX"))
{
    connect(&tool, QOverload<int, QProcess::ExitStatus>::of(&QProcess::finished), this,
            &KeyMaker::finish);
    connect(&tool, &QProcess::errorOccurred, this, [this](QProcess::ProcessError error) {
        if (error == QProcess::FailedToStart)
            fail(tr("The program \"openssl\" is needed to make a key."));
    });
}

KeyMaker::~KeyMaker()
{
    // The tool's end would be told to a page that is just going, too.
    tool.disconnect(this);
    tool.kill();
    tool.waitForFinished();
}

void KeyMaker::start()
{
    if (!work.isValid())
        return fail(tr("Can't write to the folder: ") + target);
    tool.start(
        QStringLiteral("openssl"),
        toolArguments(work.filePath(QStringLiteral("key")), work.filePath(QStringLiteral("crt"))));
}

void KeyMaker::finish()
{
    const QString name = freeName(target);
    if (tool.exitStatus() != QProcess::NormalExit || tool.exitCode() != 0)
        return fail(QString::fromUtf8(tool.readAllStandardError()).trimmed());
    if (!moveFiles(name))
        return fail(tr("Can't write to the folder: ") + target);
    Q_EMIT made(target + name + QLatin1String(".key"), target + name + QLatin1String(".crt"));
    deleteLater();
}

bool KeyMaker::moveFiles(const QString &name)
{
    const QString key = work.filePath(QStringLiteral("key"));
    return QFile::setPermissions(key, QFileDevice::ReadOwner | QFileDevice::WriteOwner)
        && QFile::rename(key, target + name + QLatin1String(".key"))
        && QFile::rename(work.filePath(QStringLiteral("crt")),
                         target + name + QLatin1String(".crt"));
}

void KeyMaker::fail(const QString &reason)
{
    Q_EMIT failed(reason);
    deleteLater();
}

QString certificateFingerprint(const QString &file)
{
    const QSslCertificate certificate = certificateIn(file);
    if (certificate.isNull())
        return {};
    const QByteArray digest = certificate.digest(QCryptographicHash::Sha256);
    QStringList rows;
    for (int i = 0; i < digest.size(); i += bytesInARow)
        rows.append(QString::fromLatin1(digest.mid(i, bytesInARow).toHex(':').toUpper()));
    return KeyMaker::tr("Fingerprint (SHA-256): %1")
        .arg(QLatin1Char('\n') + rows.join(QLatin1Char('\n')));
}

QString certificateFacts(const QString &file)
{
    const QSslCertificate certificate = certificateIn(file);
    if (certificate.isNull())
        return {};
    QStringList names = certificate.subjectInfo(QSslCertificate::CommonName);
    names += certificate.subjectAlternativeNames().values();
    names.removeDuplicates();
    return certificateFingerprint(file) + QLatin1Char('\n')
        + KeyMaker::tr("Names: %1").arg(names.join(QLatin1String(", ")));
}
