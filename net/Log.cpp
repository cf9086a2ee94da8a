#include "net/Log.h"

Q_LOGGING_CATEGORY(netLog, "quillon.net", QtWarningMsg)
