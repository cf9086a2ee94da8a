#pragma once

#include <QString>
#include <QStringList>

/// What a start of the program asks of the window, its own or the one that is open already.
struct StartRequest
{
    QString path; ///< to share, absolute; empty for what was shared before
    bool startsRows = false; ///< all that are shown
};

/// The command line of the program with the window.
struct CommandLine
{
    QString information; ///< to be printed instead of a start; empty when none is asked for
    QString mistake; ///< what can't be understood; empty when nothing
    StartRequest request;
    bool rootMode = false; ///< ports up to 1024 are to be used
};

/// Reads `arguments`, the first of which is the program's name; relative paths begin in the working
/// folder. Needs an application object, with a window or without.
CommandLine readCommandLine(const QStringList &arguments);
