#include "desktop/Log.h"

Q_LOGGING_CATEGORY(desktopLog, "quillon.desktop", QtWarningMsg)
