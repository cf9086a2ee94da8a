#pragma once

#include "files/FileDescriptor.h"

#include <QtGlobal>

class Socket;

/// Sends a part of one file to one peer, a helping per turn. Nothing of it is kept in memory, so
/// that a peer that takes nothing costs its descriptor.
class FileSender
{
public:
    enum class Outcome {
        Sent, ///< all of it
        Waiting, ///< until the peer has taken some
        Helped, ///< this turn's helping is over, there is more
        Failed ///< the file ended early, the traffic limit was reached or the connection broke
    };

    /// From now on it is about `count` bytes of `opened` from `offset` on.
    void start(OpenDescriptor opened, qint64 offset, qint64 count);

    /// Sends what the peer takes of this turn's helping.
    Outcome send(Socket &socket);

    qint64 bytesLeft() const { return left; }

    /// Lets the file go.
    void stop() { file.reset(); }

private:
    OpenDescriptor file;
    qint64 position = 0;
    qint64 left = 0;
};
