#include "app/Decoder.h"

QImage scaledDown(const QImage &picture, int edge)
{
    if (picture.width() <= edge && picture.height() <= edge)
        return picture.copy();
    const QSize size = picture.size().scaled(edge, edge, Qt::KeepAspectRatio);
    return picture.scaled(size.expandedTo(QSize(1, 1)), Qt::IgnoreAspectRatio,
                          Qt::SmoothTransformation);
}
