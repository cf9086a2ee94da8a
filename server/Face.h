#pragma once

#include "server/Activity.h"

#include <functional>
#include <memory>
#include <optional>

class Connection;

/// What a face waits for, by which its connection knows how long that may take.
enum class Awaits {
    Nothing, ///< of the peer: the turn is ours
    Request, ///< the first byte of one; nobody loses by the end of the connection
    Head, ///< the rest of one
    Body, ///< its next bytes, or that the peer takes those of ours
    Drain, ///< that the peer takes the last bytes
    Linger ///< that it stops sending what nobody reads
};

/// How much of a head, its blank line among it, is looked at to find out what it asks for.
constexpr int maxHead = 16 * 1024; ///< bytes

/// Turns the bytes of one connection into requests and answers. Made and owned by its connection,
/// which outlives it and tells it what happens to the socket.
class Face
{
public:
    Face() = default;
    virtual ~Face() = default;
    Face(const Face &) = delete;
    Face &operator=(const Face &) = delete;

    virtual void readable() = 0;
    virtual void writable() = 0;

    /// The connection is over. Nothing can be written any more.
    virtual void gone() = 0;

    /// What it waits for now.
    virtual Awaits awaits() const = 0;

    /// The peer kept it waiting for too long.
    virtual void expire() = 0;

    /// The file that is on its way, but for `FileTransfer::done`.
    virtual std::optional<FileTransfer> transfer() const = 0;
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
