#include "app/Process.h"

#include <QCoreApplication>
#include <QDir>
#include <QSocketNotifier>

#include <algorithm>
#include <cerrno>
#include <csignal>

#include <fcntl.h>
#include <malloc.h>
#include <sys/eventfd.h>
#include <sys/resource.h>
#include <unistd.h>

namespace {

constexpr rlim_t wantedDescriptors = 16384;
constexpr int heaps = 2; ///< each keeps what it has freed to itself
constexpr int keptFree = 4 * 1024 * 1024; ///< bytes
constexpr int ownPages = 1024 * 1024; ///< bytes of a block that never comes from a heap

void onlyFailTheWrite(int) { }

void survive(int signalNumber)
{
    // Not ignored, as that would be handed on to the programs that we start.
    struct sigaction action = {};
    action.sa_handler = onlyFailTheWrite;
    action.sa_flags = SA_RESTART;
    sigaction(signalNumber, &action, nullptr);
}

/// What is opened next must not be taken for a standard stream: lines would go there.
void fillStandardStreams()
{
    int fd = ::open("/dev/null", O_RDWR);
    while (fd >= 0 && fd <= STDERR_FILENO)
        fd = ::open("/dev/null", O_RDWR);
    if (fd >= 0)
        ::close(fd);
}

void raiseDescriptorLimit()
{
    rlimit limit = {};
    if (getrlimit(RLIMIT_NOFILE, &limit) != 0)
        return;
    limit.rlim_cur = std::max(limit.rlim_cur, std::min(limit.rlim_max, wantedDescriptors));
    setrlimit(RLIMIT_NOFILE, &limit);
}

constexpr int endingSignals[] = { SIGINT, SIGTERM, SIGHUP };
volatile std::sig_atomic_t arrived = -1; ///< the descriptor that the first one is told by

/// From here on a signal does what it does by default.
void tellOnce(int)
{
    const int interrupted = errno; // of the call in whose place this runs
    struct sigaction action = {};
    action.sa_handler = SIG_DFL;
    for (const int number : endingSignals)
        sigaction(number, &action, nullptr);
    eventfd_write(arrived, 1);
    errno = interrupted;
}

} // namespace

void prepareProcess()
{
    fillStandardStreams();
    survive(SIGPIPE);
    survive(SIGXFSZ);
    raiseDescriptorLimit();
    mallopt(M_ARENA_MAX, heaps);
    // The pieces of long replies come and go: a heap that shrinks with each of them pays for its
    // pages over and over. What is not needed is given back once the work is done.
    mallopt(M_TRIM_THRESHOLD, keptFree);
    mallopt(M_MMAP_THRESHOLD, ownPages);
}

QString previewProgram()
{
    return QCoreApplication::applicationDirPath() + QLatin1String("/quillon-preview");
}

QString previewFolder()
{
    return QDir::homePath() + QLatin1String("/.thumbnails");
}

EndSignals::EndSignals()
{
    arrived = ::eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK);
    // Handled rather than blocked, as programs that we start would inherit the block.
    struct sigaction action = {};
    action.sa_handler = tellOnce;
    action.sa_flags = SA_RESTART;
    for (const int number : endingSignals) {
        struct sigaction before = {};
        sigaction(number, &action, &before);
        // A shell ignores interrupts for what it starts in the background; that is no wish.
        if (number == SIGHUP && before.sa_handler == SIG_IGN)
            sigaction(number, &before, nullptr);
    }
}

void EndSignals::quitOnFirst(QCoreApplication *app) const
{
    auto *notifier = new QSocketNotifier(arrived, QSocketNotifier::Read, app);
    QObject::connect(notifier, &QSocketNotifier::activated, app, [notifier] {
        notifier->setEnabled(false);
        // Not by closing windows: nobody may be there to answer what they ask.
        QCoreApplication::exit();
    });
}
