#pragma once

#include "standard/dav/RequestBodies.h"

#include <optional>

#include <sys/types.h>

namespace standard {

/// What a PROPPATCH changes of the file itself instead of keeping a property.
struct FileChanges
{
    std::optional<qint64> modified; ///< seconds since 1970-01-01 UTC, like the next
    std::optional<qint64> accessed;
    std::optional<bool> executable;

    bool isEmpty() const { return !modified && !accessed && !executable; }
};

enum class Setting {
    Kept, ///< is no such property: it is to be kept as it is
    Taken,
    Bad, ///< the value can't be understood
    Protected ///< what is named can't be changed so
};

/// Adds what `change` means for a regular file, or a folder, to `changes`.
Setting takeSetting(const PropertyChange &change, bool isFile, FileChanges &changes);

/// Makes the changes to what is open at `descriptor`, all or none. 0, or the number of the error.
int changeFile(const FileChanges &changes, int descriptor);

} // namespace standard
