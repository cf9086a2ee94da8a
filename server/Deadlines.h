#pragma once

#include <chrono>

/// How long a peer may keep a connection waiting.
namespace deadlines {

constexpr std::chrono::seconds idle{ 600 }; ///< between requests
constexpr std::chrono::seconds stall{ 60 }; ///< without a byte either way
constexpr std::chrono::seconds drain{ 10 }; ///< for a peer that takes nothing of the last bytes
constexpr std::chrono::seconds linger{ 2 }; ///< for one that still sends what nobody reads

} // namespace deadlines
