#include "desktop/look/Scheme.h"

#include <algorithm>
#include <array>
#include <cmath>

namespace {

constexpr double readable = 4.5; ///< WCAG 2.1, 1.4.3
constexpr double half = 0.5;

double linear(double channel)
{
    constexpr double nearBlack = 0.04045;
    return channel <= nearBlack ? channel / 12.92 : std::pow((channel + 0.055) / 1.055, 2.4);
}

/// Relative luminance (WCAG 2.1).
double luminance(const QColor &color)
{
    return 0.2126 * linear(color.redF()) + 0.7152 * linear(color.greenF())
        + 0.0722 * linear(color.blueF());
}

QColor mixed(const QColor &one, const QColor &other, double part)
{
    const auto mix = [part](int a, int b) { return int(std::lround(a + (b - a) * part)); };
    return { mix(one.red(), other.red()), mix(one.green(), other.green()),
             mix(one.blue(), other.blue()) };
}

QColor blackOrWhite(const QColor &background)
{
    const QColor black(Qt::black);
    const QColor white(Qt::white);
    return contrast(black, background) > contrast(white, background) ? black : white;
}

/// `color`, as far towards black or white as it takes to be read on `background`.
QColor readableOn(const QColor &background, const QColor &color)
{
    constexpr double step = 0.1;
    QColor found = color;
    for (double part = step; contrast(found, background) < readable && part <= 1; part += step)
        found = mixed(color, blackOrWhite(background), part);
    return found;
}

} // namespace

double contrast(const QColor &one, const QColor &other)
{
    constexpr double flare = 0.05;
    const double a = luminance(one) + flare;
    const double b = luminance(other) + flare;
    return std::max(a, b) / std::min(a, b);
}

QPalette schemeOf(const SchemeColors &colors)
{
    const QColor link(0x1a, 0x6f, 0xc9);
    const QColor visited(0x8a, 0x4b, 0xb0);
    const QColor chosen(0x2a, 0x6f, 0xb8);
    const QColor &background = colors.background;

    // The toolkit derives the edges of buttons and frames.
    QPalette palette(colors.buttons, background);
    const auto set = [&palette](QPalette::ColorRole role, const QColor &color) {
        palette.setColor(QPalette::All, role, color);
    };
    // The text stays as chosen where it is chosen for.
    set(QPalette::Base, background);
    set(QPalette::AlternateBase, mixed(background, colors.text, 0.06));
    set(QPalette::ToolTipBase, mixed(background, colors.text, 0.1));
    set(QPalette::Highlight, chosen);
    set(QPalette::WindowText, colors.text);
    set(QPalette::Text, colors.text);
    set(QPalette::BrightText, blackOrWhite(background));
    set(QPalette::ButtonText, readableOn(colors.buttons, colors.text));
    set(QPalette::ToolTipText, readableOn(palette.color(QPalette::ToolTipBase), colors.text));
    set(QPalette::HighlightedText, blackOrWhite(chosen));
    set(QPalette::PlaceholderText, mixed(colors.text, background, 0.35));
    set(QPalette::Link, readableOn(background, link));
    set(QPalette::LinkVisited, readableOn(background, visited));
    for (const auto role : { QPalette::WindowText, QPalette::Text })
        palette.setColor(QPalette::Disabled, role, mixed(colors.text, background, half));
    palette.setColor(QPalette::Disabled, QPalette::ButtonText,
                     mixed(palette.color(QPalette::ButtonText), colors.buttons, half));
    return palette;
}
