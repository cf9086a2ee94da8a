#pragma once

#include "desktop/look/DesktopChoices.h"

#include <QWidget>

class QCheckBox;

/// The page of what the program does in the desktop besides its window. It takes effect when
/// applied. A child of the look-and-feel dialog.
class DesktopPage : public QWidget
{
    Q_OBJECT

public:
    DesktopPage();

    DesktopChoices choices() const;

Q_SIGNALS:
    void controlChanged();

private:
    QCheckBox *tray;
    QCheckBox *login;
    QCheckBox *notices;
};
