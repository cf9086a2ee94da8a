#include "app/HeifDecoder.h"

#include <QByteArray>
#include <QIODevice>

#include <cstddef>
#include <cstdint>
#include <memory>

namespace {

constexpr qint64 maxFile = qint64(64) * 1024 * 1024; ///< bytes, held in memory

// What is used of libheif's interface, which stays for its major version.
struct HeifContext;
struct HeifPicture; ///< not decoded
struct HeifPixels;
struct HeifError
{
    int code; ///< 0: there is none
    int detail;
    const char *text;
};
constexpr int rgbSpace = 1;
constexpr int rgbChroma = 10; ///< 3 bytes for a pixel
constexpr int rgbaChroma = 11; ///< 4
constexpr int allChannels = 10; ///< side by side

template <typename T> using Owned = std::unique_ptr<T, void (*)(const T *)>;

/// Null when it was not made.
template <typename T> Owned<T> taken(const HeifError &error, T *made, void (*release)(const T *))
{
    return { error.code == 0 ? made : nullptr, release };
}

class Heif
{
public:
    bool load();
    QImage decode(QIODevice &file, int edge) const;

private:
    using Picture = Owned<HeifPicture>;

    Picture thumbnailOf(const HeifPicture &picture, int edge) const;
    QImage decoded(const HeifPicture &picture, int edge) const;

    HeifContext *(*newContext)() = nullptr;
    void (*freeContext)(const HeifContext *) = nullptr;
    HeifError (*read)(HeifContext *, const void *, std::size_t, const void *) = nullptr;
    HeifError (*primaryPicture)(HeifContext *, HeifPicture **) = nullptr;
    void (*freePicture)(const HeifPicture *) = nullptr;
    int (*width)(const HeifPicture *) = nullptr;
    int (*height)(const HeifPicture *) = nullptr;
    int (*hasAlpha)(const HeifPicture *) = nullptr;
    int (*thumbnailIds)(const HeifPicture *, std::uint32_t *, int) = nullptr;
    HeifError (*thumbnail)(const HeifPicture *, std::uint32_t, HeifPicture **) = nullptr;
    HeifError (*decodePicture)(const HeifPicture *, HeifPixels **, int, int,
                               const void *) = nullptr;
    void (*freePixels)(const HeifPixels *) = nullptr;
    const uchar *(*plane)(const HeifPixels *, int, int *) = nullptr;
    int (*planeWidth)(const HeifPixels *, int) = nullptr;
    int (*planeHeight)(const HeifPixels *, int) = nullptr;
};

bool Heif::load()
{
    QLibrary library(QStringLiteral("heif"), 1);
    library.setLoadHints(QLibrary::ResolveAllSymbolsHint);
    // Newer ones load their decoders by this, older ones come with them.
    HeifError (*loadDecoders)(void *) = nullptr;
    if (resolve(library, "heif_init", loadDecoders))
        loadDecoders(nullptr);
    return resolve(library, "heif_context_alloc", newContext)
        && resolve(library, "heif_context_free", freeContext)
        && resolve(library, "heif_context_read_from_memory_without_copy", read)
        && resolve(library, "heif_context_get_primary_image_handle", primaryPicture)
        && resolve(library, "heif_image_handle_release", freePicture)
        && resolve(library, "heif_image_handle_get_width", width)
        && resolve(library, "heif_image_handle_get_height", height)
        && resolve(library, "heif_image_handle_has_alpha_channel", hasAlpha)
        && resolve(library, "heif_image_handle_get_list_of_thumbnail_IDs", thumbnailIds)
        && resolve(library, "heif_image_handle_get_thumbnail", thumbnail)
        && resolve(library, "heif_decode_image", decodePicture)
        && resolve(library, "heif_image_release", freePixels)
        && resolve(library, "heif_image_get_plane_readonly", plane)
        && resolve(library, "heif_image_get_width", planeWidth)
        && resolve(library, "heif_image_get_height", planeHeight);
}

QImage Heif::decode(QIODevice &file, int edge) const
{
    const QByteArray bytes = file.size() <= maxFile ? file.readAll() : QByteArray();
    const Owned<HeifContext> context(newContext(), freeContext);
    if (!context
        || read(context.get(), bytes.constData(), std::size_t(bytes.size()), nullptr).code != 0)
        return {};
    HeifPicture *found = nullptr;
    const HeifError error = primaryPicture(context.get(), &found);
    const Picture picture = taken(error, found, freePicture);
    if (!picture)
        return {};
    const Picture small = thumbnailOf(*picture, edge);
    return decoded(small ? *small : *picture, edge);
}

/// The first one of the file's own that is large enough; it takes a fraction of the time. Null:
/// there is none, or it is not turned as the picture is.
Heif::Picture Heif::thumbnailOf(const HeifPicture &picture, int edge) const
{
    std::uint32_t id = 0;
    HeifPicture *found = nullptr;
    if (thumbnailIds(&picture, &id, 1) != 1)
        return { nullptr, freePicture };
    const HeifError error = thumbnail(&picture, id, &found);
    Picture small = taken(error, found, freePicture);
    const auto isUpright = [this](const HeifPicture &each) { return width(&each) < height(&each); };
    if (small && qMax(width(small.get()), height(small.get())) >= edge
        && isUpright(*small) == isUpright(picture))
        return small;
    return { nullptr, freePicture };
}

QImage Heif::decoded(const HeifPicture &picture, int edge) const
{
    const bool alpha = hasAlpha(&picture) != 0;
    HeifPixels *made = nullptr;
    const HeifError error =
        decodePicture(&picture, &made, rgbSpace, alpha ? rgbaChroma : rgbChroma, nullptr);
    const Owned<HeifPixels> pixels = taken(error, made, freePixels);
    int stride = 0;
    const uchar *bytes = pixels ? plane(pixels.get(), allChannels, &stride) : nullptr;
    if (!bytes)
        return {};
    const QImage whole(bytes, planeWidth(pixels.get(), allChannels),
                       planeHeight(pixels.get(), allChannels), stride,
                       alpha ? QImage::Format_RGBA8888 : QImage::Format_RGB888);
    return scaledDown(whole, edge);
}

} // namespace

Decoder heifDecoder()
{
    Heif heif;
    if (!heif.load())
        return {};
    return [heif](QIODevice &file, int edge) { return heif.decode(file, edge); };
}
