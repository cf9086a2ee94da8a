// Loaded before a program, lets calls of a kind fail: the record of four numbers in the file
// FAULTS, which program and test share, says of which kind, the how manieth of them from now, how
// many in a row, and how many have failed. The clock is FAULTS_LATER seconds ahead.

#include <atomic>
#include <cerrno>
#include <cstdarg>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <ctime>

#include <dlfcn.h>
#include <fcntl.h>
#include <sys/mman.h>
#include <sys/socket.h>
#include <sys/syscall.h>
#include <unistd.h>

namespace {

enum Kind : std::int32_t { Nothing, Write, Sync, Rename, Link, Open, Accept, Memory };

struct Plan
{
    std::atomic<std::int32_t> kind{ Nothing };
    std::atomic<std::int32_t> left{ 0 };
    std::atomic<std::int32_t> times{ 0 };
    std::atomic<std::int32_t> failed{ 0 };
};

Plan none;
Plan *plan = &none;

__attribute__((constructor)) void begin()
{
    const int fd = ::open(::getenv("FAULTS"), O_RDWR | O_CLOEXEC);
    void *shared = ::mmap(nullptr, sizeof(Plan), PROT_READ | PROT_WRITE, MAP_SHARED, fd, 0);
    if (shared != MAP_FAILED)
        plan = static_cast<Plan *>(shared);
}

bool fails(Kind kind, int error)
{
    if (plan->kind != kind)
        return false;
    const std::int32_t left = --plan->left;
    if (left > 0 || left <= -plan->times)
        return false;
    ++plan->failed;
    errno = error;
    return true;
}

} // namespace

/// A call of this name that may fail, else does what the next one of that name does.
#define MAY_FAIL(name, kind, error, result, parameters, ...)                                       \
    extern "C" result name parameters                                                              \
    {                                                                                              \
        static const auto next =                                                                   \
            reinterpret_cast<result(*) parameters>(::dlsym(RTLD_NEXT, #name));                     \
        return fails(kind, error) ? -1 : next(__VA_ARGS__);                                        \
    }

MAY_FAIL(write, Write, ENOSPC, ssize_t, (int fd, const void *data, std::size_t size), fd, data,
         size)
MAY_FAIL(pwrite, Write, ENOSPC, ssize_t, (int fd, const void *data, std::size_t size, off_t at), fd,
         data, size, at)
MAY_FAIL(copy_file_range, Write, ENOSPC, ssize_t,
         (int from, off64_t *fromAt, int to, off64_t *toAt, std::size_t size, unsigned flags), from,
         fromAt, to, toAt, size, flags)
/// Into a file; into a pipe it is a way to read.
extern "C" ssize_t splice(int from, off64_t *fromAt, int to, off64_t *toAt, std::size_t size,
                          unsigned flags)
{
    static const auto next = reinterpret_cast<decltype(&splice)>(::dlsym(RTLD_NEXT, "splice"));
    const bool isWritten = ::fcntl(to, F_GETPIPE_SZ) < 0;
    return isWritten && fails(Write, ENOSPC) ? -1 : next(from, fromAt, to, toAt, size, flags);
}

MAY_FAIL(fsync, Sync, EIO, int, (int fd), fd)
MAY_FAIL(fdatasync, Sync, EIO, int, (int fd), fd)
MAY_FAIL(rename, Rename, EIO, int, (const char *from, const char *to), from, to)
MAY_FAIL(renameat, Rename, EIO, int, (int a, const char *from, int b, const char *to), a, from, b,
         to)
MAY_FAIL(renameat2, Rename, EIO, int,
         (int a, const char *from, int b, const char *to, unsigned flags), a, from, b, to, flags)
MAY_FAIL(link, Link, EIO, int, (const char *from, const char *to), from, to)
MAY_FAIL(linkat, Link, EIO, int, (int a, const char *from, int b, const char *to, int flags), a,
         from, b, to, flags)
MAY_FAIL(accept4, Accept, EMFILE, int, (int fd, sockaddr *peer, socklen_t *size, int flags), fd,
         peer, size, flags)

/// The same of a call that gives memory. By these names the program knows the C library's own,
/// which what it keeps for a shortage stands in front of.
#define MAY_GIVE_NONE(name, parameters, ...)                                                       \
    extern "C" void *name parameters                                                               \
    {                                                                                              \
        static const auto next = reinterpret_cast<void *(*)parameters>(::dlsym(RTLD_NEXT, #name)); \
        return fails(Memory, ENOMEM) ? nullptr : next(__VA_ARGS__);                                \
    }

MAY_GIVE_NONE(__libc_malloc, (std::size_t size), size)
MAY_GIVE_NONE(__libc_calloc, (std::size_t count, std::size_t size), count, size)
MAY_GIVE_NONE(__libc_realloc, (void *block, std::size_t size), block, size)
MAY_GIVE_NONE(__libc_memalign, (std::size_t alignment, std::size_t size), alignment, size)

extern "C" long syscall(long number, ...)
{
    static const auto next = reinterpret_cast<long (*)(long, ...)>(::dlsym(RTLD_NEXT, "syscall"));
    long values[6];
    va_list list;
    va_start(list, number);
    for (long &value : values)
        value = va_arg(list, long);
    va_end(list);
    if (number == SYS_openat2 && fails(Open, EMFILE))
        return -1;
    return next(number, values[0], values[1], values[2], values[3], values[4], values[5]);
}

extern "C" time_t time(time_t *result)
{
    timespec now = {};
    ::clock_gettime(CLOCK_REALTIME, &now);
    const char *later = ::getenv("FAULTS_LATER");
    const time_t told = now.tv_sec + (later ? std::atol(later) : 0);
    if (result)
        *result = told;
    return told;
}
