#pragma once

#include <QByteArray>

#include <chrono>

/// What gets no byte for so long is given up.
constexpr std::chrono::hours hiddenUploadLife{ 24 };

/// The name of a file that is being received, where the file system knows no files without names:
/// another one at each call. It tells whose it is: its last digits follow from those before.
QByteArray hiddenUploadName();

/// The one of an upload that is known by `id`, six letters and digits or more.
QByteArray hiddenUploadName(const QByteArray &id);

/// Whether it is such a name, and no other one that begins alike.
bool isHiddenUpload(const char *name);

/// Whether a clean path leads through such a name.
bool namesHiddenUpload(const QByteArray &path);

/// A name for what has to give way for a moment, `name`: another one at each call. Nothing that has
/// it is ever swept away, and everybody sees it: it may be all that is left when the program is
/// killed in that moment.
QByteArray asideName(const QByteArray &name);
