#include "files/FileDescriptor.h"

#include <fcntl.h>
#include <unistd.h>

void FileDescriptor::reset(int number)
{
    if (fd >= 0)
        ::close(fd);
    fd = number;
}

FileDescriptor duplicate(int descriptor)
{
    return FileDescriptor(::fcntl(descriptor, F_DUPFD_CLOEXEC, 0));
}
