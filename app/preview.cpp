#include "app/CallFilter.h"
#include "app/PreviewPicture.h"
#include "app/Sandbox.h"

#include <QFile>
#include <QThreadPool>

#include <algorithm>
#include <array>
#include <csignal>
#include <new>

#include <sched.h>
#include <sys/prctl.h>
#include <sys/resource.h>
#include <sys/syscall.h>
#include <unistd.h>

namespace {

enum ExitStatus { Made = 0, Refused = 1 };

struct Limit
{
    decltype(RLIMIT_CPU) resource;
    rlim_t value;
};

/// The memory is what it can write to: of the address space the most part are libraries, which
/// differ from system to system and are shared with others.
constexpr std::array<Limit, 5> limits{ {
    { RLIMIT_DATA, maxPreviewMemory },
    { RLIMIT_CPU, 10 }, // seconds
    { RLIMIT_FSIZE, maxPreviewBytes },
    { RLIMIT_NOFILE, 16 },
    { RLIMIT_CORE, 0 },
} };

bool setLimit(const Limit &limit)
{
    rlimit now = {};
    if (::getrlimit(limit.resource, &now) != 0)
        return false;
    const rlim_t value = std::min(limit.value, now.rlim_max);
    const rlimit wanted = { value, value };
    return ::setrlimit(limit.resource, &wanted) == 0;
}

/// None outlives the server.
bool setLimits()
{
    return std::all_of(limits.begin(), limits.end(), setLimit)
        && ::prctl(PR_SET_NO_NEW_PRIVS, 1, 0, 0, 0) == 0
        && ::prctl(PR_SET_DUMPABLE, 0, 0, 0, 0) == 0
        && ::prctl(PR_SET_PDEATHSIG, SIGKILL, 0, 0, 0) == 0;
}

/// Scaling waits for ever for a thread that can't be started: this one is before memory is short.
void startScaler()
{
    QThreadPool *pool = QThreadPool::globalInstance();
    pool->setMaxThreadCount(1);
    pool->setExpiryTimeout(-1);
    pool->start([] {});
}

/// A picture that takes a decoder over gets nothing by it but its own bytes and the place of its
/// preview. Where the kernel can't do that, the limits have to do.
void shutOut()
{
    static_cast<void>(confine({}));
    static_cast<void>(forbidOtherCalls());
}

/// Takes what nobody else wants of processor and disk; a little more when somebody waits, who would
/// wait for ever on a machine that has always something to do. Not every system has all three, and
/// a preview is worth making without.
void giveWay(const QByteArray &kind)
{
    constexpr int lowestNice = 19;
    constexpr int niceOfAwaited = 10;
    constexpr int ioprioProcess = 1;
    constexpr int ioprioIdle = 3 << 13;
    const sched_param none = {};
    const bool isAwaited = !isForLists(kind);
    static_cast<void>(::setpriority(PRIO_PROCESS, 0, isAwaited ? niceOfAwaited : lowestNice));
    if (isAwaited)
        return;
    static_cast<void>(::sched_setscheduler(0, SCHED_IDLE, &none));
    static_cast<void>(::syscall(SYS_ioprio_set, ioprioProcess, 0, ioprioIdle));
}

ExitStatus convert(const QByteArray &kind)
{
    QFile picture;
    QFile preview;
    if (!picture.open(STDIN_FILENO, QIODevice::ReadOnly) || picture.isSequential()
        || !preview.open(STDOUT_FILENO, QIODevice::WriteOnly | QIODevice::Unbuffered))
        return Refused;
    const Decoder decoder = loadCodecs(picture, kind);
    shutOut();
    startScaler();
    const QByteArray bytes = makePreview(picture, kind, decoder);
    return !bytes.isEmpty() && preview.write(bytes) == bytes.size() ? Made : Refused;
}

} // namespace

/// Makes the preview of one picture for a server, in a process of its own that hostile pictures
/// can take down alone: reads standard input, which is a file, and writes standard output. The
/// only argument is the kind of the preview, see `makePreview`.
int main(int argc, char **argv)
{
    if (argc != 2 || !setLimits())
        return Refused;
    giveWay(argv[1]);
    try {
        return convert(argv[1]);
    } catch (const std::bad_alloc &) {
        return Refused;
    }
}
