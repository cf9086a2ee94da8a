#include "server/ServerThread.h"

#include "config/Configuration.h"
#include "server/HTTP_Response.h"
#include "server/Responders.h"
#include "server/Response.h"
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

Response *makeFileResponse(Configuration *profile, HTTP_Request *request)
{
    return new HTTP_Response(profile, request);
}

Response *makePlainResponse(Configuration *, HTTP_Request *request)
{
    return new Response(request);
}

constexpr ResponderRow fileRow{ HTTP_Request::Get, nullptr, "HR", makeFileResponse,
                                ReplyCall::Shared };
constexpr ResponderRow formRow{ HTTP_Request::Post, nullptr, "HR", makeFileResponse,
                                ReplyCall::Shared };
constexpr ResponderRow plainRow{ HTTP_Request::None, nullptr, "", makePlainResponse,
                                 ReplyCall::Plain };

} // namespace

ResponderRows baseRows()
{
    return { fileRow, formRow };
}

ServerThread::ServerThread(WebServer *owner, ClientManager *clients, MobileSocket::Traffic *traffic,
                           const ServerSetup *common)
    : QObject(owner)
    , server(owner)
    , setup(common)
    , request(clients, traffic, owner->singleFile)
{
    MobileSocket &channel = request.channel;
    connect(&channel, &MobileSocket::headerReady, this, &ServerThread::readyRead);
    connect(&channel, &MobileSocket::replyEnded, this, [this] { request.endSession(); });
    connect(&channel.socket(), &QAbstractSocket::disconnected, this, &QObject::deleteLater);
    if (StatusSink *sink = setup->sink) {
        connect(this, &ServerThread::newConnection, this,
                [sink](const QString &address) { sink->newConnection(address); });
        connect(this, &ServerThread::error, this,
                [sink](const QString &title, const QString &text) { sink->msg(title, text); });
    }
}

ServerThread::~ServerThread()
{
    server->threads.removeOne(this);
    // While the responder and the request are whole: a cut-off upload is removed now.
    request.channel.abort();
}

void ServerThread::readyRead()
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

void ServerThread::drop()
{
    request.channel.abort();
    deleteLater();
}

void ServerThread::end()
{
    request.end();
    deleteLater();
}

/// Answers what no responder must see. True when it did.
bool ServerThread::refuseBroken()
{
    // Not to be guessed at by a method that changes something.
    const bool unclear =
        request.channel.isHeadTruncated() || request.channel.framing().lengthDoubtful;
    const bool risky = unclear && !request.onlyReads();
    const char *status = nullptr;
    if (request.methodCode == HTTP_Request::None)
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

void ServerThread::refuse(const char *status)
{
    request.channel.setKeepAlive(false);
    responder(plainRow)->sendHeader(status, 0);
}

/// Makes the fields of a posted form the query of the request.
void ServerThread::readForm()
{
    const bool form =
        request.methodCode == HTTP_Request::Post && request.contentType.startsWith(formType);
    if (!form)
        return;
    QByteArray body = request.channel.read(request.contentLength);
    // A field that the head buffer cut off would name something that nobody chose.
    if (body.size() < request.contentLength)
        body.truncate(qMax(0, int(body.lastIndexOf('&'))));
    request.setForm(body);
}

bool ServerThread::accept()
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

bool ServerThread::acceptPassword()
{
    const Session session = request.getClientData();
    if (request.field("a") == QLatin1String(loginAction))
        session->password = request.field("password");
    else if (request.path.endsWith(QLatin1String(clientArchive)))
        return true;
    return isSameSecret(session->password.toUtf8(), server->config->password.toUtf8());
}

bool ServerThread::acceptBasic() const
{
    bool known = false;
    for (const QString &user : std::as_const(server->config->users))
        known = isSameSecret(request.credentials, user.toUtf8()) || known;
    return known;
}

void ServerThread::refuseLogin()
{
    request.channel.setKeepAlive(false);
    if (server->config->authMode != AuthBasic)
        return responder(fileRow)->sendFile(Configuration::LangPath + QLatin1String(loginPage));

    const QByteArray body = "<h2>" + tr("Wrong password").toUtf8() + "</h2>";
    Response *plain = responder(plainRow);
    plain->setContentType("text/xml; charset=\"utf-8\"");
    plain->sendHeader("401 Authorization Required", body.size(), challenge);
    request.channel.write(body, true);
}

void ServerThread::dispatch()
{
    const ResponderRow *row = request.singleFile ? &fileRow : findRow();
    if (!row)
        return refuse("405 Method Not Allowed");

    Response *chosen = responder(*row);
    switch (row->call) {
    case ReplyCall::Plain:
        return chosen->reply();
    case ReplyCall::Shared:
        return chosen->reply(server->shared);
    case ReplyCall::SharedAndProfile:
        return chosen->reply(server->shared, server->config);
    }
}

const ResponderRow *ServerThread::findRow() const
{
    for (const ResponderRow &row : setup->rows) {
        if (row.method == request.methodCode && (!row.applies || row.applies(request)))
            return &row;
    }
    return nullptr;
}

Response *ServerThread::responder(const ResponderRow &row)
{
    if (!checkResponse(QLatin1String(row.name)))
        response = row.make(server->config, &request);
    return response;
}

bool ServerThread::checkResponse(const QString &name)
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
