#pragma once

#include "server/StatusSink.h"

#include <QString>

#include <csignal>

class QCoreApplication;

/// What the console program says, a line at a time.
namespace Console {
void print(const QString &text); ///< on standard output
void error(const QString &text); ///< on standard error, after the program's name
} // namespace Console

/// Reports new clients and warnings on standard error.
class ConsoleSink : public StatusSink
{
public:
    void newConnection(const QString &peer) override;
    void msg(const QString &title, const QString &text) override;

private:
    QString lastPeer; ///< a client that comes back at once is not new
};

/// Turns SIGINT and SIGTERM into an orderly end. Construct it before any thread starts.
class EndSignals
{
public:
    EndSignals();

    /// The first signal quits `app`'s event loop; a second one ends the process at once.
    void quitOnFirst(QCoreApplication *app) const;

private:
    sigset_t both = {};
};
