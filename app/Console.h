#pragma once

#include "server/StatusSink.h"

#include <QByteArray>
#include <QElapsedTimer>
#include <QSet>
#include <QString>

/// Writes lines to a descriptor without ever waiting for its reader: lines that would block are
/// dropped, and their number is told once it flows again.
class LineWriter
{
public:
    explicit LineWriter(int descriptor)
        : fd(descriptor)
    {
    }

    /// `line` ends with a line feed.
    void write(const QByteArray &line);

private:
    bool pass(QByteArray bytes);

    int fd;
    int dropped = 0; ///< lines
    bool cutOff = false; ///< the last line that was written has no end
};

/// What the console program says, a line at a time. Made in `main`.
class Console
{
public:
    void print(const QString &text); ///< on standard output
    void error(const QString &text); ///< on standard error, after the program's name

private:
    LineWriter out{ 1 };
    LineWriter errors{ 2 };
};

/// The addresses that were seen within the last minute.
class RecentPeers
{
public:
    /// Whether `peer` was not seen for at least a minute. Where a crowd is seen within a minute,
    /// nobody more is new.
    bool isNew(const QString &peer);

private:
    QSet<QString> current;
    QSet<QString> before; ///< seen in the minute before `age` began
    QElapsedTimer age; ///< of `current`
};

/// Reports new clients and warnings on standard error.
class ConsoleSink : public StatusSink
{
public:
    /// `console` outlives the sink.
    explicit ConsoleSink(Console *console);

    void newConnection(const QString &peer) override;
    void msg(const QString &title, const QString &text) override;

private:
    Console *m_console;
    RecentPeers peers;
};
