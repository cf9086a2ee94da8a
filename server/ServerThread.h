#pragma once

#include "server/HTTP_Request.h"

#include <QFileInfo>
#include <QObject>
#include <QPointer>
#include <QString>

class Configuration;
class Response;
class WebServer;
struct ResponderRow;
struct ServerSetup;

/// Handles the requests of one accepted connection, one after another.
/// Lives in the event loop as a child of its `WebServer` and goes (deleteLater) once the peer
/// is gone.
class ServerThread : public QObject
{
    Q_OBJECT
public:
    /// All are borrowed from the server.
    ServerThread(WebServer *owner, ClientManager *clients, MobileSocket::Traffic *traffic,
                 const ServerSetup *common);
    ~ServerThread() override;

    HTTP_Request &httpRequest() { return request; }

    /// Cuts the connection and goes.
    void drop();

Q_SIGNALS:
    void newConnection(const QString &peer);
    void error(const QString &title, const QString &text);

public Q_SLOTS:
    void readyRead();
    void end();

private:
    bool refuseBroken();
    void refuse(const char *status);
    void readForm();
    bool accept();
    bool acceptPassword();
    bool acceptBasic() const;
    void refuseLogin();
    void dispatch();
    const ResponderRow *findRow() const;
    Response *responder(const ResponderRow &row);
    bool checkResponse(const QString &name);

    WebServer *server;
    const ServerSetup *setup;
    HTTP_Request request;
    QPointer<Response> response; ///< a child of the channel
    QString peer;
};
