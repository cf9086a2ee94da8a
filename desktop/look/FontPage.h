#pragma once

#include <QFont>
#include <QWidget>

class QLabel;

/// The page that chooses the size of the program's font. It takes effect when applied.
/// A child of the look-and-feel dialog.
class FontPage : public QWidget
{
    Q_OBJECT

public:
    FontPage();

    const QFont &chosenFont() const { return chosen; }

Q_SIGNALS:
    void controlChanged();

private:
    void setSize(int points);

    QFont chosen;
    QLabel *preview;
};
