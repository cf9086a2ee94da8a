#pragma once

#include <QByteArray>

#include <optional>

namespace standard {

/// How far below a folder a request goes (RFC 4918, section 10.2).
enum class Depth { Zero, One, Infinity };

/// The value of a Depth header, `usual` for a request without one. None for anything else.
std::optional<Depth> parseDepth(const std::optional<QByteArray> &field, Depth usual);

} // namespace standard
