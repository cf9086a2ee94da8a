#include "desktop/settings/KeyMaker.h"

#include "server/Authority.h"

#include <QFile>
#include <QFileInfo>
#include <QStandardPaths>

namespace {

QString shownFingerprint(const QString &label, const QSslCertificate &certificate)
{
    return label.arg(QLatin1Char('\n') + fingerprintRows(certificate).join(QLatin1Char('\n')));
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

KeyMaker::KeyMaker(const QString &folder, QObject *parent)
    : QObject(parent)
    , target(folder)
    , name(freeName(folder))
    , tool(folder, name)
{
    connect(&tool, &KeyTool::ended, this, &KeyMaker::finish);
}

void KeyMaker::start()
{
    if (!QFileInfo(target).isWritable())
        return fail(tr("Can't write to the folder: ") + target);
    if (QStandardPaths::findExecutable(QStringLiteral("openssl")).isEmpty())
        return fail(tr("The program \"openssl\" is needed to make a key."));
    tool.start();
}

void KeyMaker::finish(const QString &problem)
{
    if (!problem.isEmpty())
        return fail(problem);
    Q_EMIT made(target + name + QLatin1String(".key"), target + name + QLatin1String(".crt"));
    deleteLater();
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
    return shownFingerprint(KeyMaker::tr("Fingerprint (SHA-256): %1"), certificate);
}

QString authorityFingerprint(const QString &file)
{
    const QSslCertificate authority = authorityOf(file);
    if (authority.isNull())
        return {};
    return shownFingerprint(KeyMaker::tr("Fingerprint of this computer's authority (SHA-256): %1"),
                            authority);
}

QString certificateFacts(const QString &file)
{
    const QSslCertificate certificate = certificateIn(file);
    if (certificate.isNull())
        return {};
    QStringList names = certificate.subjectInfo(QSslCertificate::CommonName);
    names += certificate.subjectAlternativeNames().values();
    names.removeDuplicates();
    QStringList facts{ shownFingerprint(KeyMaker::tr("Fingerprint (SHA-256): %1"), certificate),
                       KeyMaker::tr("Names: %1").arg(names.join(QLatin1String(", "))) };
    if (const QString authority = authorityFingerprint(file); !authority.isEmpty())
        facts += authority;
    return facts.join(QLatin1Char('\n'));
}
