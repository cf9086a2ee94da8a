#include "classic/Log.h"

Q_LOGGING_CATEGORY(classicLog, "quillon.classic", QtWarningMsg)
