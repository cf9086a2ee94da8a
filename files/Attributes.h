#pragma once

#include <optional>

#include <ctime>
#include <sys/types.h>

/// Without the bits that make a program run as its owner.
constexpr mode_t permissionBits = 0777;

/// Gives an open file of ours these permissions. 0, or the number of the error; a file system
/// without permissions keeps what it has, and that is no error.
int changeMode(int file, mode_t mode);

/// Sets the times of the last access and of the content of an open file or folder; one that is not
/// given stays. 0, or the number of the error.
int setTimes(int file, const std::optional<timespec> &accessed,
             const std::optional<timespec> &modified);

/// Gives one open file the permissions of another, and its owner, group and extended attributes as
/// far as the system allows. 0, or the number of the error when not even the permissions could be.
int copyAttributes(int from, int to);

/// Gives one open file or folder the extended attributes and the time of the content of another, as
/// far as the file system knows them.
void copyProperties(int from, int to);
