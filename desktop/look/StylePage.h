#pragma once

#include <QString>
#include <QWidget>

class ColorPage;
class QComboBox;
class QLabel;
class QPalette;
class QSettings;

/// The page that chooses the widget style, which the program takes at once.
/// A child of the look-and-feel dialog.
class StylePage : public QWidget
{
    Q_OBJECT

public:
    /// Keys of the application settings: the style's name and the size of the font in points.
    static constexpr auto styleKey = "style";
    static constexpr auto fontSizeKey = "Fsize";

    /// The style that was active when the program started.
    static QString DefaultStyle;

    /// `colors` shows the colours of the chosen style; it and `stored`, the application's settings,
    /// are borrowed.
    StylePage(ColorPage *colors, QSettings *stored, QWidget *parent);

    /// The name of the style in use, as the toolkit's style factory takes it.
    static QString currentStyle();

    /// Whether the style in use is the one of the start, for which stored colours don't hold.
    static bool isDefaultStyle();

    /// Lays the colours stored for `style` over `palette`; what is not stored stays.
    static void setPalette(QPalette *palette, QSettings *settings, const QString &style);

Q_SIGNALS:
    void controlChanged();

private Q_SLOTS:
    void styleChanged(int index);

private:
    void showCurrentStyle();

    ColorPage *palettePage;
    QSettings *settings;
    QComboBox *styles;
    QLabel *inUse; ///< the list does not hold every style that may be in use
};
