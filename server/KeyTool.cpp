#include "server/KeyTool.h"

#include <QCoreApplication>
#include <QFileInfo>
#include <QNetworkInterface>

#include <chrono>
#include <utility>

using namespace std::chrono_literals;

namespace {

constexpr std::chrono::milliseconds patience = 20s;
constexpr std::chrono::milliseconds lastWords = 1s; ///< it removes what isn't whole

QStringList addresses()
{
    QStringList texts;
    const QList<QHostAddress> own = QNetworkInterface::allAddresses();
    for (const QHostAddress &address : own)
        texts.append(address.toString());
    return texts;
}

} // namespace

KeyTool::KeyTool(QString folder, QString name, QObject *parent)
    : QObject(parent)
    , target(std::move(folder))
    , pair(std::move(name))
{
    connect(&tool, QOverload<int, QProcess::ExitStatus>::of(&QProcess::finished), this,
            &KeyTool::finish);
    connect(&tool, &QProcess::errorOccurred, this, [this](QProcess::ProcessError error) {
        if (error == QProcess::FailedToStart)
            Q_EMIT ended(tool.program() + QLatin1String(": ") + tool.errorString());
    });
}

KeyTool::KeyTool(const QString &certificate, QObject *parent)
    : KeyTool(QFileInfo(certificate).path(), QFileInfo(certificate).completeBaseName(), parent)
{
}

KeyTool::~KeyTool()
{
    tool.disconnect(this);
    // Until it has become the tool it would take the signal as this program does: for its own end.
    tool.waitForStarted();
    tool.terminate();
    tool.waitForFinished(int(lastWords.count()));
}

bool KeyTool::canRenew(const QString &certificate)
{
    const QFileInfo file(certificate);
    const QString pair = file.path() + QLatin1Char('/') + file.completeBaseName();
    return file.suffix() == QLatin1String("crt") && file.exists()
        && QFileInfo::exists(pair + QLatin1String(".key"))
        && QFileInfo(file.path() + QLatin1String("/authority.key")).isReadable();
}

void KeyTool::start()
{
    tool.setStandardInputFile(QProcess::nullDevice());
    tool.start(QCoreApplication::applicationDirPath() + QLatin1String("/make-keys.sh"),
               QStringList{ target, pair } + addresses());
}

void KeyTool::wait()
{
    tool.waitForFinished(int(patience.count()));
}

void KeyTool::finish(int exitCode, QProcess::ExitStatus status)
{
    if (status == QProcess::NormalExit && exitCode == 0)
        return Q_EMIT ended({});
    const QString said = QString::fromUtf8(tool.readAllStandardError()).trimmed();
    Q_EMIT ended(said.isEmpty() ? tool.program() : said);
}
