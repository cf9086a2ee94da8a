#include "app/PreviewPicture.h"

#include <QBuffer>
#include <QImage>
#include <QImageIOHandler>
#include <QImageReader>
#include <QImageWriter>
#include <QPixelFormat>

namespace {

constexpr int jpegQuality = 25; ///< of the decoder: fast rather than smooth
constexpr int largestWithoutScaling = 128; ///< pixels
constexpr int maxJpegSegments = 1000;
/// Of pixels and coefficients, in bytes; the rest is for what decoders need besides.
constexpr qint64 maxDecoded = maxPreviewMemory / 16 * 15;

qint64 pixels(const QSize &size)
{
    return qint64(size.width()) * size.height();
}

/// Bytes that a decoded picture takes, at the least 32 bits per pixel: scaling may widen it.
qint64 imageBytes(const QSize &size, QImage::Format format)
{
    constexpr qint64 usual = 4;
    constexpr qint64 widest = 8;
    const bool known = format != QImage::Format_Invalid;
    const qint64 depth = known ? QImage::toPixelFormat(format).bitsPerPixel() / 8 : widest;
    return pixels(size) * qMax(usual, depth);
}

/// Bytes that decoding a JPEG at reduced size takes: it is reduced to an eighth at most, and to
/// no less than twice the preview.
qint64 jpegBytes(const QSize &size, bool whole)
{
    constexpr int reduction = 8;
    constexpr qint64 coefficientBytes = 4 * sizeof(qint16); // of up to four components
    const QSize decoded = (size / reduction).expandedTo(QSize(2 * previewSize, 2 * previewSize));
    const qint64 coefficients = whole ? pixels(size) * coefficientBytes : 0;
    return imageBytes(decoded, QImage::Format_RGB32) + coefficients;
}

/// Pictures wider than the preview's limit of pixels must come with a decoder that scales.
bool canScale(const QImageReader &reader)
{
    const QSize size = reader.size();
    const bool small =
        size.width() <= largestWithoutScaling && size.height() <= largestWithoutScaling;
    return small || reader.supportsOption(QImageIOHandler::ScaledSize);
}

/// As it is seen: a camera that lay on its side changes width and height.
QSize turnedSize(const QImageReader &reader)
{
    const bool turned = reader.transformation().testFlag(QImageIOHandler::TransformationRotate90);
    return turned ? reader.size().transposed() : reader.size();
}

QImage previewOfPng(QImageReader &reader)
{
    const QSize size = turnedSize(reader);
    const qint64 height = qint64(size.height()) * previewSize / size.width();
    if (height > maxDecoded)
        return {};
    const QSize scaled(previewSize, int(height));
    const QImage::Format format = reader.imageFormat();
    if (imageBytes(size, format) + imageBytes(scaled, format) > maxDecoded)
        return {};
    const QImage whole = reader.read();
    return whole.isNull() ? whole : whole.scaledToWidth(previewSize, Qt::FastTransformation);
}

QImage previewOfJpg(QImageReader &reader, bool whole)
{
    const QSize size = reader.size();
    const qint64 memory =
        reader.format() == "jpeg" ? jpegBytes(size, whole) : imageBytes(size, reader.imageFormat());
    if (memory > maxDecoded || !canScale(reader))
        return {};
    // What is scaled is not turned yet.
    const QSize scaled = size.scaled(previewSize, previewSize, Qt::KeepAspectRatio);
    reader.setQuality(jpegQuality);
    reader.setScaledSize(scaled.expandedTo(QSize(1, 1)));
    return reader.read();
}

struct Format
{
    const char *name; ///< of its decoder
    const char *signature; ///< that its files begin with
};

constexpr Format formats[] = { { "png", "\x89PNG\r\n\x1a\n" }, { "jpeg", "\xff\xd8" } };

/// Only what the extensions stand for is decoded, though one may stand for the other. No other
/// decoder gets to see the file.
QByteArray formatOf(QIODevice &file)
{
    constexpr int longestSignature = 8;
    const QByteArray start = file.peek(longestSignature);
    for (const Format &format : formats) {
        if (start.startsWith(format.signature))
            return format.name;
    }
    return {};
}

// Of ITU-T T.81, annex B.
constexpr int jpegMarkerSize = 2;
constexpr int jpegLengthSize = 2;
constexpr unsigned startOfScan = 0xda;
constexpr int frameComponents = 5; ///< offset of the number of components in a frame header

struct JpegSegment
{
    unsigned marker = 0; ///< 0: these bytes are no segment
    QByteArray start; ///< its first bytes, behind the length

