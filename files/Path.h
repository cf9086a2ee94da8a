#pragma once

#include <QByteArray>
#include <QString>

#include <functional>

/// The bytes by which the file system knows `path`.
QByteArray nativePath(const QString &path);

/// What a request's path names, relative to the top and without empty, "." and ".." segments.
/// ".." takes a segment away by name and never climbs above the top, which is "".
QByteArray cleanPath(const QByteArray &requested);

/// The folder that a path names its entry in; "" for the top, too.
QByteArray parentPath(const QByteArray &path);

/// A path, none or more segments below another.
QByteArray joinedPath(const QByteArray &folder, const QByteArray &rest);

/// The longest begin of a path, of whole segments, that `holds`, as all shorter ones do; "" when
/// none does. Asks only about a few.
QByteArray longestPart(const QByteArray &path,
                       const std::function<bool(const QByteArray &part)> &holds);

/// The begin of a name, of at most so many bytes, not cut within a character of UTF-8.
QByteArray shortenedName(QByteArray name, int most);

/// The path of an entry beside another, which has its name and a number: "a/b (2).txt".
QByteArray numberedPath(const QByteArray &path, int number);

/// Whether a request can name it: it decodes to text that encodes to the same bytes.
bool isSpellable(const QByteArray &name);

/// Where the system says that an open descriptor stands: an absolute path without links. Empty
/// when it can't tell, as for paths that are longer than it can say.
QByteArray pathOf(int descriptor);

/// One for all paths that a file system may take for the same because it makes no difference
/// between small and capital letters.
QByteArray caselessPath(const QByteArray &path);

/// Whether an absolute `path` is `folder` or lies below it, by their names.
bool isWithin(const QByteArray &path, const QByteArray &folder);

/// The part of `path` below `folder`, in which it is; "" for the folder itself.
QByteArray pathBelow(const QByteArray &path, const QByteArray &folder);
