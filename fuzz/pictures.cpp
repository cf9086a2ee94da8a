#include "app/PreviewPicture.h"

#include <QBuffer>
#include <QByteArray>

#include <cstdint>
#include <new>

/// Pictures as the preview program gets them; the first byte says by which ending.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size)
{
    if (size == 0)
        return 0;
    QByteArray bytes(reinterpret_cast<const char *>(data) + 1, int(size) - 1);
    QBuffer file(&bytes);
    file.open(QIODevice::ReadOnly);
    makePreview(file, data[0] % 2 == 0 ? "png" : "jpg");
    return 0;
}
