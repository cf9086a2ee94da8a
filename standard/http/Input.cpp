#include "standard/http/Input.h"

#include "net/Socket.h"

#include <algorithm>
#include <array>
#include <cstring>

namespace standard {

namespace {

constexpr qint64 readAtOnce = 2048; ///< most heads fit

} // namespace

qint64 Input::fill(int most)
{
    std::array<char, readAtOnce> piece;
    qint64 taken = 0;
    while (buffer.size() < most) {
        const qint64 room = qint64(most) - buffer.size();
        const qint64 size = socket.read(piece.data(), std::min(room, readAtOnce));
        if (size <= 0)
            return taken > 0 ? taken : size;
        buffer.append(piece.data(), int(size));
        taken += size;
    }
    return taken;
}

void Input::take(qint64 size)
{
    if (size < buffer.size())
        buffer.remove(0, int(size));
    else
        buffer = {};
}

qint64 Input::read(char *data, qint64 max)
{
    if (buffer.isEmpty())
        return socket.read(data, max);
    const qint64 size = std::min<qint64>(max, buffer.size());
    std::memcpy(data, buffer.constData(), std::size_t(size));
    take(size);
    return size;
}

Pipe *Input::pipe() const
{
    return buffer.isEmpty() ? socket.pipe() : nullptr;
}

qint64 Input::read(Pipe &pipe, qint64 max)
{
    return socket.read(pipe, max);
}

bool Input::mayRead() const
{
    return !buffer.isEmpty() || socket.mayRead();
}

} // namespace standard
