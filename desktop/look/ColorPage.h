#pragma once

#include <QPalette>
#include <QWidget>

class QPushButton;
class QSettings;

/// The page that chooses the colours of the current style. They take effect when applied.
/// A child of the look-and-feel dialog.
class ColorPage : public QWidget
{
    Q_OBJECT

public:
    explicit ColorPage(QWidget *parent);

    const QPalette &colors() const { return chosen; }

Q_SIGNALS:
    void controlChanged();

public Q_SLOTS:
    void setBackground();
    void setText();
    void setButton();
    void setDefault();

    /// Shows the colours of `palette`; not the palette of this widget.
    void setPalette(const QPalette &palette);

    /// Stores the colours for the current style.
    void apply(QSettings *settings);

private:
    void choose(QPalette::ColorRole role, const QString &title);

    QPalette chosen;
    QPushButton *background;
    QPushButton *text;
    QPushButton *button;
};
