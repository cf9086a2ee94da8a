#pragma once

#include "app/Decoder.h"

#include <QByteArray>
#include <QtGlobal>

class QIODevice;

/// Makes small pictures of large ones. Files come from anyone: what is broken or absurdly large
/// gives none, and what its headers don't tell is left to the limits of the program.

constexpr int previewSize = 124; ///< pixels, of those in lists
constexpr qint64 maxPreviewMemory = qint64(256) * 1024 * 1024; ///< bytes while one is made
constexpr qint64 maxPreviewBytes = qint64(8) * 1024 * 1024; ///< of a finished one

/// Whether a preview of this kind, see `makePreview`, is one for lists: nobody waits for it.
bool isForLists(const QByteArray &kind);

/// Loads what `makePreview` needs for the picture in `file`, so that it opens no other any more.
/// Gives what decodes it when that isn't the toolkit.
Decoder loadCodecs(QIODevice &file, const QByteArray &kind);

/// The preview of the picture in `file`, which is read from its start, turned as its camera was
/// held. `kind` is "png" (as wide as the preview's size, in that format), "jpg" (fits into a square
/// of that size), or a number: fits into a square of so many pixels, is never larger than the
/// picture, and a PNG where that is transparent, else a JPEG. `decoder` is what `loadCodecs` gave.
/// Empty when there is none. May throw std::bad_alloc.
QByteArray makePreview(QIODevice &file, const QByteArray &kind, const Decoder &decoder = {});
