#pragma once

#include <QString>
#include <QTemporaryFile>

/// A file named after this process's number, locked as long as the object lives. The kernel lets go
/// of the lock however the process ends, so that others can tell one that runs from one that
/// crashed.
class RunningMark
{
public:
    /// Makes the folder `marks` and the file in it. When that fails there is no mark, but
    /// neighbours are found all the same.
    explicit RunningMark(const QString &marks);

    void release();

    /// Whether another mark in the folder is held by a living process. Those of dead ones go.
    bool hasNeighbours() const;

private:
    QString folder;
    QTemporaryFile file;
};
