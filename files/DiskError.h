#pragma once

/// Why something could not be put on the disk.
enum class DiskError {
    None,
    Exists, ///< something has the name
    Locked, ///< the name is being received, or its file is in use
    Missing, ///< no such folder or file
    NoSpace, ///< the disk, a quota or a size limit is full
    Changed, ///< the source is no longer what was copied
    Failed ///< anything else
};

/// What a number of the system's `errno` means here; 0 is no error.
DiskError diskError(int number);
