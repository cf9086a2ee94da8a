#pragma once

#include <QByteArray>

/// The name of a file that is being received, where the file system knows no files without names:
/// another one at each call.
QByteArray hiddenUploadName();

/// Whether it is such a name.
bool isHiddenUpload(const char *name);

/// Whether a clean path leads through such a name.
bool namesHiddenUpload(const QByteArray &path);

/// A name for what has to give way for a moment, `name`: another one at each call. Nothing that has
/// it is ever swept away, and everybody sees it: it may be all that is left when the program is
/// killed in that moment.
QByteArray asideName(const QByteArray &name);

/// Removes the files that uploads left in a folder when they were killed: those with such a name,
/// a day old and in nobody's use. `folder` may be a mere place (`O_PATH`).
void sweepHiddenUploads(int folder);
