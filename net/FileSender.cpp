#include "net/FileSender.h"

#include "net/Socket.h"

#include <algorithm>

namespace {

constexpr qint64 helping = qint64(256) * 1024; ///< bytes for one peer in one turn

} // namespace

void FileSender::start(OpenDescriptor opened, qint64 offset, qint64 count)
{
    file = std::move(opened);
    position = offset;
    left = count;
}

FileSender::Outcome FileSender::send(Socket &socket)
{
    const qint64 goal = position + std::min(left, helping);
    while (position < goal) {
        const qint64 taken = socket.sendFile(file->get(), position, goal - position);
        if (taken <= 0)
            return taken == 0 ? Outcome::Waiting : Outcome::Failed;
        position += taken;
        left -= taken;
    }
    return left > 0 ? Outcome::Helped : Outcome::Sent;
}
