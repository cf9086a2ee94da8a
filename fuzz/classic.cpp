#include "classic/dav/Routes.h"
#include "classic/http/ClassicFace.h"
#include "classic/listing/Routes.h"
#include "classic/pages/Routes.h"
#include "fuzz/Talk.h"

#include <cstdint>

/// The classic face with all of its rooms: heads, forms, multipart bodies, listings.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size)
{
    static const FaceMaker faces = [] {
        Routes routes;
        for (const Routes &room : { pageRoutes(), listingRoutes(), davRoutes(), fileRoutes() })
            routes.insert(routes.end(), room.begin(), room.end());
        return classicFaces(routes);
    }();
    talk(faces, QByteArray(reinterpret_cast<const char *>(data), int(size)));
    return 0;
}
