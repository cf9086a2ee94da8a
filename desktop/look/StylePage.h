#pragma once

#include <QWidget>

class Look;
class QComboBox;
class QLabel;

/// The page that chooses the widget style, which the program takes on at once.
/// A child of the look-and-feel dialog.
class StylePage : public QWidget
{
    Q_OBJECT

public:
    /// `tried` is borrowed.
    explicit StylePage(Look *tried);

Q_SIGNALS:
    /// The program has taken on another style.
    void styleChanged();

private:
    void tryStyle(int index);
    void showCurrentStyle();

    Look *look;
    QComboBox *styles;
    QLabel *inUse; ///< the list does not hold every style that may be in use
};
