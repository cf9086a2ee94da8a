#include "desktop/look/Look.h"

#include "desktop/look/Scheme.h"

#include <QApplication>
#include <QFont>
#include <QSettings>
#include <QStyle>
#include <QStyleFactory>

#include <utility>

namespace {

const QLatin1String styleKey("style");
const QLatin1String fontSizeKey("Fsize");
constexpr double leastContrast = 3; ///< of large letters (WCAG 2.1, 1.4.3)
constexpr int largestFont = 72; // points

// In each style's group. Two more keys are written for programs that read them: "Cbase" says the
// same as "Cwbase", as the fields follow the background.
const QLatin1String backgroundKey("Cwbase");
const QLatin1String fieldKey("Cbase");
const QLatin1String textKey("Ctext");
const QLatin1String buttonTextKey("Cbtext");
const QLatin1String buttonKey("Cbutton");

/// Nothing when the user has chosen none for this style.
std::optional<QPalette> storedScheme(const QString &style)
{
    QSettings settings;
    settings.beginGroup(style);
    const auto stored = [&settings](QLatin1String key, const QColor &otherwise) {
        const auto color = settings.value(key).value<QColor>();
        return color.isValid() ? color : otherwise;
    };
    if (settings.childKeys().isEmpty())
        return {};
    const QPalette now = QApplication::palette();
    SchemeColors colors;
    colors.background = stored(backgroundKey, now.color(QPalette::Window));
    colors.text = stored(textKey, now.color(QPalette::Text));
    colors.buttons = stored(buttonKey, now.color(QPalette::Button));
    QPalette palette = schemeOf(colors);
    palette.setColor(QPalette::All, QPalette::Base, stored(fieldKey, colors.background));
    const QColor onButtons = stored(buttonTextKey, colors.text);
    if (contrast(onButtons, colors.buttons) < leastContrast)
        return palette;
    // What is switched off stays fainter.
    for (const auto group : { QPalette::Active, QPalette::Inactive })
        palette.setColor(group, QPalette::ButtonText, onButtons);
    return palette;
}

void storeColors(const QPalette &colors, const QString &style, QSettings *settings)
{
    settings->beginGroup(style);
    settings->setValue(fieldKey, colors.color(QPalette::Window));
    settings->setValue(backgroundKey, colors.color(QPalette::Window));
    settings->setValue(textKey, colors.color(QPalette::Text));
    settings->setValue(buttonTextKey, colors.color(QPalette::Text));
    settings->setValue(buttonKey, colors.color(QPalette::Button));
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
}

QString Look::currentStyle()
{
    return QApplication::style()->objectName();
}

bool Look::isSystemStyle() const
{
    return currentStyle().compare(systemStyle, Qt::CaseInsensitive) == 0;
}

void Look::takeStored()
{
    const QSettings settings;
    if (!settings.contains(styleKey))
        return;
    takeFontSize(settings);
    const QString style = settings.value(styleKey).toString();
    if (!style.isEmpty() && tryStyle(style))
        hold();
}

bool Look::tryStyle(const QString &name)
{
    const QString wanted = name.isEmpty() ? systemStyle : name;
    if (wanted.compare(currentStyle(), Qt::CaseInsensitive) != 0) {
        QStyle *style = QStyleFactory::create(wanted);
        if (!style)
            return false;
        QApplication::setStyle(style);
    }
    chosen = name;
    // Without a choice of the user it is the desktop that says which colours there are.
    QApplication::setPalette(QPalette());
    if (hasScheme())
        QApplication::setPalette(*storedScheme(currentStyle()));
    return true;
}

bool Look::apply(const std::optional<QPalette> &colors, const QFont &font)
{
    QSettings settings;
    settings.setValue(styleKey, chosen);
    if (colors)
        storeColors(*colors, currentStyle(), &settings);
    else if (!isSystemStyle())
        settings.remove(currentStyle());
    if (font.pointSize() != QApplication::font().pointSize())
        settings.setValue(fontSizeKey, font.pointSize());

    static_cast<void>(tryStyle(chosen));
    QApplication::setFont(font);
    hold();

    settings.sync();
    return settings.status() == QSettings::NoError;
}

bool Look::hasScheme() const
{
    return !isSystemStyle() && storedScheme(currentStyle());
}

QString Look::fileName()
{
    return QSettings().fileName();
}

void Look::hold()
{
    held = chosen;
}

void Look::bringBack()
{
    if (chosen != held)
        static_cast<void>(tryStyle(held));
}
