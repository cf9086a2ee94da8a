#include "classic/listing/Filter.h"
#include "classic/pages/Entry.h"

#include <QDateTime>
#include <QElapsedTimer>
#include <QTest>
#include <QUrl>
#include <QUrlQuery>

namespace {

Filter makeFilter(const QString &query)
{
    QUrl url;
    url.setQuery(query);
    Filter filter;
    filter.init(url);
    return filter;
}

EntryFacts fileFacts(qint64 size)
{
    const QDateTime modified(QDate(2010, 3, 7), QTime(12, 34, 56, 789));
    EntryFacts facts;
    facts.exists = true;
    facts.size = size;
    facts.modified = modified.toMSecsSinceEpoch();
    return facts;
}

} // namespace

class TestFilter : public QObject
{
    Q_OBJECT
private Q_SLOTS:
    void sizesAndTimes_data();
    void sizesAndTimes();
    void patterns_data();
    void patterns();
    void manyStarsDontTryAllCombinations();
};

void TestFilter::sizesAndTimes_data()
{
    QTest::addColumn<QString>("query");
    QTest::addColumn<qint64>("size");
    QTest::addColumn<bool>("accepted");
    const auto row = [](const char *name, const char *query, qint64 size, bool accepted) {
        QTest::newRow(name) << QString::fromLatin1(query) << size << accepted;
    };
    constexpr qint64 GiB = qint64(1) << 30;

    row("no query", "", 5, true);
    row("below the limit", "s1=100&s1o=<", 99, true);
    row("not below the limit", "s1=100&s1o=<", 100, false);
    row("encoded sign", "s1=100&s1o=%3E", 101, true);
    row("no sign means equal", "s1=100", 100, true);
    row("inside a range", "s1=1000&s1o=>&s2=5000&s2o=<", 4999, true);
    row("above a range", "s1=1000&s1o=>&s2=5000&s2o=<", 5000, false);
    row("zero is a limit", "s1=0", 1, false);
    row("a negative limit is none", "s1=-1", 5, true);
    row("a limit that is no number is none", "s1=abc&s2=99999999999", 5, true);
    row("3 GiB compare as a negative number", "s1=0&s1o=<", 3 * GiB, true);
    row("5 GiB compare as 1 GiB", "s1=1073741824", 5 * GiB, true);

    // The file is of 2010-03-07 12:34:56 local time.
    row("after the limit", "t=201003071234&to=>", 0, true);
    row("not before the limit", "t=201003071234&to=<", 0, false);
    row("minutes of one digit", "t=20100307129&to=<", 0, false);
    row("same minute", "t=201003071234&to==&tu=1", 0, true);
    row("same hour", "t=201003071200&to==&tu=2", 0, true);
    row("unit 3 is the month, not the day", "t=201003010000&to==&tu=3", 0, true);
    row("unit 3 and the day", "t=201003070000&to==&tu=3", 0, false);
    row("same year", "t=201001010000&to==&tu=4", 0, true);
    row("an unknown unit leaves the time", "t=201003071234&to==&tu=5", 0, false);
    row("no sign does not round", "t=201003071234&tu=1", 0, false);
    row("a date that does not exist", "t=201002301200&to=<", 0, true);
}

void TestFilter::sizesAndTimes()
{
    QFETCH(QString, query);
    QFETCH(qint64, size);
    QTEST(makeFilter(query).accept(QStringLiteral("a.txt"), fileFacts(size)), "accepted");
}

void TestFilter::patterns_data()
{
    QTest::addColumn<QString>("pattern");
    QTest::addColumn<QString>("name");
    QTest::addColumn<bool>("accepted");
    const auto row = [](const char *name, const char *pattern, const char *file, bool accepted) {
        QTest::newRow(name) << QString::fromUtf8(pattern) << QString::fromUtf8(file) << accepted;
    };

    row("in the middle of a name", "*.jpg", "a.jpg.txt", true);
    row("a dot is a dot", "*.jpg", "ajpg", false);
    row("in any case", "*.JPG", "a.jpg", true);
    row("without wildcards", "oli", "Holiday", true);
    row("pieces in their order", "b*a", "ab", false);
    row("no character for a question mark", "a?c", "ac", false);
    row("a line break is a character", "a?c", "a\nc", true);
    row("a set", "[ab-d]1", "c1", true);
    row("not in the set", "[ab-d]1", "e1", false);
    row("a negated set", "x[^ab]", "xa", false);
    row("an exclamation mark is a member", "x[!a]", "xa", true);
    row("a bracket and a star as members", "[]*]x", "*x", true);
    row("an opening bracket as a member", "[[:a]1", "x[1", true);
    row("a backslash is itself", "a\\*c", "a\\bc", true);
    row("a backslash is a member", "[\\]1", "\\1", true);
    row("signs of expressions are themselves", "(a)+{1}|^$", "(a)+{1}|^$", true);
    row("a set without end matches nothing", "a*[b", "a[b", false);
    row("a backward range matches nothing", "[z-a]", "z", false);
    row("letters beyond ASCII", "\xc3\x84*", "\xc3\xa4rger", true);
}

void TestFilter::patterns()
{
    QFETCH(QString, pattern);
    QFETCH(QString, name);
    QUrlQuery query;
    query.addQueryItem(QStringLiteral("p"), QString::fromLatin1(QUrl::toPercentEncoding(pattern)));

    QTEST(makeFilter(query.query()).accept(name, fileFacts(0)), "accepted");
}

void TestFilter::manyStarsDontTryAllCombinations()
{
    const QString name(250, QLatin1Char('a'));
    const Filter filter =
        makeFilter(QLatin1String("p=") + QStringLiteral("a*").repeated(200) + QLatin1Char('b'));
    QElapsedTimer clock;
    clock.start();
    for (int i = 0; i < 100; ++i)
        QVERIFY(!filter.accept(name, fileFacts(0)));
    QVERIFY(clock.elapsed() < 1000);
}

QTEST_APPLESS_MAIN(TestFilter)
#include "tst_filter.moc"
