#pragma once

#include "files/FileDescriptor.h"

#include <QString>

/// A private, empty folder of its own that the process works in, as copies of some clients end up
/// in the working folder. What a process left there goes when the next one starts.
/// Made in `main` once relative paths are absolute; lives as long as the process.
class WorkingFolder
{
public:
    /// Makes the folder in `place`, which ends with a slash, and enters it.
    explicit WorkingFolder(const QString &place);

    /// Leaves the folder; an empty one is removed.
    ~WorkingFolder();

    /// False when the folder can't be made; the process is where it was then.
    bool isEntered() const { return folder.isOpen(); }

private:
    Q_DISABLE_COPY(WorkingFolder)

    QByteArray path;
    FileDescriptor folder; ///< locked, which tells others that the process lives
};
