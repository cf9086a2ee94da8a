#pragma once

#include <QPalette>
#include <QWidget>

#include <optional>

class QPushButton;
class QVBoxLayout;

/// The page that chooses the colours of the style in use. They take effect when applied.
/// A child of the look-and-feel dialog.
class ColorPage : public QWidget
{
    Q_OBJECT

public:
    ColorPage();

    /// Nothing while the colours are to be those of the desktop.
    std::optional<QPalette> colors() const;

    /// Shows the colours in use; `areChosen` says whether the user has chosen them.
    void showColors(bool areChosen);

Q_SIGNALS:
    void controlChanged();

private:
    QPushButton *addColor(QVBoxLayout *body, const QString &name, QPalette::ColorRole role);
    void choose(QPalette::ColorRole role, const QString &title);
    void setDefault();
    void setColors(const QPalette &colors);

    QPalette shown;
    bool isChosen = false; ///< by the user
    QPushButton *background;
    QPushButton *text;
    QPushButton *button;
};
