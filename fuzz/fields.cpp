#include "classic/http/HeadScan.h"
#include "classic/http/RequestTarget.h"
#include "standard/dav/LockTable.h"
#include "standard/http/Digest.h"
#include "standard/http/HttpDate.h"
#include "standard/http/Ranges.h"
#include "standard/http/Request.h"
#include "standard/http/Uri.h"

#include <array>
#include <cstdint>

namespace {

using Reader = void (*)(const QByteArray &);

constexpr std::array<Reader, 8> readers{
    [](const QByteArray &bytes) { standard::parseHead(bytes); },
    [](const QByteArray &bytes) { scanHead(bytes); },
    [](const QByteArray &bytes) { parseTarget(bytes); },
    [](const QByteArray &bytes) { standard::parseTarget(bytes); },
    [](const QByteArray &bytes) { standard::rangesOf(bytes, 1000); },
    [](const QByteArray &bytes) { standard::DigestCredentials::parse(bytes); },
    [](const QByteArray &bytes) { standard::parseHttpDate(bytes); },
    [](const QByteArray &bytes) { standard::lockTimeout(bytes); },
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
