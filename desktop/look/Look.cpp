#include "desktop/look/Look.h"

#include <QApplication>
#include <QFont>
#include <QSettings>
#include <QStyle>
#include <QStyleFactory>

#include <utility>

namespace {

const QLatin1String styleKey("style");
const QLatin1String fontSizeKey("Fsize");
constexpr int largestFont = 72; // points

struct ColorKey
{
    const char *key;
    QPalette::ColorRole from;
    QPalette::ColorRole into;
};

// In each style's group. What is read is not what was written, on purpose: the fields follow the
// background, and the letters on buttons follow the text.
constexpr ColorKey colorKeys[] = {
    { "Cbase", QPalette::Window, QPalette::Base },
    { "Ctext", QPalette::Text, QPalette::Text },
    { "Cbutton", QPalette::Button, QPalette::Button },
    { "Cwbase", QPalette::Window, QPalette::Window },
    { "Cbtext", QPalette::Text, QPalette::ButtonText },
};

void storeColors(const QPalette &colors, const QString &style, QSettings *settings)
{
    settings->beginGroup(style);
    for (const ColorKey &entry : colorKeys)
        settings->setValue(QLatin1String(entry.key), colors.color(entry.from));
    settings->endGroup();
}

void takeFontSize(const QSettings &settings)
{
    QFont font = QApplication::font();
    const int points = settings.value(fontSizeKey, font.pointSize()).toInt();
    if (points < Look::smallestFont || points > largestFont)
        return;
    font.setPointSize(points);
    QApplication::setFont(font);
}

} // namespace

Look::Look(QString style)
    : systemStyle(std::move(style))
{
    hold();
}

QString Look::currentStyle()
{
    return QApplication::style()->objectName();
}

bool Look::isSystemStyle() const
{
    return currentStyle().compare(systemStyle, Qt::CaseInsensitive) == 0;
}

void Look::takeStored() const
{
    const QSettings settings;
    const QString style = settings.value(styleKey).toString();
    if (style.isEmpty())
        return;
    if (style != systemStyle)
        QApplication::setStyle(style);
    QApplication::setPalette(colorsOf(style));
    takeFontSize(settings);
}

bool Look::tryStyle(const QString &name) const
{
    QStyle *style = QStyleFactory::create(name);
    if (!style)
        return false;
    QApplication::setStyle(style);
    QApplication::setPalette(storedColors());
    return true;
}

QPalette Look::storedColors() const
{
    return colorsOf(currentStyle());
}

QPalette Look::colorsOf(const QString &style)
{
    QPalette palette = QApplication::style()->standardPalette();
    QSettings settings;
    settings.beginGroup(style);
    for (const ColorKey &entry : colorKeys) {
        const auto color = settings.value(QLatin1String(entry.key)).value<QColor>();
        if (color.isValid())
            palette.setColor(QPalette::All, entry.into, color);
    }
    return palette;
}

bool Look::apply(const QPalette &colors, const QFont &font)
{
    QSettings settings;
    settings.setValue(styleKey, currentStyle());
    storeColors(colors, currentStyle(), &settings);
    settings.setValue(fontSizeKey, font.pointSize());

    QApplication::setPalette(isSystemStyle() ? QApplication::style()->standardPalette() : colors);
    QApplication::setFont(font);
    hold();

    settings.sync();
    return settings.status() == QSettings::NoError;
}

QString Look::fileName()
{
    return QSettings().fileName();
}

void Look::hold()
{
    heldStyle = currentStyle();
    heldPalette = QApplication::palette();
}

void Look::bringBack() const
{
    if (currentStyle() == heldStyle)
        return;
    QApplication::setStyle(heldStyle);
    QApplication::setPalette(heldPalette);
}
