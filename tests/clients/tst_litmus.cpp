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
};

void LitmusTest::passes_data()
{
    QTest::addColumn<int>("tests");
    QTest::newRow("basic") << 16;
    QTest::newRow("copymove") << 13;
    QTest::newRow("props") << 30;
    QTest::newRow("locks") << 41;
    QTest::newRow("http") << 4;
}

void LitmusTest::passes()
{
    QFETCH(const int, tests);
    const QString program = QStandardPaths::findExecutable(QStringLiteral("litmus"));
    if (program.isEmpty())
        QSKIP("litmus is not installed");
    StandardServer server(standard::withDav(standard::fileRoutes()));
    server.profile->enableUpload = Qt::Checked;
    server.profile->enableDelete = Qt::Checked;

    const QTemporaryDir logs;
    QProcess litmus;
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    environment.insert(QStringLiteral("TESTS"), QString::fromLatin1(QTest::currentDataTag()));
    litmus.setProcessEnvironment(environment);
    litmus.setWorkingDirectory(logs.path());
    litmus.setProcessChannelMode(QProcess::MergedChannels);
    litmus.start(
        program,
        { QStringLiteral("-k"), QStringLiteral("http://127.0.0.1:%1/").arg(server.port()) });
    QVERIFY(litmus.waitForStarted());
    QTRY_COMPARE_WITH_TIMEOUT(litmus.state(), QProcess::NotRunning, 60000);

    const QString output = QString::fromLocal8Bit(litmus.readAll());
    const QString summary = QStringLiteral("of %1 tests run: %1 passed, 0 failed").arg(tests);
    QVERIFY2(output.contains(summary), qPrintable(output));
    QVERIFY2(!output.contains(QLatin1String("WARNING")), qPrintable(output));
}

QTEST_GUILESS_MAIN(LitmusTest)
#include "tst_litmus.moc"
