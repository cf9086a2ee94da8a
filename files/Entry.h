#pragma once

#include <QtGlobal>

#include <sys/stat.h>

/// What a look at the file system tells of an entry. Links are followed: of one that leads nowhere
/// only `link` is told.
struct EntryFacts
{
    bool exists = false;
    bool link = false; ///< the rest is told of what it leads to
    bool folder = false;
    bool file = false; ///< a regular one
    bool readable = false; ///< by the real user and group, as `QFileInfo::isReadable` has it
    mode_t mode = 0; ///< with the kind
    dev_t device = 0;
    ino_t inode = 0;
    qint64 size = 0; ///< bytes
    qint64 seconds = 0; ///< of the last change of content, since 1970-01-01 UTC
    qint32 nanoseconds = 0; ///< of the same, beyond the second
    qint64 changeSeconds = 0; ///< of the last change of anything, name and rights included
    qint32 changeNanoseconds = 0; ///< of the same, beyond the second

    /// Milliseconds since 1970-01-01 UTC.
    qint64 modified() const { return seconds * 1000 + nanoseconds / 1000000; }

    bool isBrokenLink() const { return link && !exists; }
};

/// The entry `name` of the folder open at `folder` (or `AT_FDCWD`). Nothing `exists` when it can't
/// be looked at.
EntryFacts entryFacts(int folder, const char *name);

/// The same of a name that is known to be a link, with one call.
EntryFacts linkFacts(int folder, const char *name);

/// What is open at `descriptor`; that may be a mere place (`O_PATH`).
EntryFacts entryFacts(int descriptor);

/// What is open for reading at `descriptor`, with one call.
EntryFacts openFacts(int descriptor);

/// Whether both exist and are the same file or folder.
bool isSameEntry(const EntryFacts &a, const EntryFacts &b);

/// Whether both are the same file with, by size and time, the same content.
bool isUnchanged(const EntryFacts &before, const EntryFacts &now);

/// The same, and nobody has changed its rights, names or attributes either.
bool isUntouched(const EntryFacts &before, const EntryFacts &now);
