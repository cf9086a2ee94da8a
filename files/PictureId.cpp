#include "files/PictureId.h"

#include <sys/stat.h>

PictureId PictureId::of(const struct stat &status)
{
    constexpr qint64 second = 1000000000;
    return { status.st_dev, status.st_ino, status.st_size,
             status.st_mtim.tv_sec * second + status.st_mtim.tv_nsec };
}

std::optional<PictureId> PictureId::of(int fd)
{
    struct stat status = {};
    if (::fstat(fd, &status) != 0 || !S_ISREG(status.st_mode))
        return {};
    return of(status);
}
