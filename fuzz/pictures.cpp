#include "app/PreviewPicture.h"

#include <QBuffer>
#include <QByteArray>

#include <cstdint>
#include <iterator>
#include <new>

constexpr const char *kinds[] = { "png", "jpg", "320" };

/// Pictures as the preview program gets them; the first byte says for which kind of preview.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size)
{
    if (size == 0)
        return 0;
    QByteArray bytes(reinterpret_cast<const char *>(data) + 1, int(size) - 1);
    QBuffer file(&bytes);
    file.open(QIODevice::ReadOnly);
    makePreview(file, kinds[data[0] % std::size(kinds)]);
    return 0;
}
