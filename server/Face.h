#pragma once

#include <chrono>
#include <functional>
#include <memory>

class Connection;

/// Turns the bytes of one connection into requests and answers. Made and owned by its connection,
/// which outlives it and tells it what happens to the socket.
class Face
{
public:
    using Clock = std::chrono::steady_clock;

    Face() = default;
    virtual ~Face() = default;
    Face(const Face &) = delete;
    Face &operator=(const Face &) = delete;

    virtual void readable() = 0;
    virtual void writable() = 0;

    /// The connection is over. Nothing can be written any more.
    virtual void gone() = 0;

    /// When a peer that did nothing since `lastActivity` has waited, or kept us waiting, too long:
    /// `expire` is called then. `time_point::max()` while it is not the peer's turn.
    virtual Clock::time_point deadline(Clock::time_point lastActivity) const = 0;
    virtual void expire() = 0;

    /// Whether it waits for the first byte of a request, so that nobody loses by its end.
    virtual bool isIdle() const = 0;
};

using FaceMaker = std::function<std::unique_ptr<Face>(Connection &)>;

/// What the faces of one served item have in common, such as locks: made by the first that needs
/// it, kept with the item's `Service`.
class FaceState
{
public:
    FaceState() = default;
    virtual ~FaceState() = default;
    FaceState(const FaceState &) = delete;
    FaceState &operator=(const FaceState &) = delete;
};
