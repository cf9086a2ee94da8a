#include "app/Console.h"

#include <QCoreApplication>
#include <QSocketNotifier>

#include <cstdio>

#include <sys/signalfd.h>
#include <unistd.h>

void Console::print(const QString &text)
{
    std::fprintf(stdout, "%s\n", text.toUtf8().constData());
    std::fflush(stdout);
}

void Console::error(const QString &text)
{
    std::fprintf(stderr, "quillon-serve: %s\n", text.toUtf8().constData());
}

void ConsoleSink::newConnection(const QString &peer)
{
    if (peer == lastPeer)
        return;
    lastPeer = peer;
    Console::error(QLatin1String("New client: ") + peer);
}

void ConsoleSink::msg(const QString &title, const QString &text)
{
    Console::error(title + QLatin1String(": ") + text);
}

EndSignals::EndSignals()
{
    sigemptyset(&both);
    sigaddset(&both, SIGINT);
    sigaddset(&both, SIGTERM);
    sigprocmask(SIG_BLOCK, &both, nullptr);
}

void EndSignals::quitOnFirst(QCoreApplication *app) const
{
    const int fd = signalfd(-1, &both, SFD_CLOEXEC | SFD_NONBLOCK);
    auto *notifier = new QSocketNotifier(fd, QSocketNotifier::Read, app);
    QObject::connect(notifier, &QSocketNotifier::activated, app, [fd, notifier, signals_ = both] {
        notifier->setEnabled(false);
        signalfd_siginfo arrived = {};
        if (::read(fd, &arrived, sizeof arrived) < 0)
            return notifier->setEnabled(true);
        // From here on a signal does what it does by default.
        sigprocmask(SIG_UNBLOCK, &signals_, nullptr);
        QCoreApplication::quit();
    });
}
