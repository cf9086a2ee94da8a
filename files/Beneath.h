#pragma once

#include "files/FileDescriptor.h"

#include <QByteArray>

/// Opens `path` beneath the open folder `root`; no segment of it is empty, "." or "..", and "" is
/// the root itself. No link is followed: one on the way, or at the end unless the flags allow it,
/// is `ELOOP`, and `EXDEV` a mount. A system without `openat2` can't tell and gives `ELOOP` for
/// any path.
FileDescriptor openPlain(int root, const QByteArray &path, int flags);

/// The same, but links that stay beneath the root are followed. `EXDEV` for those that don't; a
/// system without `openat2` takes every link for one of those.
FileDescriptor openBeneath(int root, const QByteArray &path, int flags);
