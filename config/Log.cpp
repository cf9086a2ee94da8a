#include "config/Log.h"

Q_LOGGING_CATEGORY(configLog, "quillon.config", QtWarningMsg)
