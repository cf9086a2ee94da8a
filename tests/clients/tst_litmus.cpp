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
    makeKeys(keys.path());
    QVERIFY(server.server->init());
}

void LitmusTest::passes()
{
    QFETCH(const bool, login);
    QFETCH(const bool, tls);
    if (!hasProgram(QStringLiteral("litmus")))
        QSKIP("litmus is not installed");
    const QTemporaryDir folder;
    StandardServer server(standard::withDav(standard::fileRoutes()));
    server.profile->enableUpload = Qt::Checked;
    server.profile->enableDelete = Qt::Checked;
    if (tls)
        serveByTls(server, folder);
    const QString scheme = tls ? QStringLiteral("https") : QStringLiteral("http");
    if (login) {
        server.profile->authMode = AuthBasic;
        server.profile->users = QStringList{ QStringLiteral("a:b") };
    }
    passesLitmus(QStringLiteral("%1://127.0.0.1:%2/").arg(scheme).arg(server.port()),
                 login ? QStringList{ QStringLiteral("a"), QStringLiteral("b") } : QStringList());
}

QTEST_GUILESS_MAIN(LitmusTest)
#include "tst_litmus.moc"
