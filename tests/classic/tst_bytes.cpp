#include "classic/http/HeadScan.h"
#include "classic/http/RequestTarget.h"
#include "classic/listing/Filter.h"
#include "classic/pages/Markup.h"
#include "classic/pages/ShortDates.h"
#include "files/Entry.h"
#include "tests/support/Data.h"

#include <QDateTime>
#include <QElapsedTimer>
#include <QLocale>
#include <QTest>
#include <QUrl>
#include <QUrlQuery>

#include <ctime>

Q_DECLARE_METATYPE(RequestTarget::Form)

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

/// What parses and writes bytes alone.
class TestBytes : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void scansHeads_data();
    void scansHeads();
    void decidesWhenToHandle_data();
    void decidesWhenToHandle();
    void takesTargetsApart_data();
    void takesTargetsApart();
    void filters_data();
    void filters();
    void manyStarsDontTryAllCombinations();
    void encodesEscapesAndRounds();
    void writesDatesLikeTheLocale();
};

void TestBytes::scansHeads_data()
{
    columnsOf<QByteArray, qint64, bool>("bytes", "length", "doubtful");

    const auto row = [](const char *name, const QByteArray &lines, qint64 length, bool doubtful) {
        QTest::newRow(name) << "PUT /Content-Length: 7 X\r\n" + lines + "\r\n"
                            << length << doubtful;
    };
    row("any case, any blanks", "cOnTent-lenGTH:\t 12 \r\n", 12, false);
    row("beyond 2 GiB", "Content-Length: 5000000000\r\n", 5000000000, false);
    row("negative", "Content-Length: -5\r\n", 0, true);
    row("at the edge of 64 bit", "Content-Length: 9223372036854775807\r\n", 0, true);
    row("empty", "Content-Length:\r\n", 0, true);
    row("in the body only", "\r\nContent-Length: 9\r\n", 0, false);
}

void TestBytes::scansHeads()
{
    QFETCH(QByteArray, bytes);
    const HeadScan scan = scanHead(bytes);
    QCOMPARE(scan.end, int(bytes.indexOf("\r\n\r\n")) + 4);
    QTEST(scan.contentLength, "length");
    QTEST(scan.lengthDoubtful, "doubtful");
}

void TestBytes::decidesWhenToHandle_data()
{
    const QByteArray head("POST / HTTP/1.1\r\nContent-Length: 100\r\n\r\n"); // 40 bytes
    columnsOf<QByteArray, bool, bool>("bytes", "firstLook", "expected");

    row("body short by one", head + QByteArray(99, 'x'), true, false);
    // Later looks: the window reaches from 40 bytes before fill - 100 as far as the buffer
    // holds, so that a blank line near the window's start ends the wait early.
    row("later, blank line not in the window", head + QByteArray(79, 'x'), false, false);
    row("later, window begins at the blank line",
        "POST / HTTP/1.1\r\nX: " + QByteArray(120, 'x') + "\r\nContent-Length: 100\r\n\r\n"
            + QByteArray(76, 'x'),
        false, true);
    row("later, length beyond the buffer", head + QByteArray(30, 'x'), false, false);
    row("P without a length", "PROPFIND / HTTP/1.1\r\n\r\n", true, true);
}

void TestBytes::decidesWhenToHandle()
{
    QFETCH(QByteArray, bytes);
    QFETCH(bool, firstLook);
    QTEST(canHandle(bytes, scanHead(bytes), firstLook), "expected");
}

void TestBytes::takesTargetsApart_data()
{
    using Form = RequestTarget::Form;
    columnsOf<QByteArray, Form, QByteArray, QByteArray>("target", "form", "path", "query");

    row("escapes", "/a%20b%2Fc", Form::Path, "/a b/c", "");
    row("plus stays in a path", "/a+b", Form::Path, "/a+b", "");
    row("two slashes are no host", "//x/y", Form::Path, "//x/y", "");
    row("query", "/a?b=c?d", Form::Path, "/a", "b=c?d");
    row("host and query", "http://host?q", Form::Empty, "", "q");
    row("a URL inside a path", "/x?u=http://h/", Form::Path, "/x", "u=http://h/");
    row("empty", "", Form::Empty, "", "");
    row("query alone", "?a=b", Form::Empty, "", "a=b");
    row("asterisk", "*", Form::Asterisk, "*", "");
    row("no slash", "backup/x", Form::Malformed, "backup/x", "");
    row("climbing sibling", "-private/x", Form::Malformed, "-private/x", "");
    row("fragment", "/a#b?c", Form::Path, "/a", "");
}

