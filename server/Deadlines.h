#pragma once

#include <chrono>

/// How long a peer may keep a connection waiting.
namespace deadlines {

constexpr std::chrono::seconds handshake{ 10 };
constexpr std::chrono::seconds idle{ 75 }; ///< between requests
constexpr std::chrono::seconds head{ 20 }; ///< for all of it, longer only as its bytes come
constexpr int headRate = 100; ///< bytes a second of a head that takes longer
constexpr std::chrono::seconds body{ 60 }; ///< without a byte either way
constexpr std::chrono::seconds drain{ 10 }; ///< for a peer that takes nothing of the last bytes
constexpr std::chrono::seconds linger{ 2 }; ///< for one that still sends what nobody reads

} // namespace deadlines
