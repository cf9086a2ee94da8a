#include "server/WebServer.h"

#include "config/Profile.h"
#include "server/Connection.h"
#include "server/StatusSink.h"

#include <QDir>
#include <QFile>
#include <QTimer>

#include <chrono>
#include <utility>

#include <netinet/in.h>
#include <netinet/tcp.h>
#include <sys/socket.h>
#include <unistd.h>

using namespace std::chrono_literals;

namespace {

constexpr auto acceptRetry = 1s; ///< after the process ran out of descriptors
constexpr int pendingHandshakes = 512; ///< TCP connections that the kernel holds for us
constexpr int unsentMark = 256 * 1024; ///< bytes that the kernel holds unsent for one peer
constexpr qint64 bytesPerKilobyte = 1024;
constexpr qint64 readBufferSize = qint64(64) * 1024;
constexpr qint64 limitedReadBufferSize = 2048; ///< under a traffic limit

/// Whether the certificate is that of the private key. Modulus and exponent stand side by side in
/// both encodings (RFC 8017, appendix A.1), in the public one at its end.
bool belongTogether(const QSslKey &privateKey, const QSslCertificate &certificate)
{
    const QByteArray publicDer = certificate.publicKey().toDer();
    const int modulusBytes = privateKey.length() / 8;
    return modulusBytes > 0 && privateKey.toDer().contains(publicDer.right(modulusBytes));
}

} // namespace

WebServer::WebServer(const QNetworkAddressEntry &entry, Profile *profile,
                     std::shared_ptr<const ServerSetup> common, QObject *parent)
    : QTcpServer(parent)
    , shared(QDir::homePath())
    , config(profile)
    , address(entry)
    , setup(std::move(common))
{
    ++config->useCount;
    port = quint16(config->port);
    connect(this, &QTcpServer::acceptError, this,
            [this] { QTimer::singleShot(acceptRetry, this, &QTcpServer::resumeAccepting); });
    init();
}

WebServer::WebServer(const WebServer *other, QObject *parent)
    : WebServer(other->address, other->config, other->setup, parent)
{
    shared = other->shared;
    singleFile = other->singleFile;
}

WebServer::~WebServer()
{
    stopAll();
    // Connections remove themselves from `connections`, which is gone once this body has run.
    qDeleteAll(findChildren<Connection *>(QString(), Qt::FindDirectChildrenOnly));
    --config->useCount;
}

bool WebServer::init()
{
    traffic = {};
    dropKeys();
    profileEdited(config);
    return isTlsReady();
}

bool WebServer::start()
{
    traffic.blocked = false;
    closeIgnored();
    if (config->authMode == AuthPasswordPage && config->password.isEmpty())
        warn(tr("The password is empty: everyone is admitted."));
    if (!listen(address.ip(), port))
        return false;
    port = serverPort();
    // The toolkit asks for 50, which a crowd of new clients fills within a moment.
    ::listen(int(socketDescriptor()), pendingHandshakes);
    clients.startTimer();
    return true;
}

void WebServer::stop()
{
    close();
    clients.stopTimer();
    closeIgnored();
}

void WebServer::stopAll()
{
    stop();
    traffic.blocked = true;
    while (!connections.isEmpty())
        connections.takeFirst()->drop();
}

void WebServer::setProfile(Profile *profile)
{
    profileEdited(profile);
    --config->useCount;
    config = profile;
    ++config->useCount;
}

void WebServer::profileEdited(const Profile *profile)
{
    clients.profileEdited(profile);
    setMaxPendingConnections(qMax(1, profile->maxConnections));
    if (!profile->usesTls())
        dropKeys();
    else if (!privateKey || profile->privateKeyFile != config->privateKeyFile)
        loadKeys(profile);
    traffic.dataLimit = profile->dataLimit * bytesPerKilobyte;
}

void WebServer::setShared(const QString &path)
{
    shared = QFileInfo(path);
    if (!shared.isReadable())
        shared = QFileInfo(QDir::homePath());
    singleFile = !shared.isDir();
}

bool WebServer::loadKeys(const Profile *profile)
{
    dropKeys();
    QFile certificateFile(profile->publicKeyFile);
    if (!certificateFile.open(QIODevice::ReadOnly)) {
        warn(tr("The certificate can't be read: %1").arg(profile->publicKeyFile));
        return false;
    }
    auto newCertificate = std::make_unique<QSslCertificate>(&certificateFile, QSsl::Pem);
    if (newCertificate->isNull())
        warn(tr("This is no certificate: %1").arg(profile->publicKeyFile));
    else
        certificate = std::move(newCertificate);

    QFile keyFile(profile->privateKeyFile);
    if (!keyFile.open(QIODevice::ReadOnly)) {
        warn(tr("The private key can't be read: %1").arg(profile->privateKeyFile));
        return false;
    }
    auto newKey = std::make_unique<QSslKey>(&keyFile, QSsl::Rsa, QSsl::Pem, QSsl::PrivateKey,
                                            profile->keyPassword.toLatin1());
    if (newKey->isNull()) {
        warn(tr("The private key can't be used, its pass phrase may be wrong: %1")
                 .arg(profile->privateKeyFile));
        return false;
    }
    if (certificate && !belongTogether(*newKey, *certificate)) {
        warn(tr("The certificate %1 is not that of the private key %2")
                 .arg(profile->publicKeyFile, profile->privateKeyFile));
        return false;
    }
    privateKey = std::move(newKey);
    return isTlsReady();
}

void WebServer::dropKeys()
{
    privateKey.reset();
    certificate.reset();
}

void WebServer::warn(const QString &text) const
{
    if (setup->sink)
        setup->sink->msg(tr("Warning"), text);
}

void WebServer::incomingConnection(qintptr descriptor)
{
    if (traffic.blocked) {
        // Neither answered nor closed, so that the peer waits; but not for ever.
        ignored.append(descriptor);
        return;
    }

    auto thread = std::make_unique<Connection>(this, &clients, &traffic, setup.get());
    Channel &channel = thread->httpRequest().channel;
    QSslSocket &socket = channel.socket();
    if (!socket.setSocketDescriptor(descriptor)) {
        ::close(int(descriptor));
        return;
    }
    channel.setKeepAlive(true);
    socket.setSocketOption(QAbstractSocket::LowDelayOption, 1);
    // A peer that takes nothing must not fill megabytes of the kernel's memory first.
    ::setsockopt(int(descriptor), IPPROTO_TCP, TCP_NOTSENT_LOWAT, &unsentMark, sizeof unsentMark);
    channel.setReadBufferSize(traffic.dataLimit > 0 ? limitedReadBufferSize : readBufferSize);
    // Queued: whoever hears of the limit may end the connection that reached it.
    connect(&channel, &Channel::dataLimit, this, &WebServer::limitReached, Qt::QueuedConnection);
    if (isTlsReady())
        startEncryption(socket);
    connections.append(thread.release());
}

void WebServer::startEncryption(QSslSocket &socket) const
{
    socket.setProtocol(QSsl::AnyProtocol);
    socket.setPrivateKey(*privateKey);
    socket.setLocalCertificate(*certificate);
    socket.setPeerVerifyMode(QSslSocket::VerifyNone);
    socket.startServerEncryption();
}

void WebServer::limitReached()
{
    Q_EMIT dataLimit(this);
}

void WebServer::closeIgnored()
{
    for (const qintptr descriptor : std::as_const(ignored))
        ::close(int(descriptor));
    ignored.clear();
}
