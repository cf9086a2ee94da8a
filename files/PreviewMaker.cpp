#include "files/PreviewMaker.h"

PreviewMaker::PreviewMaker(const QString &program, std::chrono::milliseconds time)
{
    process.setProgram(program);
    process.setStandardErrorFile(QProcess::nullDevice()); // what broken pictures make decoders say
    connect(&process, QOverload<int, QProcess::ExitStatus>::of(&QProcess::finished), this,
            [this](int exitCode, QProcess::ExitStatus status) {
                const bool inTime = patience.isActive();
                patience.stop();
                const bool whole = status == QProcess::NormalExit && exitCode == 0;
                Q_EMIT ended(whole ? End::Made : inTime ? End::Refused : End::TookTooLong);
            });
    connect(&process, &QProcess::errorOccurred, this, [this](QProcess::ProcessError error) {
        if (error != QProcess::FailedToStart)
            return;
        patience.stop();
        Q_EMIT ended(End::NotStarted);
    });
    patience.setSingleShot(true);
    patience.setInterval(time);
    connect(&patience, &QTimer::timeout, &process, &QProcess::kill);
}

PreviewMaker::~PreviewMaker()
{
    process.disconnect(this);
    process.kill();
    process.waitForFinished();
}

void PreviewMaker::make(int picture, const QString &preview, const QByteArray &kind)
{
    process.setStandardInputFile(QStringLiteral("/proc/self/fd/%1").arg(picture));
    process.setStandardOutputFile(preview);
    process.setArguments({ QString::fromLatin1(kind) });
    patience.start();
    process.start();
}
