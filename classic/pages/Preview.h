#pragma once

#include <QImage>
#include <QString>

class QIODevice;

/// Makes small pictures of large ones. Files come from anyone: what is broken, absurdly large or
/// takes too long gives a null picture, and none takes more than `maxPreviewMemory`.

constexpr int previewSize = 124; ///< pixels
constexpr qint64 maxPreviewMemory = qint64(256) * 1024 * 1024; ///< bytes while one is made

/// The preview of the picture at `path`; `extension` is "png" or "jpg". Takes its time; a thread
/// whose interruption is requested gives up.
QImage makePreview(const QString &path, const QString &extension);

/// Whether decoding the JPEG in `file` holds the coefficients of the whole picture in memory:
/// progressive ones and those of several scans do (ITU-T T.81, annex B). True too when its
/// headers make no sense. `file` is read from its start.
bool holdsWholeJpeg(QIODevice &file);
