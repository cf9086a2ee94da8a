#include "server/Log.h"

Q_LOGGING_CATEGORY(serverLog, "quillon.server", QtWarningMsg)
