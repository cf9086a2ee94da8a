#include "desktop/look/ColorDialog.h"
#include "desktop/look/LookDialog.h"
#include "desktop/look/StartUp.h"
#include "desktop/look/StylePage.h"
#include "desktop/widgets/Labels.h"
#include "tests/desktop/Widgets.h"

#include <QListWidget>
#include <QPushButton>
#include <QSettings>
#include <QSpinBox>
#include <QStackedWidget>
#include <QStyle>
#include <QTemporaryDir>

class tst_Look : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void init();
    void cleanup();

    void storedLook_data();
    void storedLook();
    void offersTheStyles();
    void switchesTheStyleAtOnce();
    void readsColorsOfTheirStyleOnly();
    void storesColors();
    void setsTheFontSize();
    void warnsThatColorsDoNothing();
    void saysWhenItCantSave();
    void shortensLinks();
    void fitsSmallScreens_data() { SmallScreens::addSizes(); }
    void fitsSmallScreens();

private:
    void open();
    void turnTo(int row) { dialog->findChild<QListWidget *>()->setCurrentRow(row); }
    QWidget *page() const { return dialog->findChild<QStackedWidget *>()->currentWidget(); }
    void chooseStyle(const char *name);
    void chooseColor(const char *button, const QColor &color);
    static QColor shown(QPalette::ColorRole role) { return QApplication::palette().color(role); }

    QTemporaryDir folder;
    QFont font;
    QString originalStyle;
    std::unique_ptr<LookDialog> dialog;
};

void tst_Look::initTestCase()
{
    Q_INIT_RESOURCE(icons);
    QCoreApplication::setOrganizationName(QStringLiteral("Quillon-Test"));
    QCoreApplication::setApplicationName(QStringLiteral("Look"));
    QSettings::setPath(QSettings::NativeFormat, QSettings::UserScope, folder.path());
    font = QApplication::font();
    originalStyle = StylePage::currentStyle();
    StylePage::DefaultStyle = QStringLiteral("other");
}

void tst_Look::init()
{
    QSettings().clear();
    open();
}

void tst_Look::cleanup()
{
    dialog.reset();
    QApplication::setStyle(originalStyle);
    QApplication::setPalette(QApplication::style()->standardPalette());
    QApplication::setFont(font);
    StylePage::DefaultStyle = QStringLiteral("other");
}

void tst_Look::open()
{
    dialog = std::make_unique<LookDialog>(nullptr);
    dialog->show();
    QVERIFY(QTest::qWaitForWindowActive(dialog.get()));
}

void tst_Look::chooseStyle(const char *name)
{
    turnTo(0);
    page()->findChild<QComboBox *>()->setCurrentText(QString::fromLatin1(name));
}

void tst_Look::chooseColor(const char *button, const QColor &color)
{
    turnTo(1);
    inModal<ColorDialog>([&] { click(page(), button); },
                         [&](ColorDialog *chooser) {
                             auto *code = named<QLineEdit>(chooser, "Color:");
                             retype(code, QStringLiteral("#12"));
                             QVERIFY(!named<QPushButton>(chooser, "OK")->isEnabled());
                             retype(code, color.name());
                             QTest::keyClick(chooser, Qt::Key_Return);
                         });
}

void tst_Look::storedLook_data()
{
    QTest::addColumn<QString>("style");
    QTest::addColumn<QVariant>("size");
    QTest::addColumn<bool>("taken");
    QTest::addColumn<int>("points"); ///< 0: as before
    QTest::newRow("a style and a size") << "windows" << QVariant(17) << true << 17;
    QTest::newRow("without a style nothing counts") << "" << QVariant(17) << false << 0;
    QTest::newRow("a size past all use") << "windows" << QVariant(4000) << true << 0;
    QTest::newRow("a style that is missing") << "no such style" << QVariant() << false << 0;
}

void tst_Look::storedLook()
{
    QFETCH(QString, style);
    QFETCH(QVariant, size);
    QFETCH(bool, taken);
    QFETCH(int, points);
    QSettings settings;
    settings.setValue(QStringLiteral("style"), style);
    settings.setValue(QStringLiteral("Fsize"), size);
    settings.setValue(QStringLiteral("windows/Ctext"), QColor(Qt::red));

    applyStoredLook();
    QCOMPARE(StylePage::DefaultStyle, originalStyle);
    QCOMPARE(StylePage::currentStyle(), taken ? style : originalStyle);
    QCOMPARE(shown(QPalette::Text) == QColor(Qt::red), taken);
    QCOMPARE(QApplication::font().pointSize(), points > 0 ? points : font.pointSize());
}

