#include "app/PreviewPicture.h"

#include "app/HeifDecoder.h"
#include "app/VideoDecoder.h"

#include <QBuffer>
#include <QImage>
#include <QImageIOHandler>
#include <QImageReader>
#include <QImageWriter>
#include <QPixelFormat>

#include <algorithm>
#include <iterator>
#include <string_view>

namespace {

constexpr int fastDecoding = 25; ///< quality of the decoder
constexpr int smoothDecoding = 75; ///< the same
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

/// Bytes that decoding a JPEG takes for a picture of the size `scaled`: it is reduced in eighths,
/// to no less than that.
qint64 jpegBytes(const QSize &size, const QSize &scaled, bool whole)
{
    constexpr int reduction = 8;
    constexpr qint64 coefficientBytes = 4 * sizeof(qint16); // of up to four components
    const QSize decoded = size / reduction + scaled;
    const qint64 coefficients = whole ? pixels(size) * coefficientBytes : 0;
    return imageBytes(decoded, QImage::Format_RGB32) + coefficients;
}

QSize scaledInto(const QSize &size, int edge)
{
    return size.scaled(edge, edge, Qt::KeepAspectRatio).expandedTo(QSize(1, 1));
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
    // What is scaled is not turned yet.
    const QSize scaled = scaledInto(size, previewSize);
    const qint64 memory = reader.format() == "jpeg" ? jpegBytes(size, scaled, whole)
                                                    : imageBytes(size, reader.imageFormat());
    if (memory > maxDecoded || !canScale(reader))
        return {};
    reader.setQuality(fastDecoding);
    reader.setScaledSize(scaled);
    return reader.read();
}

/// To scale without a decoder's help takes a copy, and so does turning.
QImage previewWithin(QImageReader &reader, int edge, bool whole)
{
    const QSize size = reader.size();
    const bool large = size.width() > edge || size.height() > edge;
    const QSize scaled = large ? scaledInto(size, edge) : size;
    const QImage::Format format = reader.imageFormat();
    const qint64 decoded =
        reader.format() == "jpeg" ? jpegBytes(size, scaled, whole) : 2 * imageBytes(size, format);
    if (decoded + 2 * imageBytes(scaled, format) > maxDecoded)
        return {};
    reader.setQuality(smoothDecoding);
    if (large)
        reader.setScaledSize(scaled);
    return reader.read();
}

bool isTransparent(const QImage &picture)
{
    if (!picture.hasAlphaChannel())
        return false;
    constexpr uchar opaque = 255;
    const QImage alpha = picture.convertToFormat(QImage::Format_Alpha8);
    for (int y = 0; y < alpha.height(); ++y) {
        const uchar *line = alpha.constScanLine(y);
        if (!std::all_of(line, line + alpha.width(), [](uchar each) { return each == opaque; }))
            return true;
    }
    return false;
}

/// By what a format is decoded.
enum class By {
    Toolkit,
    Heif, ///< or the toolkit where that has a plugin instead
    Video
};

struct Format
{
    const char *name; ///< of its decoder
    std::string_view signature; ///< that its files have
    std::size_t offset = 0; ///< bytes in front of that
    By by = By::Toolkit;
    std::size_t again = 0; ///< after so many bytes, and as many once more; 0: it is there once
};

/// The first that fits. Those of telephones and of the web need plugins or libraries that not every
/// system has.
constexpr Format formats[] = {
    { "png", "\x89PNG\r\n\x1a\n" },
    { "jpeg", "\xff\xd8" },
    { "gif", "GIF8" },
    { "avi", "AVI ", 8, By::Video },
    { "webp", "RIFF" },
    { "heic", "ftyphei", 4, By::Heif },
    { "heic", "ftyphev", 4, By::Heif },
    { "heic", "ftypmif1", 4, By::Heif },
    { "heic", "ftypmsf1", 4, By::Heif },
    { "avif", "ftypavi", 4, By::Heif },
    { "mov", "ftyp", 4, By::Video },
    { "mov", "moov", 4, By::Video },
    { "mov", "wide", 4, By::Video },
    { "mov", "mdat", 4, By::Video },
    { "matroska", "\x1a\x45\xdf\xa3", 0, By::Video },
    { "ogg", "OggS", 0, By::Video },
    { "mpeg", std::string_view("\0\0\1\xba", 4), 0, By::Video },
    { "flv", "FLV\1", 0, By::Video },
    { "asf", "\x30\x26\xb2\x75\x8e\x66\xcf\x11", 0, By::Video },
    { "mpegts", "G", 0, By::Video, 188 },
    { "mpegts", "G", 4, By::Video, 192 },
};

/// No other decoder gets to see the file. Null when there is none for it.
const Format *formatOf(QIODevice &file)
{
    constexpr int enough = 400;
    const QByteArray bytes = file.peek(enough).leftJustified(enough, '\0');
    const std::string_view start(bytes.constData(), enough);
    const auto isAt = [start](const Format &format, std::size_t offset) {
        return start.substr(offset, format.signature.size()) == format.signature;
    };
    const auto fits = [isAt](const Format &format) {
        return isAt(format, format.offset) && isAt(format, format.offset + format.again)
            && isAt(format, format.offset + 2 * format.again);
    };
    const auto *found = std::find_if(std::begin(formats), std::end(formats), fits);
    return found == std::end(formats) ? nullptr : found;
}

/// What is asked for by the ending of its name is of one of the two formats that endings stand for,
/// though one may stand for the other.
bool isDecoded(const QByteArray &format, const QByteArray &kind)
{
    return !isForLists(kind) || format == "png" || format == "jpeg";
}

Decoder loadDecoder(const Format &format)
{
    switch (format.by) {
    case By::Toolkit:
        return {};
    case By::Heif:
        return heifDecoder();
    case By::Video:
        return videoDecoder(format.name);
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
    return !picture.isNull() && writer.write(picture) && buffer.size() <= maxPreviewBytes
        ? buffer.data()
        : QByteArray();
}

QByteArray encoded(const QImage &picture)
{
    return encoded(picture, isTransparent(picture) ? "PNG" : "JPEG");
}

} // namespace

bool isForLists(const QByteArray &kind)
{
    return kind == "png" || kind == "jpg";
}

Decoder loadCodecs(QIODevice &file, const QByteArray &kind)
{
    const Format *format = formatOf(file);
    Decoder decoder = format && !isForLists(kind) ? loadDecoder(*format) : Decoder();
    for (const QByteArray &name : { QByteArray(format ? format->name : ""), QByteArray("jpeg") }) {
        QBuffer nothing;
        QImageReader reader(&nothing, name);
        reader.setAutoDetectImageFormat(false);
        static_cast<void>(reader.canRead());
    }
    return decoder;
}

QByteArray makePreview(QIODevice &file, const QByteArray &kind, const Decoder &decoder)
{
#if QT_VERSION >= QT_VERSION_CHECK(6, 0, 0)
    // Its own limit is lower than ours; ours is checked below.
    QImageReader::setAllocationLimit(int(maxPreviewMemory / (1024 * 1024)));
#endif
    const Format *format = formatOf(file);
    if (!format || !isDecoded(format->name, kind))
        return {};
    if (decoder)
        return encoded(decoder(file, kind.toInt()));
    const bool whole = holdsWholeJpeg(file);
    file.seek(0);
    QImageReader reader(&file, format->name);
    reader.setAutoDetectImageFormat(false);
    reader.setAutoTransform(true);
    if (!reader.canRead() || reader.size().isEmpty())
        return {};
    if (kind == "png")
        return encoded(previewOfPng(reader), "PNG");
    if (kind == "jpg")
        return encoded(previewOfJpg(reader, whole), "JPEG");
    return encoded(previewWithin(reader, kind.toInt(), whole));
}
