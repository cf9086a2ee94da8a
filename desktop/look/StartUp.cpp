#include "desktop/look/StartUp.h"

#include "desktop/look/StylePage.h"

#include <QApplication>
#include <QDebug>
#include <QFont>
#include <QLocale>
#include <QPalette>
#include <QSettings>
#include <QStyle>
#include <QTranslator>

namespace {

// Beyond these nobody could set it right again. Points.
constexpr int smallestFont = 3;
constexpr int largestFont = 72;

void applyFontSize(const QSettings &settings)
{
    QFont font = QApplication::font();
    const int points =
        settings.value(QLatin1String(StylePage::fontSizeKey), font.pointSize()).toInt();
    if (points < smallestFont || points > largestFont)
        return;
    font.setPointSize(points);
    QApplication::setFont(font);
}

} // namespace

void applyStoredLook()
{
    QSettings settings;
    StylePage::DefaultStyle = StylePage::currentStyle();
    const QString style = settings.value(QLatin1String(StylePage::styleKey)).toString();
    if (style.isEmpty())
        return;

    if (style != StylePage::DefaultStyle)
        QApplication::setStyle(style);
    QPalette palette = QApplication::style()->standardPalette();
    StylePage::setPalette(&palette, &settings, style);
    QApplication::setPalette(palette);
    applyFontSize(settings);
}

void installTranslators(QCoreApplication *app, const QString &languageFolder)
{
    auto *builtIn = new QTranslator(app);
    // Installed even when it is empty.
    static_cast<void>(builtIn->load(QStringLiteral("C"), QStringLiteral(":/res/lang")));
    QCoreApplication::installTranslator(builtIn);

    auto *own = new QTranslator(app);
    if (own->load(QStringLiteral("lang"), languageFolder)) {
        QCoreApplication::installTranslator(own);
        return;
    }
    qDebug().nospace() << "No translator found for locale=" << QLocale::system().name()
                       << " in dir=" << languageFolder;
}
