#include "files/FileDescriptor.h"

#include <unistd.h>

void FileDescriptor::reset(int number)
{
    if (fd >= 0)
        ::close(fd);
    fd = number;
}
