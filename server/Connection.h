#pragma once

#include "server/Request.h"

#include <QFileInfo>
#include <QObject>
#include <QPointer>
#include <QString>

class Profile;
class Responder;
class WebServer;
struct Route;
struct ServerSetup;

/// Handles the requests of one accepted connection, one after another.
/// Lives in the event loop as a child of its `WebServer` and goes (deleteLater) once the peer
/// is gone.
class Connection : public QObject
{
    Q_OBJECT
public:
    /// All are borrowed from the server.
    Connection(WebServer *owner, SessionTable *clients, Channel::Traffic *traffic,
               const ServerSetup *common);
    ~Connection() override;

    Request &httpRequest() { return request; }

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
    const Route *findRoute() const;
    Responder *responder(const Route &row);
    bool checkResponse(const QString &name);

    WebServer *server;
    const ServerSetup *setup;
    Request request;
    QPointer<Responder> response; ///< a child of the channel
    QString peer;
};