    unsigned byteAt(int i) const
    {
        return i < start.size() ? static_cast<unsigned char>(start.at(i)) : 0;
    }
};

/// The segment at the file's position, which moves behind it. Anything unusual is no segment:
/// decoders search on where this function does not.
JpegSegment nextSegment(QIODevice &file)
{
    const qint64 begin = file.pos();
    JpegSegment segment;
    segment.start = file.read(jpegMarkerSize + jpegLengthSize + frameComponents + 1);
    const unsigned marker = segment.byteAt(1);
    const bool hasLength = marker >= 0xc0 && marker < 0xff && (marker < 0xd0 || marker > 0xd9);
    const unsigned length = (segment.byteAt(2) << 8U) + segment.byteAt(3);
    if (segment.byteAt(0) != 0xff || !hasLength || length < jpegLengthSize)
        return {};
    if (!file.seek(begin + jpegMarkerSize + length))
        return {};
    segment.marker = marker;
    segment.start.remove(0, jpegMarkerSize + jpegLengthSize);
    return segment;
}

bool isFrame(unsigned marker)
{
    const bool other = marker == 0xc4 || marker == 0xc8 || marker == 0xcc;
    return marker >= 0xc0 && marker <= 0xcf && !other;
}

bool isProgressive(unsigned frameMarker)
{
    return (frameMarker & 3U) == 2;
}

/// Whether decoding the JPEG in `file` holds the coefficients of the whole picture in memory:
/// progressive ones and those of several scans do. True too when its headers make no sense.
bool holdsWholeJpeg(QIODevice &file)
{
    unsigned components = 0;
    bool progressive = false;
    file.seek(jpegMarkerSize); // behind the start-of-image marker
    for (int i = 0; i < maxJpegSegments; ++i) {
        const JpegSegment segment = nextSegment(file);
        if (segment.marker == startOfScan)
            return components == 0 || progressive || segment.byteAt(0) < components;
        if (isFrame(segment.marker)) {
            progressive = isProgressive(segment.marker);
            components = segment.byteAt(frameComponents);
        }
        if (segment.marker == 0)
            return true;
    }
    return true;
}

QByteArray encoded(const QImage &picture, const char *format)
{
    QBuffer buffer;
    QImageWriter writer(&buffer, format);
    return writer.write(picture) && buffer.size() <= maxPreviewBytes ? buffer.data() : QByteArray();
}

} // namespace

void loadDecoders()
{
    for (const Format &format : formats) {
        QBuffer nothing;
        QImageReader reader(&nothing, format.name);
        reader.setAutoDetectImageFormat(false);
        static_cast<void>(reader.canRead());
    }
}

QByteArray makePreview(QIODevice &file, const QByteArray &extension)
{
#if QT_VERSION >= QT_VERSION_CHECK(6, 0, 0)
    // Its own limit is lower than ours; ours is checked below.
    QImageReader::setAllocationLimit(int(maxPreviewMemory / (1024 * 1024)));
#endif
    const QByteArray format = formatOf(file);
    if (format.isEmpty())
        return {};
    const bool whole = holdsWholeJpeg(file);
    file.seek(0);
    QImageReader reader(&file, format);
    reader.setAutoDetectImageFormat(false);
    reader.setAutoTransform(true);
    if (!reader.canRead() || reader.size().isEmpty())
        return {};
    const bool png = extension == "png";
    const QImage picture = png ? previewOfPng(reader) : previewOfJpg(reader, whole);
    return picture.isNull() ? QByteArray() : encoded(picture, png ? "PNG" : "JPEG");
}
