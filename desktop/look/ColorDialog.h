#pragma once

#include <QColor>
#include <QDialog>
#include <QPixmap>

#include <optional>

class QButtonGroup;
class QGridLayout;
class QLabel;
class QLineEdit;

/// A framed patch of `color`.
QPixmap colorPatch(const QColor &color, const QSize &size);

/// Asks for a colour: patches large enough for a finger, and its code for any other colour. Fits
/// small screens, which the toolkit's own chooser does not. A child of the window it belongs to.
class ColorDialog : public QDialog
{
    Q_OBJECT

public:
    /// `color` is chosen at first.
    ColorDialog(const QString &title, const QColor &color, QWidget *parent);

    QColor color() const;

    /// Runs the dialog; the colour on OK, nothing on Cancel.
    static std::optional<QColor> ask(const QString &title, const QColor &color, QWidget *parent);

private:
    void addPatch(QGridLayout *grid, const QColor &color, int row, int column);
    void showColor();

    QButtonGroup *patches;
    QLineEdit *code;
    QLabel *preview;
};
