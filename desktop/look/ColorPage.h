#pragma once

#include <QPalette>
#include <QWidget>

class QPushButton;
class QVBoxLayout;

/// The page that chooses the colours of the style in use. They take effect when applied.
/// A child of the look-and-feel dialog.
class ColorPage : public QWidget
{
    Q_OBJECT

public:
    ColorPage();

    const QPalette &colors() const { return chosen; }

    /// Shows and takes these colours as if they had been chosen, without a word.
    void setColors(const QPalette &colors);

Q_SIGNALS:
    void controlChanged();

private:
    QPushButton *addColor(QVBoxLayout *body, const QString &name, QPalette::ColorRole role);
    void choose(QPalette::ColorRole role, const QString &title);
    void setDefault();

    QPalette chosen;
    QPushButton *background;
    QPushButton *text;
    QPushButton *button;
};
