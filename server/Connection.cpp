#include "server/Connection.h"

#include "config/Profile.h"
#include "server/FileReply.h"
#include "server/Responder.h"
#include "server/Routes.h"
#include "server/StatusSink.h"
#include "server/WebServer.h"

namespace {

constexpr auto formType = "application/x-www";
constexpr auto loginPage = "login.html";
constexpr auto loginAction = "log";
constexpr auto clientArchive = "Client.jar"; ///< the launcher fetches it without a password
constexpr auto challenge = "WWW-Authenticate: Basic realm=\"Private Area\"\r\n";

/// Takes the same time wherever the two differ, so that it can't be used to guess one of them.
bool isSameSecret(const QByteArray &given, const QByteArray &secret)
{
    auto difference = static_cast<unsigned>(given.size() ^ secret.size());
    for (int i = 0; i < given.size(); ++i) {
        const char other = secret.isEmpty() ? '\0' : secret.at(i % int(secret.size()));
        difference |= static_cast<unsigned char>(given.at(i) ^ other);
    }
    return difference == 0;
}

Responder *makeFileResponse(Profile *profile, Request *request)
{
    return new FileReply(profile, request);
}

Responder *makePlainResponse(Profile *, Request *request)
{
    return new Responder(request);
}

constexpr Route fileRow{ Request::Get, nullptr, "HR", makeFileResponse, ReplyCall::Shared };
constexpr Route formRow{ Request::Post, nullptr, "HR", makeFileResponse, ReplyCall::Shared };
constexpr Route plainRow{ Request::None, nullptr, "", makePlainResponse, ReplyCall::Plain };

} // namespace

Routes fileRoutes()
{
    return { fileRow, formRow };
}

Connection::Connection(WebServer *owner, SessionTable *clients, Channel::Traffic *traffic,
                       const ServerSetup *common)
    : QObject(owner)
    , server(owner)
    , setup(common)
    , request(clients, traffic, owner->singleFile)
{
    request.directories = &common->directories;
    Channel &channel = request.channel;
    connect(&channel, &Channel::headerReady, this, &Connection::readyRead);
    connect(&channel, &Channel::replyEnded, this, [this] { request.endSession(); });
    connect(&channel.socket(), &QAbstractSocket::disconnected, this, &QObject::deleteLater);
    if (StatusSink *sink = setup->sink) {
        connect(this, &Connection::newConnection, this,
                [sink](const QString &address) { sink->newConnection(address); });
        connect(this, &Connection::error, this,
                [sink](const QString &title, const QString &text) { sink->msg(title, text); });
    }
}

Connection::~Connection()
{
    server->connections.removeOne(this);
    // While the responder and the request are whole: a cut-off upload is removed now.
    request.channel.abort();
}

void Connection::readyRead()
{
    const QHostAddress address = request.channel.peerAddress();
    if (address.isNull())
        return drop();
    if (peer.isEmpty())
        peer = address.toString();
    Q_EMIT newConnection(peer);

    if (!request.start())
        return drop();
    if (refuseBroken())
        return;
    readForm();
    if (!accept())
        return refuseLogin();
    dispatch();
}

void Connection::drop()
{
    request.channel.abort();
    deleteLater();
}

void Connection::end()
{
    request.end();
    deleteLater();
}

/// Answers what no responder must see. True when it did.
bool Connection::refuseBroken()
{
    // Not to be guessed at by a method that changes something.
    const bool unclear =
        request.channel.isHeadTruncated() || request.channel.framing().lengthDoubtful;
    const bool risky = unclear && !request.onlyReads();
    const char *status = nullptr;
    if (request.methodCode == Request::None)
        status = "405 Method Not Allowed";
    else if (request.channel.framing().transferEncoding)
        status = "411 Length Required";
    else if (risky || request.isMalformed())
        status = "400 Bad Request";
    else if (request.climbs())
        status = "403 Forbidden";
    if (!status)
        return false;
    refuse(status);
    return true;
}

void Connection::refuse(const char *status)
{
    request.channel.setKeepAlive(false);
    responder(plainRow)->sendHeader(status, 0);
}

/// Makes the fields of a posted form the query of the request.
void Connection::readForm()
{
    const bool form =
        request.methodCode == Request::Post && request.contentType.startsWith(formType);
    if (!form)
        return;
    QByteArray body = request.channel.read(request.contentLength);
    // A field that the head buffer cut off would name something that nobody chose.
    if (body.size() < request.contentLength)
        body.truncate(qMax(0, int(body.lastIndexOf('&'))));
    request.setForm(body);
}

bool Connection::accept()
{
    switch (server->config->authMode) {
    case AuthNone:
        return true;
    case AuthPasswordPage:
        return acceptPassword();
    case AuthBasic:
        return acceptBasic();
    default:
        return false;
    }
}

bool Connection::acceptPassword()
{
    const Session own = request.session();
    if (request.field("a") == QLatin1String(loginAction))
        own->password = request.field("password");
    else if (request.path.endsWith(QLatin1String(clientArchive)))
        return true;
    return isSameSecret(own->password.toUtf8(), server->config->password.toUtf8());
}

bool Connection::acceptBasic() const
{
    bool known = false;
    const QStringList accounts = server->config->accounts();
    for (const QString &user : accounts)
        known = isSameSecret(request.credentials, user.toUtf8()) || known;
    return known;
}

void Connection::refuseLogin()
{
    request.channel.setKeepAlive(false);
    if (server->config->authMode != AuthBasic)
        return responder(fileRow)->sendFile(setup->directories.language + QLatin1String(loginPage));

    const QByteArray body = "<h2>" + tr("Wrong password").toUtf8() + "</h2>";
    Responder *plain = responder(plainRow);
    plain->setContentType("text/xml; charset=\"utf-8\"");
    plain->sendHeader("401 Authorization Required", body.size(), challenge);
    request.channel.write(body, true);
}

void Connection::dispatch()
{
    const Route *row = request.singleFile ? &fileRow : findRoute();
    if (!row)
        return refuse("405 Method Not Allowed");

    Responder *chosen = responder(*row);
    switch (row->call) {
    case ReplyCall::Plain:
        return chosen->reply();
    case ReplyCall::Shared:
        return chosen->reply(server->shared);
    case ReplyCall::SharedAndProfile:
        return chosen->reply(server->shared, server->config);
    }
}

const Route *Connection::findRoute() const
{
    for (const Route &row : setup->rows) {
        if (row.method == request.methodCode && (!row.applies || row.applies(request)))
            return &row;
    }
    return nullptr;
}

Responder *Connection::responder(const Route &row)
{
    if (!checkResponse(QLatin1String(row.name)))
        response = row.make(server->config, &request);
    return response;
}

bool Connection::checkResponse(const QString &name)
{
    if (!response)
        return false;
    if (response->objectName() == name)
        return true;
    // It may outlive this call, but hears nothing of the requests to come.
    disconnect(&request.channel, nullptr, response, nullptr);
    response->deleteLater();
    response.clear();
    return false;
}
