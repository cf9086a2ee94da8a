#include "classic/http/HeadScan.h"
#include "classic/http/RequestTarget.h"
#include "server/HttpDate.h"
#include "standard/dav/LockTable.h"
#include "standard/http/Digest.h"
#include "standard/http/Ranges.h"
#include "standard/http/Request.h"
#include "standard/http/Uri.h"
#include "standard/web/UploadChecksum.h"
#include "standard/web/UploadMetadata.h"

#include <array>
#include <cstdint>

namespace {

using Reader = void (*)(const QByteArray &);

void readMetadata(const QByteArray &bytes)
{
    const std::optional<standard::UploadMetadata> read = standard::parseUploadMetadata(bytes);
    const QByteArray path = read ? '/' + read->path + '/' : "/a/";
    for (const char *bad : { "//", "/./", "/../" }) {
        if (path.contains(bad) || path.contains('\0'))
            qFatal("a path that is none");
    }
}

constexpr std::array<Reader, 10> readers{
    [](const QByteArray &bytes) { standard::parseHead(bytes); },
    [](const QByteArray &bytes) { scanHead(bytes); },
    [](const QByteArray &bytes) { parseTarget(bytes); },
    [](const QByteArray &bytes) { standard::parseTarget(bytes); },
    [](const QByteArray &bytes) { standard::rangesOf(bytes, 1000); },
    [](const QByteArray &bytes) { standard::DigestCredentials::parse(bytes); },
    [](const QByteArray &bytes) { parseHttpDate(bytes); },
    [](const QByteArray &bytes) { standard::lockTimeout(bytes); },
    readMetadata,
    [](const QByteArray &bytes) { standard::UploadChecksum::parse(bytes); },
};

} // namespace

/// Heads and their fields, each by the function that reads it; the first byte says which.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size)
{
    if (size > 0)
        readers.at(data[0] % readers.size())(
            QByteArray(reinterpret_cast<const char *>(data) + 1, int(size) - 1));
    return 0;
}
