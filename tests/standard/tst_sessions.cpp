#include "server/LoginSessions.h"
#include "tests/standard/StandardTest.h"

namespace standard {

/// Browsers that log in by the page.
class TestSessions : public QObject
{
    Q_OBJECT
private Q_SLOTS:
    void tableIsBounded();
};

void TestSessions::tableIsBounded()
{
    using std::chrono::seconds;
    const StandardServer server;
    server.askForLogin("b:2");
    const Profile &profile = *server.profile;
    LoginSessions table;
    const QByteArray mark = table.markOf(profile, "b");
    const auto now = LoginSessions::Clock::now();
    const QByteArray used = table.begin("b", mark, now);
    auto request = table.use(used, profile, now);
    QVERIFY(request && !LoginSessions().use(used, profile, now));
    const QByteArray first = table.begin("b", mark, now);
    const QByteArray second = table.begin("b", mark, now);
    QVERIFY(table.use(first, profile, now));
    for (int i = 3; i <= LoginSessions::maxSessions; ++i)
        QVERIFY(table.begin("b", mark, now) != first);
    QVERIFY(!table.use(second, profile, now) && table.use(first, profile, now));
    // Whatever a request takes, its session does not idle meanwhile.
    const auto later = now + seconds(2 * profile.sessionLifetime);
    QVERIFY(table.use(used, profile, later) && !table.use(first, profile, later));
    request.reset();
    QVERIFY(table.use(used, profile, now));
    QVERIFY(!table.use(used, profile, later));
}

} // namespace standard

QTEST_GUILESS_MAIN(standard::TestSessions)
#include "tst_sessions.moc"
