#pragma once

#include <QBuffer>
#include <QByteArray>
#include <QImage>
#include <QImageWriter>
#include <QtEndian>

#include <initializer_list>

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

inline QByteArray bigEndian(quint32 value, int size)
{
    QByteArray bytes;
    for (int shift = 8 * (size - 1); shift >= 0; shift -= 8)
        bytes.append(char((value >> unsigned(shift)) & 255U));
    return bytes;
}

/// The same JPEG with other dimensions in its frame header.
inline QByteArray withJpegSize(QByteArray jpeg, quint16 width, quint16 height)
{
    const int baseline = int(jpeg.indexOf("\xff\xc0"));
    const int frame = baseline < 0 ? int(jpeg.indexOf("\xff\xc2")) : baseline;
    return jpeg.replace(frame + 5, 4, bigEndian(height, 2) + bigEndian(width, 2));
}

/// The same JPEG with what a camera notes about how it was held: one entry, the orientation
/// (0x0112), in the big-endian directory of an Exif segment.
inline QByteArray withOrientation(QByteArray jpeg, quint16 orientation)
{
    const QByteArray entry =
        bigEndian(0x01120003, 4) + bigEndian(1, 4) + bigEndian(orientation, 2) + bigEndian(0, 2);
    const QByteArray exif = QByteArray("Exif\0\0MM\0*", 10) + bigEndian(8, 4) + bigEndian(1, 2)
        + entry + bigEndian(0, 4);
    return jpeg.insert(2, "\xff\xe1" + bigEndian(quint32(exif.size()) + 2, 2) + exif);
}

inline quint32 crc32(const QByteArray &bytes)
{
    quint32 crc = ~0U;
    for (const char c : bytes) {
        crc ^= static_cast<unsigned char>(c);
        for (int bit = 0; bit < 8; ++bit)
            crc = (crc >> 1U) ^ (crc & 1U ? 0xedb88320U : 0U);
    }
    return ~crc;
}

constexpr int pngHeaderEnd = 33; ///< of the signature and the first chunk

/// The same PNG with `count` notes that are small in the file and 7 MB each in memory.
inline QByteArray withPngNotes(QByteArray png, int count)
{
    const QByteArray packed = qCompress(QByteArray(7000000, 'A')).mid(4); // behind its length
    const QByteArray chunk = QByteArray("zTXtnote\0\0", 10) + packed;
    const QByteArray note =
        bigEndian(quint32(chunk.size()) - 4, 4) + chunk + bigEndian(crc32(chunk), 4);
    return png.insert(pngHeaderEnd, note.repeated(count));
}

/// The same HEIC to be seen after a turn to the left, which takes the place of how deep its colours
/// are.
inline QByteArray turned(QByteArray heic)
{
    return heic.replace(heic.indexOf("pixi"), 12, QByteArray("irot\1\0\0\0\0\0\0\0", 12));
}

inline QByteArray numbers(std::initializer_list<quint32> values)
{
    QByteArray bytes;
    for (const quint32 value : values) {
        const quint32 stored = qToLittleEndian(value);
        bytes.append(reinterpret_cast<const char *>(&stored), sizeof stored);
    }
    return bytes;
}

inline QByteArray riffChunk(const QByteArray &name, const QByteArray &content)
{
    return name + numbers({ quint32(content.size()) }) + content
        + QByteArray(content.size() % 2, '\0');
}

/// A video (AVI) of one second whose every frame is this JPEG.
inline QByteArray video(const QByteArray &jpeg, quint32 width, quint32 height)
{
    constexpr quint32 frames = 25;
    const QByteArray main = numbers({ 40000, 0, 0, 0, frames, 0, 1, 0, width, height, 0, 0, 0, 0 });
    const QByteArray stream =
        "vidsMJPG" + numbers({ 0, 0, 0, 1, frames, 0, frames, 0, 0, 0, 0, 0 });
    const QByteArray format =
        numbers({ 40, width, height, 0x180001 }) + "MJPG" + numbers({ 0, 0, 0, 0, 0 });
    const QByteArray headers = riffChunk("avih", main)
        + riffChunk("LIST", "strl" + riffChunk("strh", stream) + riffChunk("strf", format));
    return riffChunk("RIFF",
                     "AVI " + riffChunk("LIST", "hdrl" + headers)
                         + riffChunk("LIST", "movi" + riffChunk("00dc", jpeg).repeated(frames)));
}

/// A video (FLV) of a second with two frames of one colour, the same to the end.
inline QByteArray flashVideo(int width, int height)
{
    constexpr int block = 64;
    constexpr int bytesOfPixel = 3;
    QByteArray frame("\x13", 1); // complete, of blocks that are packed each for itself
    for (const int size : { width, height })
        frame += bigEndian(quint32(((block / 16 - 1) << 12) + size), 2);
    for (int y = 0; y < height; y += block) {
        for (int x = 0; x < width; x += block) {
            const int pixels = qMin(block, width - x) * qMin(block, height - y);
            const QByteArray packed =
                qCompress(QByteArray(pixels * bytesOfPixel, 'x')).mid(4); // behind its length
            frame += bigEndian(quint32(packed.size()), 2) + packed;
        }
    }
    QByteArray bytes("FLV\1\1\0\0\0\x9\0\0\0\0", 13);
    for (const quint32 time : { 0, 1000 }) { // ms
        const QByteArray tag = "\x9" + bigEndian(quint32(frame.size()), 3) + bigEndian(time, 3)
            + QByteArray(4, '\0') + frame;
        bytes += tag + bigEndian(quint32(tag.size()), 4);
    }
    return bytes;
}
