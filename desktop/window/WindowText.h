#pragma once

#include <QCoreApplication>

/// Texts of the main window's parts: `WindowText::tr`. Translators find them with the window's own.
struct WindowText
{
    Q_DECLARE_TR_FUNCTIONS(MainWindow)
};

/// Of a profile whose text file may not be opened.
inline QString unreadableText()
{
    return WindowText::tr("A file of a profile can't be read, and nothing is served with it. Make "
                          "it readable, and start again.");
}
