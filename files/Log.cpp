#include "files/Log.h"

Q_LOGGING_CATEGORY(filesLog, "quillon.files", QtWarningMsg)
