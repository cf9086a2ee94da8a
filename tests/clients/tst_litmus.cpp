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
    QTest::addColumn<bool>("guarded");
    QTest::newRow("as it is") << false;
    QTest::newRow("with a login, over TLS") << true;
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
    QFETCH(const bool, guarded);
    if (!hasProgram(QStringLiteral("litmus")))
        QSKIP("litmus is not installed");
    const QTemporaryDir folder;
    StandardServer server(standard::withDav(standard::fileRoutes()));
    const QString address = QStringLiteral("://127.0.0.1:%1/").arg(server.port());
    if (!guarded)
        return passesLitmus(QLatin1String("http") + address, {});
    serveByTls(server, folder);
    server.profile->authMode = AuthBasic;
    server.profile->users = QStringList{ QStringLiteral("a:b") };
    passesLitmus(QLatin1String("https") + address, { QStringLiteral("a"), QStringLiteral("b") });
}

QTEST_GUILESS_MAIN(LitmusTest)
#include "tst_litmus.moc"
