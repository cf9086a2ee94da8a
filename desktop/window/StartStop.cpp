#include "desktop/window/StartStop.h"

#include <QCoreApplication>

QString startStopText(bool running)
{
    return running ? QCoreApplication::translate("MainWindow", "Stop")
                   : QCoreApplication::translate("MainWindow", "Start");
}

QIcon startStopIcon(bool running)
{
    return QIcon(running ? QStringLiteral(":/icons/stop.png") : QStringLiteral(":/icons/play.png"));
}
