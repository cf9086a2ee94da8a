#include "desktop/window/TrayIcon.h"

#include "desktop/widgets/Touch.h"
#include "desktop/window/ServerRows.h"
#include "desktop/window/StartStop.h"
#include "desktop/window/WindowText.h"

TrayIcon::TrayIcon(ServerRows *servers)
    : QSystemTrayIcon(QIcon(QStringLiteral(":/icons/MobileServer.png")))
{
    setToolTip(QStringLiteral("Quillon"));
    sizeForFingers(&menu);
    const QAction *open = menu.addAction(WindowText::tr("Open the window"));
    QAction *startStop = menu.addAction(QString());
    const QAction *copy = menu.addAction(WindowText::tr("Copy address"));
    const QAction *quit = menu.addAction(WindowText::tr("Quit"));
    const auto showRunning = [servers, startStop] {
        startStop->setText(startStopText(servers->isRunning()));
    };
    connect(&menu, &QMenu::aboutToShow, this, showRunning);
    connect(open, &QAction::triggered, this, &TrayIcon::windowWanted);
    connect(startStop, &QAction::triggered, servers, &ServerRows::startOrStop);
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
