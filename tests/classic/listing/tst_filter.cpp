#include "classic/listing/Filter.h"
#include "files/Entry.h"

#include <QDateTime>
#include <QElapsedTimer>
#include <QTest>
#include <QUrlQuery>

namespace {

/// What the filter of `query` says of a file of 2010-03-07 12:34:56 local time.
bool accepts(const QByteArray &query, const QString &name, qint64 size = 0)
{
    EntryFacts facts;
    facts.size = size;
    facts.seconds = QDateTime(QDate(2010, 3, 7), QTime(12, 34, 56)).toSecsSinceEpoch();
    Filter filter;
    filter.init(QUrlQuery(QString::fromUtf8(query)));
    return filter.accept(name, facts);
}

} // namespace

class TestFilter : public QObject
{
    Q_OBJECT
private Q_SLOTS:
    void queries_data();
    void queries();
    void manyStarsDontTryAllCombinations();
};

void TestFilter::queries_data()
{
    QTest::addColumn<QByteArray>("query");
    QTest::addColumn<QString>("name");
    QTest::addColumn<qint64>("size");
    QTest::addColumn<bool>("accepted");
    const auto size = [](const char *name, const QByteArray &query, qint64 bytes, bool accepted) {
        QTest::newRow(name) << query << QString() << bytes << accepted;
    };
    const auto time = [&](const char *name, const QByteArray &query, bool accepted) {
        size(name, "t=" + query, 0, accepted);
    };
    const auto match = [](const char *name, const QByteArray &glob, const char *file, bool fits) {
        const QByteArray encoded = glob.toPercentEncoding();
        QTest::newRow(name) << "p=" + encoded << QString::fromUtf8(file) << qint64(0) << fits;
    };
    constexpr qint64 GiB = qint64(1) << 30;

    size("not below the limit", "s1=100&s1o=<", 100, false);
    size("no sign means equal", "s1=100", 100, true);
    size("inside a range", "s1=1000&s1o=>&s2=5000&s2o=<", 4999, true);
    size("zero is a limit", "s1=0", 1, false);
    size("what is no number is no limit", "s1=abc&s2=99999999999", 5, true);
    size("3 GiB compare as a negative number", "s1=0&s1o=<", 3 * GiB, true);
    time("not before the limit", "201003071234&to=<", false);
    time("minutes of one digit", "20100307129&to=<", false);
    time("same minute", "201003071234&to==&tu=1", true);
    time("same hour", "201003071200&to==&tu=2", true);
    time("unit 3 is the month, not the day", "201003010000&to==&tu=3", true);
    time("an unknown unit leaves the time", "201003071234&to==&tu=5", false);
    time("a date that does not exist", "201002301200&to=<", true);
    match("in the middle of a name, in any case", "*.JPG", "a.jpg.txt", true);
    match("a line break is a character", "a?c", "a\nc", true);
    match("a negated set", "x[^ab]", "xa", false);
    match("an exclamation mark is a member", "x[!a]", "xa", true);
    match("an opening bracket as a member", "[[:a]1", "x[1", true);
    match("a backslash is itself", "a\\*c[\\]", "a\\bc\\", true);
    match("signs of expressions are themselves", "(a)+{1}|^$", "(a)+{1}|^$", true);
    match("a set without end matches nothing", "a*[b", "a[b", false);
    match("letters beyond ASCII", "\xc3\x84*", "\xc3\xa4rger", true);
}

void TestFilter::queries()
{
    QFETCH(QByteArray, query);
    QFETCH(QString, name);
    QFETCH(qint64, size);
    QTEST(accepts(query, name, size), "accepted");
}

void TestFilter::manyStarsDontTryAllCombinations()
{
    QElapsedTimer clock;
    clock.start();
    for (int i = 0; i < 100; ++i)
        QVERIFY(!accepts("p=" + QByteArray("a*").repeated(200) + 'b', QString(250, u'a')));
    QVERIFY(clock.elapsed() < 1000);
}

QTEST_APPLESS_MAIN(TestFilter)
#include "tst_filter.moc"
