#pragma once

#include <QDir>
#include <QProcess>
#include <QRegularExpression>
#include <QStandardPaths>
#include <QTemporaryDir>
#include <QTest>

/// Whether the machine has a program.
inline bool hasProgram(const QString &name)
{
    return !QStandardPaths::findExecutable(name, { QStringLiteral("/usr/sbin") }).isEmpty()
        || !QStandardPaths::findExecutable(name).isEmpty();
}

/// Makes "key" and "certificate" for 127.0.0.1 in a folder.
inline void makeKeys(const QString &folder)
{
    const QString make = QStringLiteral("req -x509 -newkey rsa:2048 -nodes -days 2"
                                        " -subj /CN=127.0.0.1 -keyout key -out certificate");
    QProcess openssl;
    openssl.setWorkingDirectory(folder);
    openssl.start(QStringLiteral("openssl"), make.split(QLatin1Char(' ')));
    QVERIFY(openssl.waitForFinished() && openssl.exitCode() == 0);
}

/// Has litmus try what is served at `url`, beside the event loop that serves it; all of the 104
/// cases of its version 0.13 must pass.
inline void passesLitmus(const QString &url, const QStringList &login)
{
    const QTemporaryDir folder;
    QProcess litmus;
    litmus.setWorkingDirectory(folder.path());
    litmus.setProcessChannelMode(QProcess::MergedChannels);
    litmus.start(QStringLiteral("litmus"), QStringList{ QStringLiteral("-k"), url } + login);
    QVERIFY(litmus.waitForStarted());
    QTRY_COMPARE_WITH_TIMEOUT(litmus.state(), QProcess::NotRunning, 60000);

    const QString output = QString::fromLocal8Bit(litmus.readAll());
    const QStringList lines =
        output.split(QLatin1Char('\n')).filter(QRegularExpression(QStringLiteral("FAIL|WARN|of ")));
    const QString told = lines.join(QLatin1Char('\n'));
    // It skips one case itself over TLS.
    const int lastTests = url.startsWith(QLatin1String("https")) ? 3 : 4;
    for (const int tests : { 16, 13, 30, 41, lastTests }) {
        const QString summary = QStringLiteral("of %1 tests run: %1 passed, 0 failed").arg(tests);
        QVERIFY2(told.contains(summary), qPrintable(told));
    }
    // One proxy takes the fragment off a URL that should have none.
    const auto warnings = lines.filter(QStringLiteral("WARNING"));
    QVERIFY2(warnings.filter(QStringLiteral("fragment")) == warnings, qPrintable(told));
}