void TestBytes::takesTargetsApart()
{
    QFETCH(QByteArray, target);
    const RequestTarget parsed = parseTarget(target);
    QTEST(parsed.form, "form");
    QTEST(parsed.path.toUtf8(), "path");
    QTEST(parsed.query, "query");
}

void TestBytes::filters_data()
{
    columnsOf<QByteArray, QString, qint64, bool>("query", "name", "size", "accepted");
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
    size("zero is a limit", "s1=0", 1, false);
    size("what is no number is no limit", "s1=abc&s2=99999999999", 5, true);
    size("3 GiB compare as a negative number", "s1=0&s1o=<", 3 * GiB, true);
    time("not before the limit", "201003071234&to=<", false);
    time("minutes of one digit", "20100307129&to=<", false);
    time("same hour", "201003071200&to==&tu=2", true);
    time("unit 3 is the month, not the day", "201003010000&to==&tu=3", true);
    time("an unknown unit leaves the time", "201003071234&to==&tu=5", false);
    time("a date that does not exist", "201002301200&to=<", true);
    match("in the middle of a name, in any case", "*.JPG", "a.jpg.txt", true);
    match("a line break is a character", "a?c", "a\nc", true);
    match("a negated set", "x[^ab]", "xa", false);
    match("an exclamation mark is a member", "x[!a]", "xa", true);
    match("a backslash is itself", "a\\*c[\\]", "a\\bc\\", true);
    match("signs of expressions are themselves", "(a)+{1}|^$", "(a)+{1}|^$", true);
    match("a set without end matches nothing", "a*[b", "a[b", false);
    match("letters beyond ASCII", "\xc3\x84*", "\xc3\xa4rger", true);
}

void TestBytes::filters()
{
    QFETCH(QByteArray, query);
    QFETCH(QString, name);
    QFETCH(qint64, size);
    QTEST(accepts(query, name, size), "accepted");
}

void TestBytes::manyStarsDontTryAllCombinations()
{
    QElapsedTimer clock;
    clock.start();
    for (int i = 0; i < 100; ++i)
        QVERIFY(!accepts("p=" + QByteArray("a*").repeated(200) + 'b', QString(250, u'a')));
    QVERIFY(clock.elapsed() < 1000);
}

void TestBytes::encodesEscapesAndRounds()
{
    QString path = QString::fromUtf8("/100%25 [a] \xf0\x9f\x93\xb7");
    for (ushort code = 1; code < 0x800; ++code)
        path += QChar(code);
    QUrl url;
    url.setPath(path, QUrl::DecodedMode);
    QByteArray out;
    addEncodedPath(&out, path.toUtf8());
    QCOMPARE(out, url.path(QUrl::FullyEncoded).toLatin1());

    addEscaped(&(out = "="), "<script a=\"b\">'&amp;'\n");
    for (const qint64 bytes : { 1024LL, 1025LL, 1048577LL, 1073741824LL, 5368709120LL })
        addSize(&out, bytes);
    QCOMPARE(out, QByteArray("=&lt;script a=&quot;b&quot;&gt;'&amp;'\n1024Byte1KB1MB1024MB5GB"));
}

void TestBytes::writesDatesLikeTheLocale()
{
    const std::pair<const char *, const char *> places[] = { { "UTC", "C" },
                                                             { "America/New_York", "en_US" },
                                                             { "Australia/Adelaide", "de_DE" } };
    for (const auto &[zone, locale] : places) {
        qputenv("TZ", zone);
        tzset();
        QLocale::setDefault(QLocale(QLatin1String(locale)));
        ShortDates dates;
        // Steps of about 89 days: both halves of the year, all hours.
        for (qint64 msecs = 1000000000999; msecs < 2000000000000; msecs += 7654321000) {
            const QDateTime time = QDateTime::fromMSecsSinceEpoch(msecs);
            const QByteArray text = toAscii(QLocale().toString(time, QLocale::ShortFormat));
            QCOMPARE(dates.text(msecs), text);
            QCOMPARE(dates.text(msecs), text); // from memory
        }
    }
}

QTEST_GUILESS_MAIN(TestBytes)
#include "tst_bytes.moc"
