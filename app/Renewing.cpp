#include "app/Renewing.h"

#include <QCoreApplication>
#include <QProcess>

#include <array>

#include <fcntl.h>
#include <unistd.h>

namespace {

struct PipeEnds
{
    FileDescriptor reading;
    FileDescriptor writing;
};

PipeEnds newPipe()
{
    std::array<int, 2> ends{ -1, -1 };
    if (::pipe2(ends.data(), O_CLOEXEC | O_NONBLOCK) != 0)
        return {};
    return { FileDescriptor(ends.front()), FileDescriptor(ends.back()) };
}

QString pathOf(const FileDescriptor &end)
{
    return QStringLiteral("/proc/self/fd/%1").arg(end.get());
}

} // namespace

Renewing::Renewing(const QString &certificate)
{
    PipeEnds order = newPipe();
    PipeEnds told = newPipe();
    QProcess program;
    program.setProgram(QCoreApplication::applicationDirPath() + QLatin1String("/quillon-renew"));
    program.setArguments({ certificate });
    program.setStandardInputFile(pathOf(order.reading));
    program.setStandardOutputFile(pathOf(told.writing));
    if (!program.startDetached())
        return;
    life = std::move(order.writing);
    news = std::move(told.reading);
    arrived = std::make_unique<QSocketNotifier>(news.get(), QSocketNotifier::Read);
    connect(arrived.get(), &QSocketNotifier::activated, this, &Renewing::read);
}

void Renewing::read()
{
    char done = 0;
    const ssize_t count = ::read(news.get(), &done, 1);
    if (count == 0)
        return arrived->setEnabled(false); // it was ended by somebody
    if (count == 1)
        done == '+' ? Q_EMIT renewed() : Q_EMIT failed();
}
