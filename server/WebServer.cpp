#include "server/WebServer.h"

#include "config/Profile.h"
#include "files/Share.h"
#include "net/PlainSocket.h"
#include "net/TlsSocket.h"
#include "server/MemoryTrim.h"
#include "server/PlainGreeting.h"
#include "server/StatusSink.h"
#include "server/TrustedProxy.h"

#include <QDir>

#include <utility>

namespace {

constexpr qint64 bytesPerKilobyte = 1024;

} // namespace

WebServer::WebServer(const QNetworkAddressEntry &entry, Profile *profile,
                     std::shared_ptr<const ServerSetup> common, QObject *parent)
    : QObject(parent)
    , port(quint16(profile->port))
    , address(entry)
    , setup(std::move(common))
    , service{ *setup,
               profile,
               QFileInfo(QDir::homePath()),
               false,
               nullptr,
               {},
               TrafficAccount([this] { limitReached(); }) }
    , listener(
          setup->poller,
          { [this](FileDescriptor accepted, const QHostAddress &peer, const QHostAddress &reached) {
               accept(std::move(accepted), peer, reached);
           },
            [this] { return connections.closeIdle(); } })
    , connections([this] { listener.resume(); })
{
    ++profile->useCount;
    connect(setup->memory, &MemoryTrim::roomNeeded, this, [this] {
        connections.closeIdle();
        listener.pause();
    });
    init();
}

WebServer::WebServer(const WebServer *other, QObject *parent)
    : WebServer(other->address, other->profile(), other->setup, parent)
{
    service.shared = other->service.shared;
    service.singleFile = other->service.singleFile;
    service.share = other->service.share;
    service.closed = other->service.closed;
}

WebServer::~WebServer()
{
    stop();
    // At once and while the service is whole.
    connections.clear();
    --service.profile->useCount;
}

bool WebServer::init()
{
    service.traffic.clear();
    identity.reset();
    profileEdited(service.profile);
    return isTlsReady();
}

bool WebServer::start(FileDescriptor opened)
{
    service.traffic.setBlocked(false);
    ignored.clear();
    const Profile *profile = service.profile;
    if (profile->authMode == AuthPasswordPage && profile->password.isEmpty())
        warn(tr("The password is empty: everyone is admitted."));
    openShare();
    if (!listen(std::move(opened)))
        return false;
    port = listener.port();
    service.sessions.startTimer();
    return true;
}

bool WebServer::listen(FileDescriptor opened)
{
    if (!opened.isOpen())
        return listener.listen(address.ip(), port);
    if (!listener.adopt(std::move(opened)))
        return false;
    address.setIp(listener.address());
    return true;
}

void WebServer::stop()
{
    listener.close();
    service.sessions.stopTimer();
    ignored.clear();
}

void WebServer::stopAll()
{
    stop();
    service.traffic.setBlocked(true);
    connections.drop();
}

void WebServer::setProfile(Profile *profile)
{
    if (profile == service.profile)
        return profileEdited(profile);
    --service.profile->useCount;
    service.profile = profile;
    ++profile->useCount;
    identity.reset();
    profileEdited(profile);
}

void WebServer::profileEdited(const Profile *profile)
{
    service.sessions.profileEdited(profile);
    loadKeys(profile);
    service.traffic.setLimit(profile->dataLimit * bytesPerKilobyte);
}

void WebServer::setShared(const QString &path)
{
    service.shared = QFileInfo(path);
    if (!service.shared.isReadable())
        service.shared = QFileInfo(QDir::homePath());
    service.singleFile = !service.shared.isDir();
    service.scratchPad = {};
    openShare();
}

/// From now on everything is found from the open root.
void WebServer::openShare()
{
    const std::shared_ptr<const Share> closed = opened(Share::Links::Beneath);
    // Locks outlive a new port.
    if (!closed || !service.closed || !closed->isSame(*service.closed))
        service.faceState.reset();
    service.closed = closed;
    service.share = service.profile->isStrict() ? closed : opened(Share::Links::Followed);
    service.files.clear();
    service.closedFiles.clear();
}

std::shared_ptr<const Share> WebServer::opened(Share::Links links) const
{
    const Directories &own = setup->directories;
    std::optional<Share> found =
        Share::at(service.shared.absoluteFilePath(), { own.profiles, own.state }, links);
    return found ? std::make_shared<const Share>(std::move(*found)) : nullptr;
}

/// Reads key and certificate; when they can't be used together, the status sink is told why.
void WebServer::loadKeys(const Profile *profile)
{
    if (!profile->usesTls())
        return identity.reset();
    const Profile *current = service.profile;
    const bool same = profile->privateKeyFile == current->privateKeyFile
        && profile->publicKeyFile == current->publicKeyFile
        && profile->keyPassword == current->keyPassword;
    if (identity && same)
        return;
    QString problem;
    identity = TlsIdentity::load(*profile, &problem);
    if (!identity && !(setup->sink && setup->sink->knowsKeyProblems()))
        warn(problem);
}

void WebServer::reloadKeys()
{
    QString problem;
    if (!service.profile->usesTls())
        return;
    if (std::optional<TlsIdentity> fresh = TlsIdentity::load(*service.profile, &problem))
        identity = std::move(fresh);
    else
        warn(tr("The renewed certificate can't be used; new connections get the one before.")
             + QLatin1Char('\n') + problem);
}

void WebServer::warn(const QString &text) const
{
    if (setup->sink)
        setup->sink->msg(tr("Warning"), text);
}

// --- connections --------------------------------------------------------------------------------

void WebServer::accept(FileDescriptor accepted, const QHostAddress &peer,
                       const QHostAddress &reached)
{
    if (service.traffic.isBlocked()) {
        // Neither answered nor closed, so that the peer waits; but not for ever.
        ignored.push_back(std::move(accepted));
        return;
    }
    if (setup->peers->isFull())
        connections.closeIdle();
    PeerCount::Ticket place = isTrustedProxy(peer, *service.profile)
        ? setup->peers->admitUncounted()
        : setup->peers->admit(peer, reached);
    if (!place.isValid())
        return;
    connections.add(makeSocket(std::move(accepted), peer, reached), std::move(place), service);
}

std::unique_ptr<Socket> WebServer::makeSocket(FileDescriptor accepted, const QHostAddress &peer,
                                              const QHostAddress &reached)
{
    TrafficAccount *account = &service.traffic;
    if (identity) {
        const auto answer = [this,
                             end = Reached{ reached, listener.port() }](const QByteArray &head) {
            return answerToPlain(head, end, *service.profile);
        };
        return std::make_unique<TlsSocket>(std::move(accepted), peer, identity->context, answer,
                                           setup->poller, account);
    }
    return std::make_unique<PlainSocket>(std::move(accepted), peer, setup->poller, account);
}

void WebServer::limitReached()
{
    // Queued: whoever hears of the limit may end the connection that reached it.
    QMetaObject::invokeMethod(
        this, [this] { Q_EMIT dataLimit(this); }, Qt::QueuedConnection);
}
