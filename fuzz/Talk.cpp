#include "fuzz/Talk.h"

#include "config/Profile.h"
#include "files/Share.h"
#include "net/Socket.h"
#include "server/Connection.h"
#include "server/Engine.h"

#include <QCoreApplication>
#include <QDir>
#include <QElapsedTimer>
#include <QEventLoop>
#include <QFile>
#include <QTemporaryDir>

#include <algorithm>
#include <filesystem>
#include <optional>
#include <system_error>

namespace {

constexpr int maxEntries = 64; ///< of the share, before it is made anew
constexpr int patience = 200; ///< ms for what is at work when the peer has said everything
constexpr qint64 maxWaiting = 512; ///< bytes

/// The peer's end of a connection as a string of bytes.
class ScriptedSocket final : public Socket
{
public:
    ScriptedSocket(QByteArray script, TrafficAccount *account)
        : Socket(account)
        , toCome(std::move(script))
    {
        // How large the pieces are, from single bytes to all at once, and how fast the peer takes
        // what it gets.
        const int first = toCome.isEmpty() ? 0 : int(quint8(toCome.at(0)));
        step = 1 + first * 16;
        isSlow = first % 2 == 0;
        toCome.remove(0, 1);
    }

    bool isOver() const { return over; }
    bool hasSaidAll() const { return toCome.isEmpty() && arrived.isEmpty(); }

    /// The next piece arrives, or a turn that was asked for comes.
    void advance()
    {
        arrived += toCome.left(step);
        toCome.remove(0, step);
        asked = false;
        waiting -= std::min<qint64>(waiting, step);
        user->writable();
        if (!over)
            user->readable();
    }

    bool isAsked() const { return asked; }

    /// The peer is gone.
    void vanish()
    {
        over = true;
        user->gone();
    }

    bool canSend() const override { return !over; }
    qint64 queued() const override { return waiting; }
    bool isCongested() const override { return waiting > maxWaiting; }
    void again() override { asked = true; }
    void endWriting() override { }
    void finish() override { ends = true; }
    void abort() override { ends = true; }
    bool isEnding() const { return ends; }
    bool isEncrypted() const override { return false; }
    bool isEstablished() const override { return true; }
    QHostAddress peerAddress() const override { return QHostAddress(QHostAddress::LocalHost); }
    QHostAddress localAddress() const override { return QHostAddress(QHostAddress::LocalHost); }
    quint16 localPort() const override { return 8080; }

private:
    int descriptor() const override { return -1; }
    bool mayReceive() const override { return !arrived.isEmpty(); }

    qint64 receive(char *data, qint64 max) override
    {
        const int size = int(std::min<qint64>(max, arrived.size()));
        std::copy_n(arrived.constData(), size, data);
        arrived.remove(0, size);
        return size > 0 || !toCome.isEmpty() ? size : -1;
    }

    bool send(const QByteArray &bytes, bool) override
    {
        waiting += isSlow ? bytes.size() : 0;
        return !over;
    }

    qint64 send(int, qint64, qint64 count) override
    {
        if (over || isCongested())
            return over ? -1 : 0;
        return isSlow ? std::min<qint64>(count, maxWaiting) : count;
    }

    QByteArray toCome;
    QByteArray arrived;
    int step;
    bool isSlow;
    qint64 waiting = 0; ///< bytes that the peer has yet to take
    bool asked = false;
    bool ends = false;
    bool over = false;
};

void write(const QString &path, const QByteArray &bytes)
{
    QFile file(path);
    if (!file.open(QIODevice::WriteOnly) || file.write(bytes) != bytes.size())
        qFatal("the share can't be made");
}

/// One for the whole process.
struct World
{
    World()
    {
        qputenv("HOME", QFile::encodeName(home.path()));
        directories = Directories::ofProcess();
        if (!directories.makeProfileFolder() || !QDir::setCurrent(home.path()))
            qFatal("no folder for profiles");
        fill();
    }

    ~World() { clear(); }

    /// Names that are no text as well, which the toolkit leaves behind.
    void clear()
    {
        std::error_code failed;
        std::filesystem::remove_all(
            QFile::encodeName(home.filePath(QStringLiteral("share"))).constData(), failed);
    }

    void fill()
    {
        clear();
        QDir().mkpath(home.filePath(QStringLiteral("share/d/e")));
        write(home.filePath(QStringLiteral("share/a.txt")), "0123456789");
        write(home.filePath(QStringLiteral("share/d/b.png")), QByteArray(3000, 'b'));
    }

    bool isWorn() const
    {
        const QDir share(home.filePath(QStringLiteral("share")));
        return !share.exists(QStringLiteral("a.txt")) || !share.exists(QStringLiteral("d/b.png"))
            || share.count() > maxEntries;
    }

    int argc = 1;
    char name[5] = "fuzz";
    char *argv[2] = { name, nullptr };
    QCoreApplication app{ argc, argv };
    QTemporaryDir home{ QStringLiteral("/dev/shm/quillon-fuzz-XXXXXX") };
    Directories directories;
};

void converse(ScriptedSocket &socket, const Face &face)
{
    QElapsedTimer waited;
    waited.start();
    while (!socket.isOver() && !socket.isEnding()) {
        const bool acts = !socket.hasSaidAll() || socket.isAsked() || socket.queued() > 0;
        if (acts)
            socket.advance();
        QCoreApplication::processEvents();
        const bool isOurTurn = face.awaits() == Awaits::Nothing;
        if (!acts && (!isOurTurn || waited.elapsed() > patience))
            break;
    }
    if (!socket.isOver())
        socket.vanish();
}

/// Who logs in finds an account; the others find what is open to everyone.
void askForLogin(Profile &profile, const QByteArray &bytes)
{
    if (!bytes.contains("Authorization:") && !bytes.contains("/.quillon/login"))
        return;
    profile.authMode = AuthBasic;
    profile.users = QStringList{ QStringLiteral("a:1") };
}

} // namespace

void talk(const FaceMaker &faces, const QByteArray &bytes)
{
    static World world;
    if (world.isWorn())
        world.fill();
    const Face *face = nullptr;
    const FaceMaker seen = [&faces, &face](Connection &connection) {
        std::unique_ptr<Face> made = faces(connection);
        face = made.get();
        return made;
    };
    Engine engine(seen, world.directories, nullptr, nullptr);
    const auto setup = engine.setup();
    Profile profile(world.directories);
    askForLogin(profile, bytes);
    Service service{ *setup,
                     &profile,
                     QFileInfo(world.home.filePath(QStringLiteral("share"))),
                     false,
                     nullptr,
                     {},
                     TrafficAccount([] {}) };
    std::optional<Share> share = Share::at(service.shared.absoluteFilePath(),
                                           { world.directories.profiles }, Share::Links::Followed);
    if (!share)
        qFatal("the share can't be opened");
    service.share = std::make_shared<const Share>(std::move(*share));
    service.closed = service.share;

    auto owned = std::make_unique<ScriptedSocket>(bytes, &service.traffic);
    ScriptedSocket &socket = *owned;
    const Connection::Ended ended = [](Connection *) {};
    {
        Connection connection(1, std::move(owned), {}, service, ended);
        converse(socket, *face);
    }
    QCoreApplication::processEvents();
}
