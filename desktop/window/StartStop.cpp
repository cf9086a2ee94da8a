#include "desktop/window/StartStop.h"

#include "desktop/window/WindowText.h"

QString startStopText(bool running)
{
    return running ? WindowText::tr("Stop") : WindowText::tr("Start");
}

QIcon startStopIcon(bool running)
{
    return QIcon(running ? QStringLiteral(":/icons/stop.png") : QStringLiteral(":/icons/play.png"));
}
