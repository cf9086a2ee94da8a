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
    const auto showRunning = [servers, startStop, copy] {
        startStop->setText(startStopText(servers->isRunning()));
        copy->setEnabled(servers->isRunning());
    };
    connect(&menu, &QMenu::aboutToShow, this, showRunning);
    connect(open, &QAction::triggered, this, &TrayIcon::windowWanted);
    connect(startStop, &QAction::triggered, this, &TrayIcon::startStopWanted);
    connect(copy, &QAction::triggered, this, &TrayIcon::addressWanted);
    connect(quit, &QAction::triggered, this, &TrayIcon::quitWanted);
    connect(this, &QSystemTrayIcon::activated, this, [this](ActivationReason reason) {
        if (reason == Trigger)
            Q_EMIT windowWanted();
    });
    showRunning();
    setContextMenu(&menu);
    show();
}
