#include "server/Connection.h"

#include "server/Deadlines.h"
#include "server/Log.h"
#include "server/PeerAddress.h"
#include "server/Service.h"
#include "server/StatusSink.h"

#include <algorithm>
#include <new>

namespace {

constexpr qint64 leastOfBody = deadlines::leastRate * deadlines::body.count(); ///< bytes
constexpr qint64 leastOnItsWay = qint64(64) * 1024; ///< bytes of a reply, for it to take its time

} // namespace

Connection::Connection(quint64 index, std::unique_ptr<Socket> accepted, PeerCount::Ticket place,
                       Service &service, const Ended &whenEnded)
    : number(index)
    , m_service(service)
    , ended(whenEnded)
    , ticket(std::move(place))
    , m_socket(std::move(accepted))
    , face(service.setup.makeFace(*this))
{
    m_socket->setUser(this);
}

Connection::~Connection()
{
    // While everything is whole: a cut-off upload is removed now.
    if (!over)
        face->gone();
}

void Connection::noteRequest(const QHostAddress &visitor, const QByteArray &userAgent)
{
    // The next head is another one.
    awaits = Awaits::Nothing;
    passedBefore = m_socket->passed();
    onItsWay.reset();
    client.account.clear();
    if (client.address != visitor)
        client = { visitor, {}, programOf(userAgent) };
    if (noted)
        return;
    noted = true;
    if (m_service.setup.sink)
        m_service.setup.sink->newConnection(m_socket->peerAddress().toString());
}

bool Connection::isWatched() const
{
    return m_service.setup.sink && m_service.setup.sink->listens();
}

void Connection::noteEnd(Deed deed)
{
    deed.client = client;
    const bool isFile = deed.method == "GET" && !deed.isFolder;
    if (isFile && m_socket->passed() - passedBefore >= leastOnItsWay)
        onItsWay = FileTransfer{ false, 0, deed.path };
    m_service.setup.sink->told(deed);
}

/// The peer of a download has by far not all that the face has sent.
std::optional<FileTransfer> Connection::transfer() const
{
    if (over)
        return {};
    std::optional<FileTransfer> found = face->transfer();
    if (!found && !onItsWay)
        return {};
    const qint64 exchanged = m_socket->exchanged();
    const qint64 waiting = m_socket->passed() - exchanged;
    if (!found && waiting > 0)
        found = onItsWay;
    if (!found)
        return {};
    // What came before it may wait, too.
    found->done = std::max<qint64>(0, exchanged - passedBefore);
    if (!found->isUpload && found->left >= 0)
        found->left += waiting;
    return found;
}

Visit Connection::visit() const
{
    const auto age = std::chrono::duration_cast<std::chrono::milliseconds>(Clock::now() - since);
    const bool isDirect = client.address == m_socket->peerAddress();
    return { number, client, isDirect ? ticket.peer() : peerOf(client.address),
             QDateTime::currentDateTimeUtc().addMSecs(-age.count()), transfer() };
}

void Connection::drop()
{
    m_socket->abort();
}

void Connection::noteWait(Clock::time_point now)
{
    if (over)
        return;
    const Awaits seen = face->awaits();
    if (seen != Awaits::Head)
        receivedBefore = m_socket->received();
    if (seen == awaits)
        return;
    awaits = seen;
    awaitsSince = now;
    lastLook.reset();
}

/// When what the face waits for will have taken too long.
Connection::Clock::time_point Connection::deadline() const
{
    if (!m_socket->isEstablished())
        return awaitsSince + deadlines::handshake;
    switch (awaits) {
    case Awaits::Request:
        return activeAt + deadlines::idle;
    case Awaits::Head:
        return awaitsSince + deadlines::head
            + std::chrono::seconds((m_socket->received() - receivedBefore) / deadlines::leastRate);
    case Awaits::Body:
        return lastLook ? lastLook->at + deadlines::body : awaitsSince;
    case Awaits::Drain:
        return lastLook ? lastLook->at + deadlines::drain : awaitsSince;
    case Awaits::Linger:
        return awaitsSince + deadlines::linger;
    case Awaits::Nothing:
        break;
    }
    return Clock::time_point::max();
}

/// Whether enough of a body moves, by what has gone since the last look.
bool Connection::goesOn(Clock::time_point now)
{
    if (awaits != Awaits::Body && awaits != Awaits::Drain)
        return false;
    const Look look{ m_socket->exchanged(), now };
    const qint64 least = awaits == Awaits::Body ? leastOfBody : 1;
    const bool moves = !lastLook || look.bytes - lastLook->bytes >= least;
    lastLook = look;
    return moves;
}

void Connection::checkDeadline(Clock::time_point now)
{
    noteWait(now);
    if (over || now < deadline() || goesOn(now))
        return;
    qCDebug(serverLog) << "waited too long for" << m_socket->peerAddress();
    face->expire();
}

void Connection::readable()
{
    tell(&Face::readable);
}

void Connection::writable()
{
    tell(&Face::writable);
}

/// Who asks for more memory than there is loses the connection; the others keep theirs.
void Connection::tell(void (Face::*event)())
{
    activeAt = Clock::now();
    try {
        (face.get()->*event)();
        noteWait(activeAt);
    } catch (const std::bad_alloc &) {
        drop();
    }
}

void Connection::gone()
{
    over = true;
    face->gone();
    ended(this);
}
