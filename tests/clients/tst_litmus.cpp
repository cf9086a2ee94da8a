#include "standard/dav/Routes.h"
#include "tests/standard/StandardTest.h"

#include <QProcess>
#include <QStandardPaths>
#include <QtTest>

/// Has litmus, where it is installed, try the standard face. It runs beside the event loop that
/// serves it.
class LitmusTest : public QObject
{
    Q_OBJECT
private Q_SLOTS:
    void passes_data();
    void passes();

private:
    static void serveByTls(const StandardServer &server, const QTemporaryDir &keys);
};

void LitmusTest::passes_data()
{
    QTest::addColumn<bool>("login");
    QTest::addColumn<bool>("tls");
    QTest::newRow("as it is") << false << false;
    QTest::newRow("with a login") << true << false;
    QTest::newRow("over TLS") << true << true;
}

void LitmusTest::serveByTls(const StandardServer &server, const QTemporaryDir &keys)
{
    server.profile->sslMode = Qt::Checked;
    server.profile->privateKeyFile = keys.filePath(QStringLiteral("key"));
    server.profile->publicKeyFile = keys.filePath(QStringLiteral("certificate"));
    const QString make = QStringLiteral("req -x509 -newkey rsa:2048 -nodes -days 2"
                                        " -subj /CN=127.0.0.1 -keyout key -out certificate");
    QProcess openssl;
    openssl.setWorkingDirectory(keys.path());
    openssl.start(QStringLiteral("openssl"), make.split(QLatin1Char(' ')));
    QVERIFY(openssl.waitForFinished() && openssl.exitCode() == 0);
    QVERIFY(server.server->init());
}

void LitmusTest::passes()
{
    QFETCH(const bool, login);
    QFETCH(const bool, tls);
    const QString program = QStandardPaths::findExecutable(QStringLiteral("litmus"));
    if (program.isEmpty())
        QSKIP("litmus is not installed");
    const QTemporaryDir folder;
    StandardServer server(standard::withDav(standard::fileRoutes()));
    server.profile->enableUpload = Qt::Checked;
    server.profile->enableDelete = Qt::Checked;
    if (tls)
        serveByTls(server, folder);
    const QString scheme = tls ? QStringLiteral("https") : QStringLiteral("http");
    QStringList arguments{ QStringLiteral("-k"),
                           QStringLiteral("%1://127.0.0.1:%2/").arg(scheme).arg(server.port()) };
    if (login) {
        server.profile->authMode = AuthBasic;
        server.profile->users = QStringList{ QStringLiteral("a:b") };
        arguments << QStringLiteral("a") << QStringLiteral("b");
    }

    QProcess litmus;
    litmus.setWorkingDirectory(folder.path());
    litmus.setProcessChannelMode(QProcess::MergedChannels);
    litmus.start(program, arguments);
    QVERIFY(litmus.waitForStarted());
    QTRY_COMPARE_WITH_TIMEOUT(litmus.state(), QProcess::NotRunning, 60000);

    const QString output = QString::fromLocal8Bit(litmus.readAll());
    // The 104 cases of its version 0.13.
    for (const int tests : { 16, 13, 30, 41, 4 }) {
        const QString summary = QStringLiteral("of %1 tests run: %1 passed, 0 failed").arg(tests);
        QVERIFY2(output.contains(summary), qPrintable(output));
    }
    QVERIFY2(!output.contains(QLatin1String("WARNING")), qPrintable(output));
}

QTEST_GUILESS_MAIN(LitmusTest)
#include "tst_litmus.moc"
