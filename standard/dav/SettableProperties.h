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
    Bad ///< the value can't be understood
};

/// Adds what `change` means for the file to `changes`.
Setting takeSetting(const PropertyChange &change, FileChanges &changes);

/// Makes the changes to the file open at `descriptor`, all or none. 0, or the number of the error.
int apply(const FileChanges &changes, int descriptor);

} // namespace standard
