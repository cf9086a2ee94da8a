#include "fuzz/Talk.h"
#include "standard/dav/Routes.h"
#include "standard/http/StandardFace.h"
#include "standard/web/Routes.h"

#include <cstdint>

/// The standard face: heads, chunks, conditions, ranges, WebDAV, and all that pages use.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size)
{
    static const FaceMaker faces =
        standard::standardFaces(standard::withWeb(standard::withDav(standard::fileRoutes())));
    talk(faces, QByteArray(reinterpret_cast<const char *>(data), int(size)));
    return 0;
}
