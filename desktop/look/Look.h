#pragma once

#include <QPalette>
#include <QString>

class QFont;

/// How the whole program looks: widget style, colours and font, as the application has them now
/// and as its settings keep them for the next run. Made once, in `main`, when the application
/// object exists and has its names.
class Look
{
public:
    /// The smallest font that anybody can still read and set right again, in points.
    static constexpr int smallestFont = 3;

    /// `style` is the one that the program came up with. Stored colours don't hold for it.
    explicit Look(QString style = currentStyle());

    /// The name of the style in use, as the toolkit's style factory takes it.
    static QString currentStyle();

    /// Whether the style in use is the one that the program came up with.
    bool isSystemStyle() const;

    /// Takes on what is stored. Without a stored style nothing changes; a style that is not there
    /// and a font size past all use are passed over.
    void takeStored() const;

    /// Takes on the style `name` with the colours stored for it, for now. False, and no change,
    /// when there is no such style.
    bool tryStyle(const QString &name) const;

    /// The standard colours of the style in use, below those that are stored for it.
    QPalette storedColors() const;

    /// Takes on `colors` and `font`, and stores them with the style in use. False when the file
    /// can't be written; the look is in use all the same.
    bool apply(const QPalette &colors, const QFont &font);

    /// The file that keeps the look.
    static QString fileName();

    /// From now on `bringBack` leads to the look in use.
    void hold();

    /// Drops a style that was tried and not applied.
    void bringBack() const;

private:
    static QPalette colorsOf(const QString &style);

    QString systemStyle;
    QString heldStyle;
    QPalette heldPalette; ///< goes with the held style
};
