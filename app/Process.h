#pragma once

#include <QString>

class QCoreApplication;

/// What a server needs of its process, whichever program it runs in. Call at the start of `main`.
///
/// A peer or reader that is gone and a file that has reached its largest size become errors of the
/// write, which by default end the process. Programs that it starts get the defaults back.
/// A crowd of clients needs more descriptors than usual, and what it needed of memory is to be
/// given back, for which few heaps are better than one a thread.
void prepareProcess();

/// The program that makes previews; it lies beside this one.
QString previewProgram();

/// Where previews are kept while a program runs.
QString previewFolder();

/// Turns SIGINT, SIGTERM and SIGHUP into an orderly end; a SIGHUP that is to be ignored, as under
/// nohup, stays so. One for the process.
class EndSignals
{
public:
    EndSignals();

    /// The first signal ends `app`'s event loop; a second one ends the process at once.
    void quitOnFirst(QCoreApplication *app) const;
};
