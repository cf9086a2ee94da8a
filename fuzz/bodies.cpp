#include "standard/dav/IfHeader.h"
#include "standard/dav/PropertyStore.h"
#include "standard/dav/RequestBodies.h"

#include <array>
#include <cstdint>

namespace {

using Reader = void (*)(const QByteArray &);

constexpr std::array<Reader, 5> readers{
    [](const QByteArray &bytes) { standard::PropFindBody::parse(bytes); },
    [](const QByteArray &bytes) { standard::PropPatchBody::parse(bytes); },
    [](const QByteArray &bytes) { standard::LockBody::parse(bytes); },
    [](const QByteArray &bytes) { standard::IfHeader::parse(bytes); },
    [](const QByteArray &bytes) { standard::unpacked(bytes); },
};

} // namespace

/// The bodies of WebDAV and what is kept of them; the first byte says which.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size)
{
    if (size > 0)
        readers.at(data[0] % readers.size())(
            QByteArray(reinterpret_cast<const char *>(data) + 1, int(size) - 1));
    return 0;
}
