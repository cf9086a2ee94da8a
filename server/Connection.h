#pragma once

#include "net/Socket.h"
#include "server/Face.h"

#include <QObject>

#include <memory>

struct Service;

/// One accepted connection: its socket and the face that answers on it. Lives in the event loop as
/// a child of its server and goes (deleteLater) once the peer is gone.
class Connection : public QObject, private Socket::User
{
    Q_OBJECT
public:
    /// `service` is borrowed from the server and outlives the connection.
    Connection(std::unique_ptr<Socket> accepted, Service &service, QObject *parent);
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

Q_SIGNALS:
    void ended(Connection *connection); ///< the peer is gone; the connection is about to go

private:
    void readable() override;
    void writable() override;
    void gone() override;

    Service &m_service;
    std::unique_ptr<Socket> m_socket;
    std::unique_ptr<Face> face;
    Face::Clock::time_point activeAt = Face::Clock::now();
    bool noted = false;
    bool over = false;
};
