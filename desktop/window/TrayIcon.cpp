#include "desktop/window/TrayIcon.h"

#include "desktop/widgets/Touch.h"
#include "desktop/window/ServerRows.h"
#include "desktop/window/StartStop.h"
#include "desktop/window/WindowText.h"

TrayIcon::TrayIcon(const ServerRows *servers)
    : QSystemTrayIcon(QIcon(QStringLiteral(":/icons/MobileServer.png")))
{
    setToolTip(QStringLiteral("Quillon"));
    sizeForFingers(&menu);
    const QAction *open = menu.addAction(WindowText::tr("Open the window"));
    QAction *startStop = menu.addAction(QString());
    QAction *copy = menu.addAction(WindowText::tr("Copy address"));
    const QAction *quit = menu.addAction(WindowText::tr("Quit"));
    const auto showRunning = [startStop, copy](bool running) {
        startStop->setText(startStopText(running));
        copy->setEnabled(running);
    };
    // At once: desktops that draw the menu themselves don't all say when.
    connect(servers, &ServerRows::runningChanged, this, showRunning);
    connect(open, &QAction::triggered, this, &TrayIcon::windowWanted);
    connect(startStop, &QAction::triggered, this, &TrayIcon::startStopWanted);
    connect(copy, &QAction::triggered, this, &TrayIcon::addressWanted);
    connect(quit, &QAction::triggered, this, &TrayIcon::quitWanted);
    connect(this, &QSystemTrayIcon::activated, this, [this](ActivationReason reason) {
        if (reason == Trigger)
            Q_EMIT windowWanted();
    });
    showRunning(servers->isRunning());
    setContextMenu(&menu);
    show();
}
