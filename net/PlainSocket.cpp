#include "net/PlainSocket.h"

#include <algorithm>
#include <array>

#include <sys/sendfile.h>
#include <unistd.h>

namespace {

constexpr qint64 smallFile = qint64(16) * 1024; ///< bytes; copying them costs less than a call

} // namespace

bool PlainSocket::send(const QByteArray &bytes, bool more)
{
    if (!canSend())
        return false;
    pass(bytes.constData(), bytes.size(), more);
    return canSend();
}

qint64 PlainSocket::send(int file, qint64 offset, qint64 count)
{
    if (!canSend())
        return -1;
    if (holds() && count <= smallFile)
        return sendSmall(file, offset, count);
    if (holds())
        flush(true);
    if (queued() > 0)
        return 0;
    off_t position = offset;
    const qint64 taken = ::sendfile(descriptor(), file, &position, size_t(count));
    if (taken > 0)
        return taken;
    return taken < 0 && mustWait() ? 0 : -1;
}

/// Together with the head that waits for it.
qint64 PlainSocket::sendSmall(int file, qint64 offset, qint64 count)
{
    std::array<char, smallFile> content;
    const qint64 size = ::pread(file, content.data(), size_t(count), offset);
    pass(content.data(), std::max<qint64>(0, size), false);
    return size > 0 ? size : -1;
}
