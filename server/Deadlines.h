#pragma once

#include <chrono>

/// How long a peer may keep a connection waiting.
namespace deadlines {

/// Bytes a second of a head or body that takes longer. The slowest phone networks have forty times
/// as much, so that a minute with an outage of most of it is enough.
constexpr int leastRate = 100;

constexpr std::chrono::seconds handshake{ 10 };
constexpr std::chrono::seconds idle{ 75 }; ///< between requests
constexpr std::chrono::seconds head{ 20 }; ///< for all of it, longer only as its bytes come
constexpr std::chrono::seconds body{ 60 }; ///< for the least that is to go of one, either way
constexpr std::chrono::seconds drain{ 10 }; ///< for a peer that takes nothing of the last bytes
constexpr std::chrono::seconds linger{ 2 }; ///< for one that still sends what nobody reads

} // namespace deadlines
