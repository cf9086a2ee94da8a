#pragma once

#include <QtGlobal>

#include <cstddef>

namespace standard {

// Bytes of a request's body; what is longer is refused.
constexpr qint64 maxPropFindBody = qint64(64) * 1024;
constexpr qint64 maxLockBody = qint64(64) * 1024;
constexpr qint64 maxPropPatchBody = qint64(1024) * 1024;

/// Elements of a body that is read in the event loop: more take longer than it has.
constexpr int maxElementsInLoop = 1000;

/// Properties that a request names.
constexpr std::size_t maxProperties = 200;

/// Bytes of the owner of a lock, which is told with each resource that the lock covers.
constexpr int maxOwner = 4 * 1024;

} // namespace standard
