#include "server/SessionTable.h"
#include "tests/support/LiveServer.h"

#include <QTest>

using namespace std::chrono_literals;

class TestSessions : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void expiresIdleSessions();
    void aCrowdOfStrangersLogsNobodyOut();
};

void TestSessions::expiresIdleSessions()
{
    const TestHome home;
    Profile profile(home.directories);
    profile.sessionLifetime = 60;
    SessionTable table;
    table.profileEdited(&profile);
    const Session active = table.ofCookie("1");
    const Session fresh = table.ofCookie("2");
    const Session stale = table.ofCookie("3");
    fresh->end();
    stale->end();
    stale->lastSeen -= 120s;
    active->lastSeen -= 120s;

    table.checkSessions();
    QCOMPARE(table.sessionCount(), 2);
    QVERIFY(!table.holds(stale));
    QVERIFY(table.holds(active));
}

void TestSessions::aCrowdOfStrangersLogsNobodyOut()
{
    SessionTable table;
    const Session member = table.ofCookie("0");
    member->password = QStringLiteral("secret");
    member->end();
    const Session active = table.ofCookie("1");
    for (int id = 2; id <= SessionTable::maxSessions + 5; ++id)
        table.ofCookie(QByteArray::number(id))->end();
    QVERIFY(table.sessionCount() <= SessionTable::maxSessions);
    QVERIFY(table.holds(member));
    QVERIFY(table.holds(active));
}

QTEST_GUILESS_MAIN(TestSessions)
#include "tst_sessions.moc"
