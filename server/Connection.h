#pragma once

#include "net/Socket.h"
#include "server/Face.h"
#include "server/PeerCount.h"

#include <chrono>
#include <functional>
#include <memory>
#include <optional>

struct Service;

/// One accepted connection: its socket and the face that answers on it. Owned by its server, which
/// lets it go in a later turn of the event loop once the peer is gone.
class Connection final : private Socket::User
{
public:
    /// Told once, when the peer is gone; the connection stays until that call has returned.
    using Ended = std::function<void(Connection *)>;

    using Clock = std::chrono::steady_clock;

    /// Both references are borrowed from the server and outlive the connection.
    /// `index` tells it from the others of its server.
    Connection(quint64 index, std::unique_ptr<Socket> accepted, PeerCount::Ticket place,
               Service &service, const Ended &whenEnded);
    ~Connection() override;

    Socket &socket() { return *m_socket; }
    Service &service() { return m_service; }

    /// A request arrived from `visitor`, who has no name yet: the first one of the connection is
    /// told to the status sink.
    void noteRequest(const QHostAddress &visitor, const QByteArray &userAgent);

    /// Whose login was right.
    void noteAccount(const QByteArray &account) { client.account = account; }

    /// Whether somebody wants to hear of the ends of requests.
    bool isWatched() const;

    /// It is over; all but the client is told.
    void noteEnd(Deed deed);

    /// What the user is shown of it.
    Visit visit() const;

    /// Cuts the connection; it goes later.
    void drop();

    bool isIdle() const { return !over && face->awaits() == Awaits::Request; }
    Clock::time_point lastActivity() const { return activeAt; }

    /// Ends what the peer keeps waiting for too long.
    void checkDeadline(Clock::time_point now);

private:
    void readable() override;
    void writable() override;
    void gone() override;

    /// What has gone over the connection at some time.
    struct Look
    {
        qint64 bytes = 0; ///< see `Socket::exchanged`
        Clock::time_point at;
    };

    std::optional<FileTransfer> transfer() const;
    void tell(void (Face::*event)());
    void noteWait(Clock::time_point now);
    Clock::time_point deadline() const;
    bool goesOn(Clock::time_point now);

    const quint64 number;
    Service &m_service;
    const Ended &ended;
    const PeerCount::Ticket ticket;
    std::unique_ptr<Socket> m_socket;
    std::unique_ptr<Face> face;
    Clock::time_point activeAt = Clock::now(); ///< when something last came or went
    Awaits awaits = Awaits::Request; ///< as last seen
    Clock::time_point awaitsSince = activeAt;
    std::optional<Look> lastLook; ///< while a body goes either way
    qint64 receivedBefore = 0; ///< bytes, before the head that is awaited
    qint64 passedBefore = 0; ///< bytes, before the request under way
    std::optional<FileTransfer> onItsWay; ///< all of it is sent; the peer may not have it yet
    const Clock::time_point since = activeAt;
    Client client;
    bool noted = false;
    bool over = false;
};
