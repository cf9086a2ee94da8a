#pragma once

#include <QByteArray>
#include <QtGlobal>

class QIODevice;

/// Makes small pictures of large ones. Files come from anyone: what is broken or absurdly large
/// gives none, and what its headers don't tell is left to the limits of the program.

constexpr int previewSize = 124; ///< pixels
constexpr qint64 maxPreviewMemory = qint64(256) * 1024 * 1024; ///< bytes while one is made
constexpr qint64 maxPreviewBytes = qint64(1024) * 1024; ///< of a finished one

/// Loads what `makePreview` decodes with, so that it needs no file any more.
void loadDecoders();

/// The preview of the picture in `file`, which is read from its start, turned as its camera was
/// held. `extension` is "png" (as wide as the preview's size, in that format) or "jpg" (fits into
/// a square of that size). Empty when there is none. May throw std::bad_alloc.
QByteArray makePreview(QIODevice &file, const QByteArray &extension);
