#include "server/Connection.h"

#include "server/Log.h"
#include "server/Service.h"
#include "server/StatusSink.h"

Connection::Connection(std::unique_ptr<Socket> accepted, Service &service, const Ended &whenEnded)
    : m_service(service)
    , ended(whenEnded)
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

void Connection::noteRequest()
{
    if (noted)
        return;
    noted = true;
    if (m_service.setup.sink)
        m_service.setup.sink->newConnection(m_socket->peerAddress().toString());
}

void Connection::drop()
{
    m_socket->abort();
}

void Connection::checkDeadline(Face::Clock::time_point now)
{
    if (over || now < face->deadline(activeAt))
        return;
    qCDebug(serverLog) << "waited too long for" << m_socket->peerAddress();
    face->expire();
}

void Connection::readable()
{
    activeAt = Face::Clock::now();
    face->readable();
}

void Connection::writable()
{
    activeAt = Face::Clock::now();
    face->writable();
}

void Connection::gone()
{
    over = true;
    face->gone();
    ended(this);
}
