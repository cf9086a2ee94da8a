#include "files/Pipe.h"

#include <algorithm>
#include <array>

#include <fcntl.h>
#include <unistd.h>

namespace {

constexpr int room = 256 * 1024; ///< bytes; more of them stay in no cache of a processor

} // namespace

bool Pipe::open()
{
    if (in.isOpen() && filled == 0)
        return true;
    // What a file did not take goes with the pipe.
    in.reset();
    out.reset();
    std::array<int, 2> ends{};
    if (::pipe2(ends.data(), O_CLOEXEC | O_NONBLOCK) != 0)
        return false;
    out.reset(ends[0]);
    in.reset(ends[1]);
    filled = 0;
    // A smaller one does as well, in more calls.
    ::fcntl(in.get(), F_SETPIPE_SZ, room);
    return true;
}

qint64 Pipe::fill(int socket, qint64 most)
{
    const auto count = std::size_t(std::min<qint64>(most, room));
    const ssize_t taken =
        ::splice(socket, nullptr, in.get(), nullptr, count, SPLICE_F_MOVE | SPLICE_F_NONBLOCK);
    filled = std::max<qint64>(taken, 0);
    return taken;
}

qint64 Pipe::pour(int file)
{
    return gone(::splice(out.get(), nullptr, file, nullptr, std::size_t(filled),
                         SPLICE_F_MOVE | SPLICE_F_NONBLOCK));
}

qint64 Pipe::read(char *data, qint64 max)
{
    return gone(::read(out.get(), data, std::size_t(max)));
}

qint64 Pipe::gone(qint64 bytes)
{
    filled -= std::max<qint64>(bytes, 0);
    return bytes;
}
