#include "desktop/window/FirstInstance.h"

#include <QDeadlineTimer>
#include <QFile>
#include <QLocalSocket>
#include <QThread>
#include <QTimer>

#include <chrono>

#include <fcntl.h>
#include <sys/file.h>

using namespace std::chrono_literals;

namespace {

// Between two programs of one user: the caller sends a plus if rows are to start, an absolute path
// in UTF-8 or none, and a NUL, which no path has; the window sends the NUL back.
constexpr char startMark = '+';
constexpr char endOfPath = '\0';
constexpr int longestPath = 64 * 1024; ///< bytes
constexpr auto patience = 2000ms;
constexpr unsigned long pause = 50; ///< milliseconds

} // namespace

FirstInstance::FirstInstance(const QString &folder)
    : name(folder + QLatin1String("window.socket"))
    , lock(::open(QFile::encodeName(folder + QLatin1String("window.lock")).constData(),
                  O_RDWR | O_CREAT | O_CLOEXEC, S_IRUSR | S_IWUSR))
{
    server.setSocketOptions(QLocalServer::UserAccessOption);
    connect(&server, &QLocalServer::newConnection, this, [this] {
        while (QLocalSocket *caller = server.nextPendingConnection())
            hear(caller);
    });
}

bool FirstInstance::handOver(const StartRequest &request)
{
    if (!lock.isOpen())
        return false;
    if (::flock(lock.get(), LOCK_EX | LOCK_NB) == 0) {
        listen();
        return false;
    }
    // It may have begun at the same time, and not be listening yet.
    const QByteArray message =
        QByteArray(request.startsRows ? 1 : 0, startMark) + request.path.toUtf8() + endOfPath;
    for (QDeadlineTimer wait(patience); !wait.hasExpired(); QThread::msleep(pause)) {
        if (tell(message))
            return true;
    }
    return false;
}

bool FirstInstance::tell(const QByteArray &message) const
{
    QLocalSocket window;
    window.connectToServer(name);
    if (!window.waitForConnected(int(patience.count())))
        return false;
    window.write(message);
    return window.waitForReadyRead(int(patience.count()))
        && window.read(1) == QByteArray(1, endOfPath);
}

void FirstInstance::listen()
{
    // What is there was left by a window that crashed.
    QLocalServer::removeServer(name);
    server.listen(name);
}

void FirstInstance::hear(QLocalSocket *caller)
{
    connect(caller, &QLocalSocket::disconnected, caller, &QObject::deleteLater);
    connect(caller, &QLocalSocket::readyRead, this, [this, caller] { answer(caller); });
    QTimer::singleShot(patience, caller, &QLocalSocket::abort);
}

void FirstInstance::answer(QLocalSocket *caller)
{
    const QByteArray message = caller->peek(longestPath);
    const auto end = message.indexOf(endOfPath);
    if (end < 0) {
        if (message.size() == longestPath)
            caller->abort();
        return;
    }
    disconnect(caller, &QLocalSocket::readyRead, this, nullptr);
    caller->write(QByteArray(1, endOfPath));
    caller->disconnectFromServer();
    const bool startsRows = message.at(0) == startMark;
    const int begin = startsRows ? 1 : 0;
    Q_EMIT called({ QString::fromUtf8(message.mid(begin, end - begin)), startsRows });
}
