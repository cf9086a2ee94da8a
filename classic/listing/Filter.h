#pragma once

#include <QRegularExpression>
#include <QtGlobal>

class QDateTime;
class QString;
class QUrlQuery;
struct EntryFacts;

/// Which files a client's listing reports, as the query of its request says. Folders pass every
/// condition. A value that its responder sets up anew for each request.
class Filter
{
public:
    /// Forgets what was set and reads `query`. What it lacks, and what can't be read as a number
    /// or a date, sets no condition.
    void init(const QUrlQuery &query);

    /// Whether the listing reports the entry `name` of these facts.
    bool accept(const QString &name, const EntryFacts &facts) const;

    /// Compares: "<" and ">" as they read, any other `op` as equality.
    static bool accept(int op, qint64 limit, qint64 value);

    /// Rounds `t` down to the unit that the client rounded its limit to.
    void setDate(QDateTime &t) const;

    /// Whether to descend into subfolders instead of listing them.
    bool isRecursive() const { return recursive; }

private:
    bool acceptSize(qint64 bytes) const;
    bool acceptName(const QString &name) const;
    bool acceptTime(qint64 milliseconds) const;

    bool recursive = false;
    qint32 size1 = -1; ///< bytes; below 0: no condition
    qint32 size2 = -1;
    quint32 time = 0; ///< see `clientTime`; 0: no condition
    char size1Op = 0;
    char size2Op = 0;
    char timeOp = 0;
    int timeUnit = 0;
    bool hasPattern = false;
    QRegularExpression pattern;
};

/// A point in time, given in milliseconds since 1970-01-01 UTC, in the 32 bits of seconds that
/// clients read; what lies outside of them is the largest.
quint32 clientTime(qint64 milliseconds);