void tst_Look::offersTheStyles()
{
    auto *box = page()->findChild<QComboBox *>();
    QStringList offered;
    for (int row = 0; row < box->count(); ++row)
        offered.append(box->itemText(row));
    QCOMPARE(offered.join(QLatin1Char(' ')),
             QStringLiteral("plastique cleanlooks windows motif cde"));

    chooseStyle("windows");
    box->addItem(QStringLiteral("nosuch"));
    QCOMPARE(boxText([this] { chooseStyle("nosuch"); }),
             QStringLiteral("nosuch style not available on this system."));
    QCOMPARE(StylePage::currentStyle(), QStringLiteral("windows"));
    QCOMPARE(box->currentText(), QStringLiteral("windows"));
}

void tst_Look::switchesTheStyleAtOnce()
{
    QSettings settings;
    const QColor before = shown(QPalette::Window);
    settings.setValue(QStringLiteral("windows/Cwbase"), QColor(Qt::red));
    QVERIFY(!named<QPushButton>(dialog.get(), "&Apply")->isEnabled());
    chooseStyle("windows");
    QCOMPARE(StylePage::currentStyle(), QStringLiteral("windows"));
    QCOMPARE(shown(QPalette::Window), QColor(Qt::red));
    QVERIFY(!settings.contains(QStringLiteral("style")));
    click(dialog.get(), "&Cancel");
    QCOMPARE(StylePage::currentStyle(), originalStyle);
    QCOMPARE(shown(QPalette::Window), before);

    open();
    chooseStyle("windows");
    const auto *apply = named<QPushButton>(dialog.get(), "&Apply");
    QVERIFY(apply->isEnabled());
    click(dialog.get(), "&Apply");
    QVERIFY(!apply->isEnabled());
    QTest::keyClick(dialog.get(), Qt::Key_Escape);
    QCOMPARE(settings.value(QStringLiteral("style")).toString(), QStringLiteral("windows"));
    QCOMPARE(StylePage::currentStyle(), QStringLiteral("windows"));
    QCOMPARE(shown(QPalette::Window), QColor(Qt::red));
}

void tst_Look::readsColorsOfTheirStyleOnly()
{
    const QList<QPair<const char *, QPalette::ColorRole>> keys{
        { "Cbase", QPalette::Base },     { "Cwbase", QPalette::Window },
        { "Ctext", QPalette::Text },     { "Cbtext", QPalette::ButtonText },
        { "Cbutton", QPalette::Button },
    };
    QSettings settings;
    for (const auto &key : keys) {
        settings.clear();
        settings.setValue(QLatin1String("motif/") + QLatin1String(key.first), QColor(Qt::red));
        settings.setValue(QStringLiteral("cde/Cbutton"), QStringLiteral("junk"));
        const QPalette before(Qt::gray);
        QPalette palette = before;
        StylePage::setPalette(&palette, &settings, QStringLiteral("cde"));
        QCOMPARE(palette, before);

        StylePage::setPalette(&palette, &settings, QStringLiteral("motif"));
        for (const auto &other : keys) {
            for (auto group : { QPalette::Active, QPalette::Inactive, QPalette::Disabled })
                QCOMPARE(palette.color(group, other.second) == QColor(Qt::red), other == key);
        }
        QCOMPARE(palette.color(QPalette::WindowText), before.color(QPalette::WindowText));
    }
}

