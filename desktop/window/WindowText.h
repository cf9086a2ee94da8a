#pragma once

#include <QCoreApplication>

/// Texts of the main window's parts: `WindowText::tr`. Translators find them with the window's own.
struct WindowText
{
    Q_DECLARE_TR_FUNCTIONS(MainWindow)
};
