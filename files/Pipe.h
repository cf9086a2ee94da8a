#pragma once

#include "files/FileDescriptor.h"

#include <QtGlobal>

/// A pipe of the system, by which bytes go from a socket into a file without passing through this
/// program. It knows what stands in it, so that what somebody left behind never gets into the file
/// of somebody else.
class Pipe
{
public:
    /// Makes it unless that was done, and drops what stands in it. False when the system has none.
    bool open();

    /// Takes up to `most` bytes out of `socket`, but no more than fit, when it is empty. Gives
    /// their number, 0 at the end of what the peer sends, -1 with `errno`.
    qint64 fill(int socket, qint64 most);

    /// How many bytes stand in it.
    qint64 size() const { return filled; }

    /// Moves bytes into `file`, at its position. Gives their number, or -1 with `errno`: EINVAL
    /// where the file system can't do that.
    qint64 pour(int file);

    /// Up to `max` of the bytes; -1 with `errno`.
    qint64 read(char *data, qint64 max);

private:
    qint64 gone(qint64 bytes);

    FileDescriptor in;
    FileDescriptor out;
    qint64 filled = 0;
};
