#include "standard/Log.h"

Q_LOGGING_CATEGORY(standardLog, "quillon.standard", QtWarningMsg)
