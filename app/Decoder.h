#pragma once

#include <QImage>
#include <QLibrary>

#include <functional>

class QIODevice;

/// Gives what is to be seen of `file`, which is read from its start: within a square of `edge`
/// pixels, turned as the file says, and null when there is nothing. May throw std::bad_alloc. Empty
/// where the library that decodes such files is not installed.
using Decoder = std::function<QImage(QIODevice &file, int edge)>;

/// A copy of `picture` that fits a square of `edge` pixels and is no larger than it.
QImage scaledDown(const QImage &picture, int edge);

/// Finds a function of a library that is loaded, or of one that this needs; false when there is
/// none of this name.
template <typename Function> bool resolve(QLibrary &library, const char *name, Function *&function)
{
    function = reinterpret_cast<Function *>(library.resolve(name));
    return function != nullptr;
}
