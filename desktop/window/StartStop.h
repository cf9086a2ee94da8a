#pragma once

#include <QIcon>
#include <QString>

/// Text and picture of what starts a server, or stops one that is running.
QString startStopText(bool running);
QIcon startStopIcon(bool running);
