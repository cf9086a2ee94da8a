#include "app/Process.h"

#include <QCoreApplication>
#include <QDir>

#include <algorithm>
#include <csignal>

#include <sys/resource.h>

namespace {

constexpr rlim_t wantedDescriptors = 16384;

void onlyFailTheWrite(int) { }

void survive(int signalNumber)
{
    // Not ignored, as that would be handed on to the programs that we start.
    struct sigaction action = {};
    action.sa_handler = onlyFailTheWrite;
    action.sa_flags = SA_RESTART;
    sigaction(signalNumber, &action, nullptr);
}

void raiseDescriptorLimit()
{
    rlimit limit = {};
    if (getrlimit(RLIMIT_NOFILE, &limit) != 0)
        return;
    limit.rlim_cur = std::max(limit.rlim_cur, std::min(limit.rlim_max, wantedDescriptors));
    setrlimit(RLIMIT_NOFILE, &limit);
}

} // namespace

void prepareProcess()
{
    survive(SIGPIPE);
    survive(SIGXFSZ);
    raiseDescriptorLimit();
}

QString previewProgram()
{
    return QCoreApplication::applicationDirPath() + QLatin1String("/quillon-preview");
}

QString previewFolder()
{
    return QDir::homePath() + QLatin1String("/.thumbnails");
}
