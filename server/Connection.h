#pragma once

#include "net/Socket.h"
#include "server/Face.h"

#include <functional>
#include <memory>

struct Service;

/// One accepted connection: its socket and the face that answers on it. Owned by its server, which
/// lets it go in a later turn of the event loop once the peer is gone.
class Connection final : private Socket::User
{
public:
    /// Told once, when the peer is gone; the connection stays until that call has returned.
    using Ended = std::function<void(Connection *)>;

    /// Both references are borrowed from the server and outlive the connection.
    Connection(std::unique_ptr<Socket> accepted, Service &service, const Ended &whenEnded);
    ~Connection() override;

    Socket &socket() { return *m_socket; }
    Service &service() { return m_service; }

    /// A request arrived: the first one of the connection is told to the status sink.
    void noteRequest();

    /// Cuts the connection; it goes later.
    void drop();

    bool isIdle() const { return !over && face->isIdle(); }
    Face::Clock::time_point lastActivity() const { return activeAt; }

    /// Ends what the peer keeps waiting for too long.
    void checkDeadline(Face::Clock::time_point now);

private:
    void readable() override;
    void writable() override;
    void gone() override;

    Service &m_service;
    const Ended &ended;
    std::unique_ptr<Socket> m_socket;
    std::unique_ptr<Face> face;
    Face::Clock::time_point activeAt = Face::Clock::now();
    bool noted = false;
    bool over = false;
};
