#pragma once

#include <QPalette>
#include <QString>

#include <optional>

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

    /// The style that the user has chosen; empty for that of the desktop.
    QString chosenStyle() const { return chosen; }

    /// Takes on what is stored. What is not stored stays as the desktop has it; a style that is not
    /// there and a font size past all use are passed over.
    void takeStored();

    /// Takes on the style `name`, or with an empty one that of the desktop, and the colours that
    /// are stored for it, for now. False, and no change, when there is no such style.
    bool tryStyle(const QString &name);

    /// Whether the user has chosen colours for the style in use.
    bool hasScheme() const;

    /// Takes on `colors`, without them those of the desktop, and `font`, and stores them with the
    /// style in use. False when the file can't be written; the look is in use all the same.
    bool apply(const std::optional<QPalette> &colors, const QFont &font);

    /// The file that keeps the look.
    static QString fileName();

    /// From now on `bringBack` leads to the look in use.
    void hold();

    /// Drops a style that was tried and not applied.
    void bringBack();

private:
    QString systemStyle;
    QString chosen; ///< empty: as the desktop
    QString held;
};
