#include "desktop/look/DesktopPage.h"

#include "desktop/widgets/Fields.h"

#include <QSystemTrayIcon>
#include <QVBoxLayout>

DesktopPage::DesktopPage()
    : tray(new SwitchBox(tr("Go on in the tray when the window is closed")))
    , login(new SwitchBox(tr("Start when I log in")))
    , notices(new SwitchBox(tr("Show notifications")))
{
    const DesktopChoices stored = DesktopChoices::stored();
    tray->setChecked(stored.staysInTray);
    login->setChecked(stored.startsAtLogin);
    notices->setChecked(stored.notifies);
    // Who closes the window must be able to get it back.
    tray->setEnabled(QSystemTrayIcon::isSystemTrayAvailable());

    QVBoxLayout *body = addFrame(this, tr("Desktop Settings"));
    for (QCheckBox *box : { tray, login, notices }) {
        body->addWidget(box);
        connect(box, &QCheckBox::toggled, this, &DesktopPage::controlChanged);
    }
}

DesktopChoices DesktopPage::choices() const
{
    return { tray->isChecked(), login->isChecked(), notices->isChecked() };
}
