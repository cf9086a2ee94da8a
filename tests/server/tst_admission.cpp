#include "server/CrossSite.h"
#include "server/Guesses.h"
#include "tests/support/Data.h"
#include "tests/support/LiveServer.h"

#include <chrono>

using namespace std::chrono_literals;

namespace {

/// Somebody who tries one password after the other, at a time of the test's own.
class Guesser
{
public:
    explicit Guesser(const char *from, QByteArray at = "admin", bool byItself = true)
        : address(QString::fromLatin1(from))
        , account(std::move(at))
        , standsForItself(byItself)
    {
    }

    /// Seconds that the next one has to wait.
    qint64 waits(const Guesses &guesses, Guesses::Clock::time_point now) const
    {
        const auto turn = guesses.turnOf({ address, account, now, standsForItself }, now);
        return std::chrono::duration_cast<std::chrono::seconds>(turn - now).count();
    }
    void fails(Guesses &guesses, Guesses::Clock::time_point now, int times = 1) const
    {
        for (int i = 0; i < times; ++i)
            guesses.noteWrong({ address, account, now, standsForItself }, now);
    }
    void succeeds(Guesses &guesses, Guesses::Clock::time_point now) const
    {
        guesses.noteRight({ address, account, now }, now);
    }

private:
    QHostAddress address;
    QByteArray account;
    bool standsForItself;
};

} // namespace

/// Who may try a password when, and which pages may ask for changes.
class TestAdmission : public QObject
{
    Q_OBJECT
private Q_SLOTS:
    void waitsLongerAndLonger();
    void aCrowdLocksNobodyOut();
    void keepsNoMoreThanItMay();
    void knowsPagesOfOtherSites_data();
    void knowsPagesOfOtherSites();

private:
    const Guesses::Clock::time_point start = Guesses::Clock::now();
};

void TestAdmission::waitsLongerAndLonger()
{
    RecordingSink sink;
    Guesses guesses(&sink);
    const Guesser guesser("2001:db8::1");
    guesser.fails(guesses, start, 4);
    QCOMPARE(guesser.waits(guesses, start), 0);
    QVERIFY(sink.messages.isEmpty());
    for (const int seconds : { 1, 2, 4, 8, 16, 32, 60, 60 }) {
        guesser.fails(guesses, start);
        QCOMPARE(guesser.waits(guesses, start), seconds);
    }
    // One lock-out, one message.
    QCOMPARE(sink.messages.size(), 1);
    QVERIFY(sink.messages.constFirst().contains(QLatin1String("2001:db8::1")));
    // All of its network, at whatever account; not its neighbours.
    QCOMPARE(Guesser("2001:db8::ffff:2", "x").waits(guesses, start + 10s), 50);
    QCOMPARE(Guesser("2001:db8:0:1::1", "x").waits(guesses, start), 0);
    // A login of its own makes no room for further guesses.
    Guesser("2001:db8::1", "own").succeeds(guesses, start);
    QCOMPARE(guesser.waits(guesses, start), 60);
    QCOMPARE(guesser.waits(guesses, start + 1h + 1s), 0);

    const Guesser mapped("::ffff:203.0.113.1");
    mapped.fails(guesses, start, 5);
    QCOMPARE(Guesser("203.0.113.1", "x").waits(guesses, start), 1);
    const Guesser self("127.0.0.1");
    self.fails(guesses, start, 20);
    QCOMPARE(self.waits(guesses, start), 0);
    // Not whoever asks by a proxy here, or by a page in the browser.
    const Guesser other("127.0.0.1", "admin", false);
    other.fails(guesses, start, 20);
    QCOMPARE(other.waits(guesses, start), 60);
    QCOMPARE(self.waits(guesses, start), 0);
}

void TestAdmission::aCrowdLocksNobodyOut()
{
    RecordingSink sink;
    Guesses guesses(&sink);
    const Guesser owner("203.0.113.1");
    owner.succeeds(guesses, start);
    for (int i = 1; i < 100; ++i)
        Guesser(QByteArray("198.51.100." + QByteArray::number(i)).constData())
            .fails(guesses, start);
    QCOMPARE(sink.messages.size(), 1);
    QCOMPARE(owner.waits(guesses, start), 0);
    QCOMPARE(Guesser("203.0.113.2").waits(guesses, start), 60);
    QCOMPARE(Guesser("203.0.113.2").waits(guesses, start + 30min), 60);
    // Who was told to come back, or gave up, has waited meanwhile, once.
    const Guesses::Login late{ QHostAddress(QStringLiteral("203.0.113.3")), "admin", start };
    guesses.noteWaiting(late);
    QCOMPARE(Guesser("203.0.113.3").waits(guesses, start + 40s), 20);
    QCOMPARE(Guesser("203.0.113.3").waits(guesses, start + 1h), 60);
    guesses.begin(late, start + 60s);
    QCOMPARE(Guesser("203.0.113.3").waits(guesses, start + 61s), 60);
    QCOMPARE(Guesser("203.0.113.2", "other").waits(guesses, start), 0);
}

void TestAdmission::keepsNoMoreThanItMay()
{
    RecentCounts counts;
    counts.add("oldest", start);
    counts.add("second", start);
    counts.add("oldest", start + 1s);
    for (int i = 1; i < RecentCounts::maxKept; ++i)
        counts.add(QByteArray::number(i), start + 2s);
    QCOMPARE(counts.of("second", start + 2s).number, 0);
    QCOMPARE(counts.of("oldest", start + 2s).number, 2);
    QCOMPARE(counts.add("oldest", start + 2h), 1);
}

void TestAdmission::knowsPagesOfOtherSites_data()
{
    columnsOf<QByteArray, QByteArray, QByteArray, bool>("fetchSite", "origin", "host", "cross");
    row("no browser", "", "", "a:8080", false);
    row("our own page", "", "http://A:8080", "a:8080", false);
    row("the scheme's port", "", "https://a", "a:443", false);
    row("a proxy changed the host", "same-origin", "https://outside", "inside", false);
    row("typed by the user", "none", "", "a", false);
    row("another site", "", "http://b", "a", true);
    row("another port", "", "http://a:81", "a", true);
    row("another scheme's port", "", "http://a", "a:443", true);
    row("another site without an origin", "cross-site", "", "a", true);
    row("a neighbour's", "same-site", "", "a", true);
    row("one that hides", "", "null", "a", true);
    row("a local page", "", "file://", "a", true);
    row("an extension", "", "moz-extension://0-1", "a", false);
    QVERIFY(!isCrossSite({}, "https://a", "a", true) && isCrossSite({}, "http://a", "a", true));
}

void TestAdmission::knowsPagesOfOtherSites()
{
    QFETCH(const QByteArray, fetchSite);
    QFETCH(const QByteArray, origin);
    QFETCH(const QByteArray, host);
    QTEST(isCrossSite(fetchSite, origin, host, false), "cross");
}

QTEST_GUILESS_MAIN(TestAdmission)
#include "tst_admission.moc"
