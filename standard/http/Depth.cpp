#include "standard/http/Depth.h"

namespace standard {

std::optional<Depth> parseDepth(const std::optional<QByteArray> &field, Depth usual)
{
    if (!field)
        return usual;
    if (*field == "0")
        return Depth::Zero;
    if (*field == "1")
        return Depth::One;
    return qstricmp(field->constData(), "infinity") == 0 ? std::make_optional(Depth::Infinity)
                                                         : std::nullopt;
}

} // namespace standard
