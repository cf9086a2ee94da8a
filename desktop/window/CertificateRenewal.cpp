#include "desktop/window/CertificateRenewal.h"

#include "config/Profile.h"
#include "desktop/Log.h"
#include "desktop/window/NotingSink.h"
#include "desktop/window/ServerRow.h"
#include "desktop/window/ServerRows.h"
#include "server/KeyTool.h"

#include <QDateTime>
#include <QLocale>
#include <QSslCertificate>

#include <chrono>
#include <utility>

using namespace std::chrono_literals;

namespace {

constexpr int warnedDays = 14; ///< before the end

} // namespace

CertificateRenewal::CertificateRenewal(ServerRows *choice, NotingSink *sink)
    : rows(choice)
    , warnings(sink)
{
    soon.setSingleShot(true);
    soon.setInterval(1s);
    retry.setSingleShot(true);
    daily.start(24h);
    const auto lookSoon = QOverload<>::of(&QTimer::start);
    connect(rows, &ServerRows::rowAdded, &soon, lookSoon);
    connect(rows, &ServerRows::rowRemoved, &soon, lookSoon);
    connect(rows, &ServerRows::runningChanged, &soon, lookSoon);
    connect(&soon, &QTimer::timeout, this, &CertificateRenewal::look);
    connect(&daily, &QTimer::timeout, this, &CertificateRenewal::look);
    connect(&retry, &QTimer::timeout, this, &CertificateRenewal::look);
}

void CertificateRenewal::look()
{
    QSet<QString> certificates;
    for (const ServerRow *row : rows->all()) {
        if (row->profile()->usesTls())
            certificates.insert(row->profile()->publicKeyFile);
    }
    for (const QString &certificate : std::as_const(certificates)) {
        if (KeyTool::canRenew(certificate))
            renew(certificate);
        else
            warnOfEnd(certificate);
    }
}

void CertificateRenewal::renew(const QString &certificate)
{
    auto *tool = new KeyTool(certificate, this);
    connect(tool, &KeyTool::ended, this, [this, tool, certificate](const QString &problem) {
        tool->deleteLater();
        finish(certificate, problem);
    });
    tool->start();
}

void CertificateRenewal::finish(const QString &certificate, const QString &problem)
{
    if (problem.isEmpty()) {
        failing.remove(certificate);
        warnOfEnd(certificate); // somebody else may have signed it
        return reload(certificate);
    }
    qCWarning(desktopLog) << "not renewed:" << certificate << problem;
    retry.start(5min);
    if (failing.contains(certificate))
        return;
    failing.insert(certificate);
    Q_EMIT failed(
        ServerRows::tr("The certificate was not renewed for this computer's addresses: %1")
            .arg(certificate));
}

void CertificateRenewal::warnOfEnd(const QString &certificate)
{
    const QDateTime end = QSslCertificate::fromPath(certificate).value(0).expiryDate();
    if (!end.isValid() || QDateTime::currentDateTimeUtc().daysTo(end) > warnedDays) {
        ending.remove(certificate);
        return;
    }
    if (ending.contains(certificate))
        return;
    ending.insert(certificate);
    Q_EMIT failed(
        ServerRows::tr("The certificate is valid until %1 only: %2. \"Make new key...\" in "
                       "the settings makes one that is renewed by itself.")
            .arg(QLocale().toString(end.toLocalTime().date(), QLocale::ShortFormat), certificate));
}

void CertificateRenewal::reload(const QString &certificate) const
{
    const auto noting = warnings->unasked();
    for (const ServerRow *row : rows->all()) {
        if (row->profile()->publicKeyFile == certificate)
            row->server()->reloadKeys();
    }
}
