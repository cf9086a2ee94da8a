#pragma once

#include <QLoggingCategory>

/// What happens in this layer, silent unless asked for: QT_LOGGING_RULES="quillon.standard=true".
Q_DECLARE_LOGGING_CATEGORY(standardLog)
