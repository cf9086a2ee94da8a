#include "app/MemoryReserve.h"

#include "server/MemoryTrim.h"

#include <QTimerEvent>

#include <array>
#include <atomic>
#include <cerrno>
#include <cstdlib>

#include <sys/eventfd.h>
#include <unistd.h>

#if defined(__has_feature)
#if __has_feature(address_sanitizer) || __has_feature(thread_sanitizer)                            \
    || __has_feature(memory_sanitizer)
#define QUILLON_OTHER_ALLOCATOR
#endif
#endif
#if !defined(__GLIBC__) || defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
#define QUILLON_OTHER_ALLOCATOR
#endif

#ifndef QUILLON_OTHER_ALLOCATOR
// The C library's own, by the names under which it offers them to those who take their place.
extern "C" {
void *__libc_malloc(std::size_t size) noexcept;
void *__libc_calloc(std::size_t count, std::size_t size) noexcept;
void *__libc_realloc(void *block, std::size_t size) noexcept;
void *__libc_memalign(std::size_t alignment, std::size_t size) noexcept;
void __libc_free(void *block) noexcept;
}
#endif

namespace {

constexpr int interval = 100; ///< milliseconds between two looks whether there is memory again

std::atomic<int> bell{ -1 }; ///< wakes the event loop

#ifndef QUILLON_OTHER_ALLOCATOR

constexpr useconds_t waitStep = 20000; ///< microseconds
constexpr int patience = 150; ///< steps

constexpr std::size_t smallSize = std::size_t(64) * 1024; ///< of a request, at most
constexpr std::size_t pieceSize = std::size_t(256) * 1024;
// For all that a turn of the event loop asks for before it can make room.
constexpr std::size_t reserveSize = std::size_t(4) * 1024 * 1024;

// Of the C library's heap rather than pages of their own: what is given free stays the process's,
// and neighbours join for a larger request. Until they are used, only their first pages are touched
// and take memory of the machine.
std::array<std::atomic<void *>, reserveSize / pieceSize> pieces;

bool fill()
{
    for (std::atomic<void *> &piece : pieces) {
        if (piece.load() == nullptr)
            piece = __libc_malloc(pieceSize);
        if (piece.load() == nullptr)
            return false;
    }
    return true;
}

/// Frees one of the first `count`; false when none of them is left.
bool giveOneFree(std::size_t count)
{
    for (std::size_t i = 0; i < count; ++i) {
        if (void *taken = pieces[i].exchange(nullptr)) {
            __libc_free(taken);
            return true;
        }
    }
    return false;
}

/// What `attempt` gives with the help of the reserve; null when that is not enough. Whoever asks
/// for much leaves half of it to the small requests, which come from where nothing can be done
/// without.
template <typename Attempt> void *fromReserve(std::size_t size, Attempt attempt)
{
    const std::size_t count = size <= smallSize ? pieces.size() : pieces.size() / 2;
    void *block = nullptr;
    while (size <= count * pieceSize && !block && giveOneFree(count))
        block = attempt();
    ::eventfd_write(bell, 1);
    return block;
}

/// On other threads than the event loop's there is time to wait until that has made room.
template <typename Attempt>
__attribute__((noinline, cold)) void *inShortage(std::size_t size, Attempt attempt)
{
    const int before = errno;
    const bool mayWait = ::gettid() != ::getpid();
    void *block = fromReserve(size, attempt);
    for (int i = 0; i < patience && !block && mayWait; ++i) {
        ::usleep(waitStep);
        block = attempt();
        if (!block)
            block = fromReserve(size, attempt);
    }
    errno = block ? before : ENOMEM;
    return block;
}

#else

bool fill()
{
    return true;
}

#endif

} // namespace

#ifndef QUILLON_OTHER_ALLOCATOR

// Whoever allocates in this process finds these first. The whole family stands here, so that no
// block of one allocator is freed by another that was loaded before the program.
extern "C" {

void *malloc(std::size_t size) noexcept
{
    if (void *block = __libc_malloc(size); __builtin_expect(block != nullptr, 1))
        return block;
    return inShortage(size, [size] { return __libc_malloc(size); });
}

void *calloc(std::size_t count, std::size_t size) noexcept
{
    if (void *block = __libc_calloc(count, size); __builtin_expect(block != nullptr, 1))
        return block;
    std::size_t bytes = 0;
    if (__builtin_mul_overflow(count, size, &bytes))
        return nullptr;
    return inShortage(bytes, [count, size] { return __libc_calloc(count, size); });
}

void *realloc(void *block, std::size_t size) noexcept
{
    void *moved = __libc_realloc(block, size);
    // Nothing is what a block of no bytes becomes.
    if (__builtin_expect(moved != nullptr, 1) || size == 0)
        return moved;
    return inShortage(size, [block, size] { return __libc_realloc(block, size); });
}

void *memalign(std::size_t alignment, std::size_t size) noexcept
{
    if (void *block = __libc_memalign(alignment, size))
        return block;
    return inShortage(size, [alignment, size] { return __libc_memalign(alignment, size); });
}

void *aligned_alloc(std::size_t alignment, std::size_t size) noexcept
{
    return memalign(alignment, size);
}

int posix_memalign(void **block, std::size_t alignment, std::size_t size) noexcept
{
    if (alignment % sizeof(void *) != 0 || alignment == 0 || (alignment & (alignment - 1)) != 0)
        return EINVAL;
    void *found = memalign(alignment, size);
    if (!found)
        return ENOMEM;
    *block = found;
    return 0;
}

void free(void *block) noexcept
{
    __libc_free(block);
}

} // extern "C"

#endif

MemoryReserve::MemoryReserve(MemoryTrim &servers)
    : memory(servers)
    , notifier(::eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK), QSocketNotifier::Read)
{
    connect(&notifier, &QSocketNotifier::activated, this, &MemoryReserve::restore);
    bell = int(notifier.socket());
    fill();
}

MemoryReserve::~MemoryReserve()
{
    const int fd = bell.exchange(-1);
    notifier.setEnabled(false);
    ::close(fd);
}

/// One request that failed by chance costs nobody anything.
void MemoryReserve::restore()
{
    eventfd_t rings = 0;
    ::eventfd_read(bell, &rings);
    if (!fill()) {
        memory.makeRoom();
        return timer.start(interval, this);
    }
    memory.endShortage();
    timer.stop();
}

void MemoryReserve::timerEvent(QTimerEvent *event)
{
    if (event->timerId() == timer.timerId())
        restore();
}
