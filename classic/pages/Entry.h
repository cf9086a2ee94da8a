#pragma once

#include <QString>

/// What a look at the file system tells of an entry. Links are followed.
struct EntryFacts
{
    bool exists = false;
    bool link = false; ///< the rest is told of what it leads to
    bool folder = false;
    bool file = false; ///< a regular one
    bool readable = false; ///< as `QFileInfo::isReadable` has it
    qint64 size = 0; ///< bytes
    qint64 modified = 0; ///< milliseconds since 1970-01-01 UTC
};

/// The entry at `path`. Nothing `exists` when it can't be looked at.
EntryFacts entryFacts(const QString &path);

/// The entry `nativeName` of the folder open at `folder`: for many entries of one folder.
EntryFacts entryFacts(int folder, const char *nativeName);
