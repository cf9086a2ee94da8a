#include "classic/http/ClassicFace.h"

#include "classic/Log.h"
#include "classic/http/FileReply.h"
#include "classic/http/Refusals.h"
#include "classic/http/RequestParser.h"
#include "config/Profile.h"
#include "files/Path.h"
#include "net/Socket.h"
#include "server/Access.h"
#include "server/Connection.h"
#include "server/OwnNames.h"

#include <algorithm>
#include <array>
#include <utility>

namespace {

constexpr int spareHeads = 64;

constexpr Route statusRoute{ Request::None, nullptr, makeResponder<StatusReply> };
constexpr Route authorityRoute{ Request::None, nullptr, makeResponder<AuthorityFile> };
constexpr Route loginPageRoute{ Request::None, nullptr, makeResponder<LoginPage> };
constexpr Route challengeRoute{ Request::None, nullptr, makeResponder<Challenge> };
constexpr Route formTooLargeRoute{ Request::None, nullptr, makeResponder<FormTooLarge> };
constexpr Route fileRoute{ Request::Get, nullptr, makeResponder<FileReply> };
constexpr Route formRoute{ Request::Post, nullptr, makeResponder<FileReply> };

/// Methods that change the share whatever the switches say, as clients of before rely on, unless
/// the profile is strict or says itself who may do what.
struct FreeMethod
{
    int method;
    bool deletes;
};

constexpr std::array freeMethods{
    FreeMethod{ Request::MkCol, false },
    FreeMethod{ Request::Copy, false },
    FreeMethod{ Request::Move, true },
};

bool isKeptFromChanging(const Request &request, const Exchange &exchange)
{
    const Profile &profile = *exchange.service.profile;
    if (!profile.isStrict() && !profile.statesRights())
        return false;
    return std::any_of(freeMethods.begin(), freeMethods.end(), [&](const FreeMethod &row) {
        return row.method == request.methodCode
            && !(profile.allowsUpload() && (!row.deletes || profile.allowsDelete()));
    });
}

/// Whether it calls this server by a name of somebody else's, which counts when the profile is
/// strict. A long target may have pushed the name out of sight.
bool isMisdirected(const Exchange &exchange)
{
    const Profile &profile = *exchange.service.profile;
    const QByteArray &called = exchange.request.host;
    if (!profile.isStrict() || (called.isEmpty() && !exchange.channel.request().isCut()))
        return false;
    return !isMeantForUs(called, false, Reached::by(exchange.channel.connection()), profile);
}

/// What would do the same; empty when it changes nothing.
QByteArray methodOfForm(const Request &request)
{
    const QString action = request.field(Request::actionField);
    if (action == QLatin1String("del"))
        return "DELETE";
    return action == QLatin1String("cfd") ? "MKCOL" : "";
}

} // namespace

Routes fileRoutes()
{
    return { fileRoute, formRoute };
}

ClassicFace::Common::Common(Routes table)
    : routes(std::move(table))
    , heads(RequestReader::bufferSize, spareHeads)
{
}

FaceMaker classicFaces(Routes routes)
{
    auto common = std::make_shared<ClassicFace::Common>(std::move(routes));
    return [common](Connection &connection) -> std::unique_ptr<Face> {
        return std::make_unique<ClassicFace>(connection, common);
    };
}

ClassicFace::ClassicFace(Connection &owner, std::shared_ptr<Common> shared)
    : connection(owner)
    , common(std::move(shared))
    , channel(owner.socket(), owner.service().traffic, common->heads, *this)
    , exchange{ owner.service(), channel, {}, {}, {} }
    , admission(exchange, [this](Admission::Verdict verdict) { decide(verdict); })
{
}

ClassicFace::~ClassicFace() = default;

void ClassicFace::headReady()
{
    Request &request = exchange.request;
    if (exchange.service.profile->isStrict())
        request = Request();
    const bool isRequest =
        RequestParser(request).parse(channel.request(), exchange.service.singleFile);
    connection.noteRequest(channel.connection().peerAddress(), request.userAgent);
    if (!isRequest) {
        qCDebug(classicLog) << "dropped: no request line from"
                            << channel.connection().peerAddress();
        return channel.abort();
    }
    takeSession();
    // What only reads is answered by the part of its head that was seen.
    const bool matters = !request.onlyReads() || request.isLogin();
    if (channel.request().isCut() && !channel.request().isTruncated() && matters)
        return channel.readHeadRest();
    examine();
}

void ClassicFace::headRestReady(bool whole)
{
    if (!whole)
        return refuse("431 Request Header Fields Too Large");
    RequestParser(exchange.request).parseRest(channel.request());
    examine();
}

/// A cookie counts for its own request; without one the connection's last session goes on, unless
/// the profile is strict: a proxy may serve another visitor on it.
void ClassicFace::takeSession()
{
    const Request &request = exchange.request;
    SessionTable &sessions = exchange.service.sessions;
    if (request.keepAlive)
        channel.setKeepAlive(*request.keepAlive);
    if (request.bringsCookies || exchange.service.profile->isStrict()) {
        const Cookies::Cookie *number = request.sessionCookie();
        exchange.client = number ? sessions.ofCookie(number->value) : nullptr;
    }
    if (exchange.client && !sessions.holds(exchange.client))
        exchange.client.reset();
    if (exchange.client)
        exchange.use.emplace(exchange.client);
}

void ClassicFace::examine()
{
    if (channel.request().framing().lengthDoubtful)
        channel.setKeepAlive(false);
    if (const char *status = reasonToRefuse())
        return refuse(status);
    if (AuthorityFile::isAskedFor(exchange))
        return responder(authorityRoute).reply();
    if (exchange.request.isForm())
        return readForm();
    admission.look();
}

