#pragma once

#include <QByteArray>

/// The name of a file that is being received, where the file system knows no files without names:
/// another one at each call.
QByteArray hiddenUploadName();

/// Whether it is such a name.
bool isHiddenUpload(const char *name);

/// Removes the files that uploads left in a folder when they were killed: those with such a name,
/// a day old and in nobody's use. `folder` may be a mere place (`O_PATH`).
void sweepHiddenUploads(int folder);
