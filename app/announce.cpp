#include "app/Console.h"
#include "platform/Announcer.h"

#include <QCoreApplication>
#include <QIODevice>
#include <QSocketNotifier>

#include <array>
#include <cerrno>
#include <optional>

#include <unistd.h>

namespace {

/// Standard input, by which a server tells what to announce. Its end is that of the server too,
/// however that came about.
class Order
{
public:
    /// What has arrived; `isOver` from its end on.
    void read()
    {
        std::array<char, 4096> piece; // NOLINT(cppcoreguidelines-pro-type-member-init)
        const auto count = ::read(STDIN_FILENO, piece.data(), piece.size());
        if (count > 0)
            bytes.append(piece.data(), int(count));
        isOver = count == 0 || (count < 0 && errno != EINTR && errno != EAGAIN);
    }

    /// The next announcement that is whole, if there is one.
    std::optional<Announcement> take()
    {
        QDataStream stream(bytes);
        Announcement announcement;
        stream >> announcement;
        if (stream.status() != QDataStream::Ok)
            return {};
        bytes.remove(0, int(stream.device()->pos()));
        return announcement;
    }

    bool isOver = false;

private:
    QByteArray bytes;
};

/// Tells by which name the server is found, once for each.
void report(const Announcer &announcer)
{
    auto say = [errors = LineWriter(STDERR_FILENO)](const QString &text) mutable {
        errors.write("quillon-announce: " + text.toUtf8() + '\n');
    };
    QObject::connect(&announcer, &Announcer::announced, &announcer,
                     [say, last = QString()](const QString &name) mutable {
                         if (name != last)
                             say(QStringLiteral("Found in the network as \"%1\".").arg(name));
                         last = name;
                     });
    QObject::connect(&announcer, &Announcer::refused, &announcer,
                     [say](const QString &reason) mutable {
                         say(QStringLiteral("Not found in the network: %1").arg(reason));
                     });
}

} // namespace

/// Has a server found in the network, in a process of its own: the server has no need of the
/// system's bus then, nor of the libraries for it. Avahi takes back what a process has announced
/// that is gone.
int main(int argc, char **argv)
{
    QCoreApplication app(argc, argv);
    Announcer announcer;
    report(announcer);
    Order order;
    const QSocketNotifier arrived(STDIN_FILENO, QSocketNotifier::Read);
    QObject::connect(&arrived, &QSocketNotifier::activated, &announcer, [&order, &announcer] {
        order.read();
        while (const auto announcement = order.take())
            announcer.announce(*announcement);
        if (order.isOver)
            QCoreApplication::exit();
    });
    return QCoreApplication::exec();
}