void tst_Look::storesColors()
{
    chooseStyle("windows");
    chooseColor("Background", Qt::yellow);
    chooseColor("Text", Qt::blue);
    chooseColor("Button", Qt::cyan);
    QVERIFY(shown(QPalette::Window) != QColor(Qt::yellow));
    click(dialog.get(), "&Apply");
    QCOMPARE(shown(QPalette::Window), QColor(Qt::yellow));

    const auto stored = [](const char *key) {
        return QSettings().value(QLatin1String("windows/") + QLatin1String(key)).value<QColor>();
    };
    QCOMPARE(stored("Cbase"), QColor(Qt::yellow));
    QCOMPARE(stored("Cwbase"), QColor(Qt::yellow));
    QCOMPARE(stored("Ctext"), QColor(Qt::blue));
    QCOMPARE(stored("Cbtext"), QColor(Qt::blue));
    QCOMPARE(stored("Cbutton"), QColor(Qt::cyan));

    click(page(), "Set to default");
    click(dialog.get(), "&Apply");
    const QColor own = QApplication::style()->standardPalette().color(QPalette::Button);
    QCOMPARE(stored("Cbutton"), own);

    // The style of the system keeps its colours.
    chooseColor("Button", Qt::cyan);
    StylePage::DefaultStyle = QStringLiteral("Windows");
    click(dialog.get(), "&Apply");
    QCOMPARE(shown(QPalette::Button), own);
}

void tst_Look::setsTheFontSize()
{
    const QList<QPair<const char *, int>> cases{
        { "3", 3 }, { "24", 24 }, { "2", 3 }, { "25", 3 }, // the 5 is refused
    };
    for (const auto &typed : cases) {
        QApplication::setFont(font);
        open();
        turnTo(2);
        auto *size = named<QSpinBox>(page(), "Size:");
        QCOMPARE(size->value(), QApplication::font().pointSize());
        retype(size, QLatin1String(typed.first));
        QTest::keyClick(size, Qt::Key_Tab);
        click(dialog.get(), "&Apply");
        QCOMPARE(QApplication::font().pointSize(), typed.second);
        QCOMPARE(QSettings().value(QStringLiteral("Fsize")).toInt(), typed.second);
    }
    dialog->QWidget::close();
    QCOMPARE(QSettings().value(QStringLiteral("lastP")).toInt(), 2);
    open();
    QCOMPARE(dialog->findChild<QListWidget *>()->currentRow(), 2);
}

void tst_Look::warnsThatColorsDoNothing()
{
    turnTo(1); // another style: no box
    turnTo(0);
    StylePage::DefaultStyle = originalStyle;
    QCOMPARE(boxText([this] { turnTo(1); }),
             QStringLiteral("Color settings not working with %1 style.").arg(originalStyle));
}

void tst_Look::saysWhenItCantSave()
{
    const QString file = QSettings().fileName();
    QDir().mkpath(QFileInfo(file).path());
    QFile::remove(file);
    QVERIFY(QDir().mkdir(file)); // not even root writes there
    open();
    chooseStyle("windows");
    QCOMPARE(boxText([this] { click(dialog.get(), "&Apply"); }),
             QLatin1String("Can't write file: ") + file);
    QVERIFY(QDir().rmdir(file));
}

void tst_Look::shortensLinks()
{
    StateLinkLabel row(QIcon(QStringLiteral(":/icons/play.png")), QIcon(), nullptr);
    LinkLabel &label = *row.link();
    label.setLink(QLatin1String("/home/<b>&/") + QString(200, QLatin1Char('x')),
                  QStringLiteral("http://host/?a=\"b\"&c"));
    row.resize(400, 44);
    row.show();
    QVERIFY(label.minimumSizeHint().width() <= 400);
    QVERIFY(label.text().contains(QLatin1String("/home/&lt;b&gt;&amp;/")));
    QVERIFY(label.text().contains(QChar(0x2026)));

    QStringList followed;
    connect(&label, &QLabel::linkActivated, &label,
            [&](const QString &link) { followed.append(link); });
    QTest::mouseClick(&label, Qt::LeftButton, {}, QPoint(20, 22));
    QTest::keyClick(&label, Qt::Key_Return);
    QCOMPARE(followed.count(QStringLiteral("http://host/?a=\"b\"&c")), 2);
}

void tst_Look::fitsSmallScreens()
{
    QFETCH(QSize, size);
    for (int row = 0; row < 3; ++row) {
        turnTo(row);
        const QString picture = QStringLiteral("look-%1").arg(row);
        QCOMPARE(SmallScreens::faultsAt(dialog.get(), size, picture), QByteArray());
    }
    ColorDialog chooser(QStringLiteral("Text"), Qt::red, nullptr);
    chooser.show();
    QCOMPARE(SmallScreens::faultsAt(&chooser, size, QStringLiteral("color")), QByteArray());
}

QTEST_MAIN(tst_Look)
#include "tst_look.moc"