/// Why no responder must see the request; null when there is no reason.
const char *ClassicFace::reasonToRefuse() const
{
    const Request &request = exchange.request;
    const HeadScan &framing = channel.request().framing();
    // Not to be guessed at by a method that changes something.
    const bool unclear =
        channel.request().isTruncated() || framing.lengthDoubtful || framing.strayBreak;
    if (request.methodCode == Request::None)
        return Status::methodNotAllowed;
    if (framing.transferEncoding)
        return "411 Length Required";
    if ((unclear && !request.onlyReads()) || request.isMalformed())
        return "400 Bad Request";
    if (isMisdirected(exchange))
        return "421 Misdirected Request";
    if (request.climbs() || request.isCrossSiteChange(channel.connection().isEncrypted())
        || isKeptFromChanging(request, exchange))
        return Status::forbidden;
    return nullptr;
}

void ClassicFace::refuse(const char *status)
{
    qCDebug(classicLog) << "refused:" << status << exchange.request.path << "from"
                        << channel.connection().peerAddress();
    channel.setKeepAlive(false);
    static_cast<StatusReply &>(responder(statusRoute)).send(status);
}

void ClassicFace::readForm()
{
    const qint64 length = exchange.request.contentLength;
    RequestReader &reader = channel.request();
    if (length > BodyIntake::maxForm) {
        channel.setKeepAlive(false);
        return responder(formTooLargeRoute).reply();
    }
    formMemory.emplace(*exchange.service.setup.forms, length);
    if (!formMemory->isGranted())
        return refuse("503 Service Unavailable");
    // A short form that pauses is taken as far as it came; its clients rely on the answer.
    const bool paused = reader.fitsBuffer() && !reader.isBodyBuffered();
    if (paused && !channel.isBodyHeldBack())
        return formReady(reader.readBuffered(length));
    channel.receive({ BodyIntake::Target::Form, length });
}

/// Makes the fields of a posted form the query of the request.
void ClassicFace::formReady(const QByteArray &form)
{
    QByteArray body = form;
    // A field that was cut off would name something that nobody chose.
    if (body.size() < exchange.request.contentLength)
        body.truncate(qMax(0, int(body.lastIndexOf('&'))));
    exchange.request.setForm(body);
    admission.look();
}

void ClassicFace::decide(Admission::Verdict verdict)
{
    switch (verdict) {
    case Admission::Verdict::Admitted:
        return answer();
    case Admission::Verdict::Refused:
        return refuseLogin();
    case Admission::Verdict::Busy:
        return refuse("503 Service Unavailable");
    }
}

void ClassicFace::answer()
{
    // Its methods know the switches alone: who has other rights must not gain by asking it.
    const Profile &profile = *exchange.service.profile;
    const QByteArray account = exchange.request.credentials.split(':').constFirst();
    const Access access = Access::of(profile, account);
    connection.noteAccount(access.account);
    if (!access.isAsSwitched(profile))
        return refuse(Status::forbidden);
    dispatch();
}

void ClassicFace::refuseLogin()
{
    qCDebug(classicLog) << "not logged in:" << channel.connection().peerAddress();
    channel.setKeepAlive(false);
    const bool asksForPage = exchange.service.profile->authMode != AuthBasic;
    responder(asksForPage ? loginPageRoute : challengeRoute).reply();
}

void ClassicFace::dispatch()
{
    const Route *route = exchange.service.singleFile ? &fileRoute : findRoute();
    if (!route)
        return refuse(Status::methodNotAllowed);
    responder(*route).reply();
}

const Route *ClassicFace::findRoute() const
{
    for (const Route &route : common->routes) {
        if (route.method == exchange.request.methodCode
            && (!route.applies || route.applies(exchange.request)))
            return &route;
    }
    return nullptr;
}

Responder &ClassicFace::responder(const Route &route)
{
    if (kept != &route) {
        kept = &route;
        current = route.make(exchange);
    }
    return *current;
}

void ClassicFace::gone()
{
    channel.gone();
    endRequest();
}

/// What was kept for the request goes, however it ended.
void ClassicFace::endRequest()
{
    admission.leave();
    exchange.use.reset();
    formMemory.reset();
}

void ClassicFace::partHeadReady(const QByteArray &lines)
{
    current->partHeadReady(lines);
}

void ClassicFace::uploadEnded(SaveResult result)
{
    current->uploadEnded(result);
}

void ClassicFace::drained()
{
    if (current && !admission.isLooking())
        current->drained();
}

void ClassicFace::replyEnded()
{
    if (current && !admission.isLooking())
        current->replyEnded();
    if (connection.isWatched())
        noteEnd();
    exchange.status = exchange.outcome = 0;
    exchange.sendsFile = false;
    exchange.changed.clear();
    endRequest();
}

/// A form says by a field what it is for.
void ClassicFace::noteEnd()
{
    const Request &request = exchange.request;
    const bool isForm = request.methodCode == Request::Post && !request.isMultipart();
    const QByteArray method = isForm ? methodOfForm(request) : RequestParser::methodName(request);
    Deed deed{ {},
               method,
               request.path.toUtf8(),
               exchange.outcome != 0 ? exchange.outcome : exchange.status,
               channel.canAnswer() && !channel.isBodyLost(),
               request.isDownload() && !exchange.sendsFile };
    if (exchange.changed.empty())
        return connection.noteEnd(deed);
    for (const QByteArray &path : exchange.changed) {
        deed.path = '/' + cleanPath(path);
        connection.noteEnd(deed);
    }
}

std::optional<FileTransfer> ClassicFace::transfer() const
{
    std::optional<FileTransfer> found = channel.transfer();
    if (found)
        found->path = exchange.request.path.toUtf8();
    return found;
}
