#include "files/DiskError.h"

#include <cerrno>

DiskError diskError(int number)
{
    switch (number) {
    case 0:
        return DiskError::None;
    case EEXIST:
    case EISDIR:
    case ENOTEMPTY:
        return DiskError::Exists;
    case EBUSY:
    case EWOULDBLOCK:
    case ETXTBSY:
        return DiskError::Locked;
    case ENOENT:
    case ENOTDIR:
        return DiskError::Missing;
    case ENOSPC:
    case EDQUOT:
    case EFBIG:
        return DiskError::NoSpace;
    default:
        return DiskError::Failed;
    }
}
