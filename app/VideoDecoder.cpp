#include "app/VideoDecoder.h"

#include <QIODevice>

#include <cerrno>
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <memory>

namespace {

// What is used of the interface of libffmpegthumbnailer, which stays for its major version.
struct Thumbnailer
{
    int edge; ///< pixels; 0: as large as the video
    int seekPercentage;
    char *seekTime;
    int filmStrip;
    int workAround;
    int quality;
    int imageType;
    void *input; ///< opened by us
    int keepsAspect;
    int prefersCover;
    void *own;
};
struct Frame
{
    const uchar *bytes;
    int size;
    int width;
    int height;
    int source;
    void *own;
};
constexpr int rawImage = 2;
constexpr int rawPixel = 3; ///< bytes

// The same of libavformat.
struct Input
{
    const void *others[4];
    void *reader;
};
constexpr std::size_t readerBuffer = std::size_t(32) * 1024; ///< bytes
constexpr int asksForSize = 0x10000; ///< instead of seeking
constexpr int endOfFile = -('E' | 'O' << 8 | 'F' << 16 | ' ' << 24);

int readMore(void *file, char *buffer, int size)
{
    const qint64 count = static_cast<QIODevice *>(file)->read(buffer, size);
    if (count < 0)
        return -EIO;
    return count == 0 ? endOfFile : int(count);
}

std::int64_t seekOrSize(void *opened, std::int64_t offset, int from)
{
    auto *file = static_cast<QIODevice *>(opened);
    if (from == asksForSize)
        return file->size();
    return from == SEEK_SET && file->seek(offset) ? offset : -EINVAL;
}

/// Reads by the descriptor that is open, as nothing can be opened any more.
class Video
{
public:
    bool load(const char *container);
    QImage decode(QIODevice &file, int edge) const;

private:
    Input *opened(QIODevice &file) const;

    Thumbnailer *(*newThumbnailer)() = nullptr;
    void (*freeThumbnailer)(Thumbnailer *) = nullptr;
    Frame *(*newFrame)() = nullptr;
    void (*freeFrame)(Frame *) = nullptr;
    int (*takeFrame)(Thumbnailer *, const char *, Frame *) = nullptr;
    void *(*allocate)(std::size_t) = nullptr;
    Input *(*newInput)() = nullptr;
    void *(*newReader)(void *, int, int, void *, int (*)(void *, char *, int), void *,
                       std::int64_t (*)(void *, std::int64_t, int)) = nullptr;
    int (*openInput)(Input **, const char *, const void *, void *) = nullptr;
    const void *format = nullptr;
};

bool Video::load(const char *container)
{
    QLibrary library(QStringLiteral("ffmpegthumbnailer"), 4);
    library.setLoadHints(QLibrary::ResolveAllSymbolsHint);
    const void *(*findFormat)(const char *) = nullptr;
    if (!resolve(library, "av_find_input_format", findFormat))
        return false;
    format = findFormat(container);
    return format && resolve(library, "video_thumbnailer_create", newThumbnailer)
        && resolve(library, "video_thumbnailer_destroy", freeThumbnailer)
        && resolve(library, "video_thumbnailer_create_image_data", newFrame)
        && resolve(library, "video_thumbnailer_destroy_image_data", freeFrame)
        && resolve(library, "video_thumbnailer_generate_thumbnail_to_buffer", takeFrame)
        && resolve(library, "av_malloc", allocate)
        && resolve(library, "avformat_alloc_context", newInput)
        && resolve(library, "avio_alloc_context", newReader)
        && resolve(library, "avformat_open_input", openInput);
}

/// Null when it can't be. Ends with the process, as its one preview does.
Input *Video::opened(QIODevice &file) const
{
    void *buffer = allocate(readerBuffer);
    Input *input = newInput();
    if (!buffer || !input)
        return nullptr;
    input->reader = newReader(buffer, int(readerBuffer), 0, &file, readMore, nullptr, seekOrSize);
    return input->reader && openInput(&input, "", format, nullptr) == 0 ? input : nullptr;
}

QImage Video::decode(QIODevice &file, int edge) const
{
    const std::unique_ptr<Thumbnailer, void (*)(Thumbnailer *)> thumbnailer(newThumbnailer(),
                                                                            freeThumbnailer);
    const std::unique_ptr<Frame, void (*)(Frame *)> frame(newFrame(), freeFrame);
    Input *input = opened(file);
    if (!thumbnailer || !frame || !input)
        return {};
    thumbnailer->edge = 0;
    thumbnailer->imageType = rawImage;
    thumbnailer->input = input;
    if (takeFrame(thumbnailer.get(), "", frame.get()) != 0 || !frame->bytes)
        return {};
    const int line = frame->width * rawPixel;
    if (frame->size != qint64(line) * frame->height)
        return {};
    const QImage whole(frame->bytes, frame->width, frame->height, line, QImage::Format_RGB888);
    return scaledDown(whole, edge);
}

} // namespace

Decoder videoDecoder(const char *container)
{
    Video video;
    if (!video.load(container))
        return {};
    return [video](QIODevice &file, int edge) { return video.decode(file, edge); };
}
