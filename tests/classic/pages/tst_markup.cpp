#include "classic/pages/Markup.h"
#include "classic/pages/ShortDates.h"

#include <QDateTime>
#include <QLocale>
#include <QTest>
#include <QUrl>

#include <ctime>

class TestMarkup : public QObject
{
    Q_OBJECT
private Q_SLOTS:
    void encodesEscapesAndRounds();
    void writesDatesLikeTheLocale();
};

void TestMarkup::encodesEscapesAndRounds()
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

void TestMarkup::writesDatesLikeTheLocale()
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

QTEST_GUILESS_MAIN(TestMarkup)
#include "tst_markup.moc"
