#include "server/KeyTool.h"

#include <QCoreApplication>
#include <QHostAddress>
#include <QNetworkInterface>
#include <QSocketNotifier>
#include <QTimer>

#include <chrono>
#include <utility>

#include <unistd.h>

using namespace std::chrono_literals;

namespace {

constexpr auto lookInterval = 5s;
constexpr auto longestPause = 24h; ///< certificates run out, too
constexpr auto retryPause = 5min;

/// Has the certificate renewed where that is due, and tells who waits for it by a byte. What goes
/// on failing is told once.
class Renewal : public QObject
{
public:
    explicit Renewal(const QString &certificate)
        : tool(certificate)
        , known(QNetworkInterface::allAddresses())
    {
        connect(&tool, &KeyTool::ended, this,
                [this](const QString &problem) { finish(problem.isEmpty()); });
        connect(&looks, &QTimer::timeout, this, [this] {
            if (!isBusy && QNetworkInterface::allAddresses() != known)
                renew();
        });
        connect(&daily, &QTimer::timeout, this, &Renewal::renew);
        connect(&retry, &QTimer::timeout, this, &Renewal::renew);
        retry.setSingleShot(true);
        looks.start(lookInterval);
        daily.start(longestPause);
    }

private:
    void renew()
    {
        if (std::exchange(isBusy, true))
            return;
        known = QNetworkInterface::allAddresses();
        tool.start();
    }

    void finish(bool done)
    {
        isBusy = false;
        if (!done)
            retry.start(retryPause);
        const bool isKnown = std::exchange(hasFailed, !done) && !done;
        const char news = done ? '+' : '-';
        if (!isKnown && ::write(STDOUT_FILENO, &news, 1) != 1)
            QCoreApplication::exit();
    }

    KeyTool tool;
    QList<QHostAddress> known; ///< those of which the certificate was made
    QTimer looks;
    QTimer daily;
    QTimer retry;
    bool isBusy = false;
    bool hasFailed = false; ///< the last time
};

} // namespace

/// Keeps the certificate that it is told in step with this machine's addresses for a server that
/// may start no programs, until that closes its standard input.
int main(int argc, char **argv)
{
    QCoreApplication app(argc, argv);
    if (argc != 2)
        return 2;
    const Renewal renewal(QCoreApplication::arguments().constLast());
    const QSocketNotifier closed(STDIN_FILENO, QSocketNotifier::Read);
    QObject::connect(&closed, &QSocketNotifier::activated, &app, [] { QCoreApplication::exit(); });
    return QCoreApplication::exec();
}
