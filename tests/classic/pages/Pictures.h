#pragma once

#include <QBuffer>
#include <QByteArray>
#include <QImage>
#include <QImageWriter>

/// A picture that does not compress well.
inline QImage noise(int width, int height)
{
    QImage image(width, height, QImage::Format_RGB32);
    quint32 value = 1;
    for (int i = 0; i < width * height; ++i) {
        value = value * 1664525U + 1013904223U;
        image.setPixel(i % width, i / width, value >> 8U);
    }
    return image;
}

inline QByteArray encoded(const QImage &image, const char *format, bool progressive = false)
{
    QBuffer buffer;
    QImageWriter writer(&buffer, format);
    writer.setProgressiveScanWrite(progressive);
    if (!writer.write(image))
        qFatal("can't write a %s", format);
    return buffer.data();
}
