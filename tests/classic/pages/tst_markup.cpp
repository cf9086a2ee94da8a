#include "classic/pages/Markup.h"
#include "classic/pages/Pages.h"
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
    void encodesPathsLikeTheToolkit();
    void escapesWhatWouldBeMarkup();
    void roundsSizesDown();
    void writesDatesLikeTheLocale_data();
    void writesDatesLikeTheLocale();
    void appletPage_data();
    void appletPage();
    void launchDescriptor_data();
    void launchDescriptor();
};

void TestMarkup::encodesPathsLikeTheToolkit()
{
    const auto check = [](const QString &name) {
        const QString path = QLatin1String("/x/") + name;
        QUrl url;
        url.setPath(path, QUrl::DecodedMode);
        QByteArray encoded;
        addEncodedPath(&encoded, path.toUtf8());
        QCOMPARE(QString::fromLatin1(encoded), url.path(QUrl::FullyEncoded));
    };

    for (ushort code = 1; code < 0xd800; ++code)
        check(QChar(code));
    check(QStringLiteral("100%25 [a] 'b' \"c\" <d> e&f#g?h;i=j+k"));
    check(QString::fromUtf8("\xf0\x9f\x93\xb7 photo.jpg"));
}

void TestMarkup::escapesWhatWouldBeMarkup()
{
    QByteArray out("=");
    addEscaped(&out, "<script a=\"b\">'&amp;'\n");
    QCOMPARE(out, QByteArray("=&lt;script a=&quot;b&quot;&gt;'&amp;'\n"));
    QCOMPARE(toAscii(QString::fromUtf8("\xc3\x9f\xe2\x80\xaf"
                                       "5")),
             QByteArray("? 5"));
}

void TestMarkup::roundsSizesDown()
{
    const auto text = [](qint64 bytes) {
        QByteArray out;
        addSize(&out, bytes);
        return out;
    };
    QCOMPARE(text(0), QByteArray("0Byte"));
    QCOMPARE(text(1024), QByteArray("1024Byte"));
    QCOMPARE(text(1025), QByteArray("1KB"));
    QCOMPARE(text(1048576), QByteArray("1024KB"));
    QCOMPARE(text(1048577), QByteArray("1MB"));
    QCOMPARE(text(1073741824), QByteArray("1024MB"));
    QCOMPARE(text(5368709120), QByteArray("5GB"));
}

void TestMarkup::writesDatesLikeTheLocale_data()
{
    QTest::addColumn<QByteArray>("zone");
    QTest::addColumn<QLocale>("locale");
    QTest::newRow("C, UTC") << QByteArray("UTC") << QLocale::c();
    QTest::newRow("American, New York")
        << QByteArray("America/New_York") << QLocale(QStringLiteral("en_US"));
    QTest::newRow("German, Berlin")
        << QByteArray("Europe/Berlin") << QLocale(QStringLiteral("de_DE"));
    QTest::newRow("half hours") << QByteArray("Australia/Adelaide")
                                << QLocale(QStringLiteral("en_AU"));
}

void TestMarkup::writesDatesLikeTheLocale()
{
    QFETCH(QByteArray, zone);
    QFETCH(QLocale, locale);
    qputenv("TZ", zone);
    tzset();
    QLocale::setDefault(locale);

    ShortDates dates;
    constexpr qint64 first = 1000000000;
    constexpr qint64 step = 7654321; // about 89 days: both halves of the year, all hours
    for (qint64 seconds = first; seconds < first + 150 * step; seconds += step) {
        const qint64 msecs = seconds * 1000 + 999;
        const QDateTime time = QDateTime::fromMSecsSinceEpoch(msecs);
        const QByteArray expected = toAscii(QLocale().toString(time, QLocale::ShortFormat));
        QCOMPARE(dates.text(msecs), expected);
        QCOMPARE(dates.text(msecs), expected); // from memory
    }
}

