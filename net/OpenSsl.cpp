#include "net/OpenSsl.h"

#include <QLibrary>

namespace {

template <typename Function> bool found(QLibrary &library, const char *name, Function *&function)
{
    function = reinterpret_cast<Function *>(library.resolve(name));
    return function != nullptr;
}

} // namespace

const OpenSsl *OpenSsl::library()
{
    static OpenSsl functions;
    static const bool loaded = functions.load();
    return loaded ? &functions : nullptr;
}

bool OpenSsl::load()
{
    // Those of the other library that this needs are found through it.
    QLibrary library(QStringLiteral("ssl"), OPENSSL_VERSION_MAJOR);
#define QUILLON_TLS_FIND(name) &&found(library, #name, name)
    return library.load() QUILLON_TLS_FUNCTIONS(QUILLON_TLS_FIND);
#undef QUILLON_TLS_FIND
}
