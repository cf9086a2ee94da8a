#pragma once

#include <QHash>
#include <QtGlobal>

#include <optional>

#include <sys/types.h>

struct stat;

/// What makes a picture the same one: the file and, as far as the system tells, its content. One
/// that was replaced or has grown is another picture.
struct PictureId
{
    dev_t device = 0;
    ino_t inode = 0;
    qint64 size = 0; ///< bytes
    qint64 modified = 0; ///< nanoseconds since 1970

    /// That of a file that was looked at.
    static PictureId of(const struct stat &status);

    /// That of an open file; none when it is no regular one.
    static std::optional<PictureId> of(int fd);
};

inline bool operator==(const PictureId &one, const PictureId &other)
{
    return one.device == other.device && one.inode == other.inode && one.size == other.size
        && one.modified == other.modified;
}

inline bool operator!=(const PictureId &one, const PictureId &other)
{
    return !(one == other);
}

using HashValue = decltype(qHash(quint64(0))); ///< wider from Qt 6 on

inline HashValue qHash(const PictureId &id, HashValue seed = 0)
{
    return qHash(quint64(id.inode), seed) ^ qHash(id.modified, ~seed);
}
