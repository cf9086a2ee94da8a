#include "standard/dav/Routes.h"
#include "tests/standard/StandardTest.h"
#include "tests/support/Litmus.h"

#include <QtTest>

/// Has litmus, where it is installed, try the standard face. It runs beside the event loop that
/// serves it.
class LitmusTest : public QObject
{
    Q_OBJECT
private Q_SLOTS:
    void initTestCase()
    {
        if (!hasProgram(QStringLiteral("litmus")))
            QSKIP("litmus is not installed");
    }
    void passes();
    void passesWithALogin();
    void passesWithALoginOverTls();
};

void LitmusTest::passes()
{
    const StandardServer server({}, standard::withDav(standard::fileRoutes()));
    passesLitmus(QStringLiteral("http://127.0.0.1:%1/").arg(server.port()), {});
}

/// It answers the challenge by Digest.
void LitmusTest::passesWithALogin()
{
    const StandardServer server({}, standard::withDav(standard::fileRoutes()));
    server.askForLogin("a:b");
    passesLitmus(QStringLiteral("http://127.0.0.1:%1/").arg(server.port()),
                 { QStringLiteral("a"), QStringLiteral("b") });
}

void LitmusTest::passesWithALoginOverTls()
{
    const QTemporaryDir keys;
    makeKeys(keys.path());
    const StandardServer server({}, standard::withDav(standard::fileRoutes()));
    server.profile->sslMode = Qt::Checked;
    server.profile->privateKeyFile = keys.filePath(QStringLiteral("key"));
    server.profile->publicKeyFile = keys.filePath(QStringLiteral("certificate"));
    server.askForLogin("a:b");
    QVERIFY(server.server->init());
    passesLitmus(QStringLiteral("https://127.0.0.1:%1/").arg(server.port()),
                 { QStringLiteral("a"), QStringLiteral("b") });
}

QTEST_GUILESS_MAIN(LitmusTest)
#include "tst_litmus.moc"