void TestMarkup::appletPage_data()
{
    QTest::addColumn<QByteArray>("path");
    QTest::addColumn<QByteArray>("credentials");
    QTest::addColumn<QByteArray>("link");
    QTest::addColumn<QByteArray>("parameters");
    const auto row = [](const char *name, const char *path, const char *credentials,
                        const char *link, const char *parameters) {
        QTest::newRow(name) << QByteArray(path) << QByteArray(credentials) << QByteArray(link)
                            << QByteArray(parameters);
    };
    row("at the root there is no path", "/", "", "/", "");
    row("a plus in the path is a blank", "/My+Photos", "", "/My Photos",
        "<param name=Path value=\"/My Photos/\">");
    row("credentials are handed on", "/docs/", "ann:\"x", "/docs/",
        "<param name=Path value=\"/docs/\"><param name=Aut value=\"ann:&quot;x\">");
}

void TestMarkup::appletPage()
{
    QFETCH(QByteArray, path);
    QFETCH(QByteArray, credentials);
    QFETCH(QByteArray, link);
    QFETCH(QByteArray, parameters);
    const QByteArray expected =
        "<html><head><title>Quillon</title></head><body onResize=\"resize()\" onLoad=\"resize()\" "
        "topmargin=\"0\" leftmargin=\"0\" marginwidth=\"0\" marginheight=\"0\">"
        "<script type=\"text/javascript\">function resize(){var w,h;var mw=1600,mh=1200;"
        "if (navigator.appName.indexOf(\"Microsoft\") != -1){w=document.body.clientWidth;"
        "h=document.body.clientHeight;}else{w=window.innerWidth;h=window.innerHeight;}"
        "if(w>mw)w=mw;if(h>mh)h=mh;h=h-40;document.mc.setSize(w,h);window.scroll(0,0);}"
        "window.onResize=resize;window.onLoad=resize;document.body.style.overflow='hidden';"
        "</script><a href=\""
        + link
        + "\"><-Back</a>&nbsp;&nbsp;&nbsp;File manager for copy selected files and folders<br>"
          "<APPLET name=\"mc\" archive=\"/_i/QuillonClient.jar\" "
          "code=\"quillonclient/QuillonApplet.class\" width=1600 height=1200>"
          "<param name=Cookie value=\"42\">"
        + parameters + "Applet not supported in this browser.</APPLET></body></html>";
    QCOMPARE(::appletPage({ path, 42, credentials }), expected);
}

void TestMarkup::launchDescriptor_data()
{
    QTest::addColumn<QByteArray>("path");
    QTest::addColumn<QByteArray>("credentials");
    QTest::addColumn<QByteArray>("arguments");
    QTest::newRow("at the root there is no path")
        << QByteArray("/") << QByteArray() << QByteArray();
    QTest::newRow("a path always gets one more slash")
        << QByteArray("/docs/") << QByteArray("ann:x")
        << QByteArray("<argument>Path=/docs//</argument><argument>Aut=ann:x</argument>");
}

void TestMarkup::launchDescriptor()
{
    QFETCH(QByteArray, path);
    QFETCH(QByteArray, credentials);
    QFETCH(QByteArray, arguments);
    const QByteArray expected =
        "<?xml version=\"1.0\" encoding=\"utf-8\"?><jnlp spec=\"1.0+\" codebase=\"https://h:1/\">"
        "<information><title>Quillon</title><vendor>Tessaroy, Inc.</vendor>"
        "<homepage href=\"https://quillon.example/\"/>"
        "<description>Quillon client filemanager</description></information>"
        "<security><all-permissions/></security><resources>"
        "<j2se version=\"1.5+\" href=\"https://java.example/\" java-vm-args=\"-client\">"
        "<property name=\"http.keepAlive\" value=\"true\"/></j2se>"
        "<jar href=\"/_i/QuillonClient.jar\" main=\"true\" download=\"eager\" /></resources>"
        "<application-desc name=\"Quillon\" main-class=\"quillonclient.QuillonApplet\">"
        "<argument>URL=https://h:1/</argument><argument>Cookie=42</argument>"
        + arguments + "</application-desc></jnlp>";
    QCOMPARE(::launchDescriptor("https://h:1/", { path, 42, credentials }), expected);
}

QTEST_GUILESS_MAIN(TestMarkup)
#include "tst_markup.moc"
