#include "standard/http/StandardFace.h"

#include "config/Profile.h"
#include "files/HiddenUploads.h"
#include "files/Share.h"
#include "net/Socket.h"
#include "server/Access.h"
#include "server/Connection.h"
#include "server/CrossSite.h"
#include "server/PasswordChecks.h"
#include "server/PeerAddress.h"
#include "server/PeerCount.h"
#include "server/TrustedProxy.h"
#include "standard/Log.h"
#include "standard/http/Copy.h"
#include "standard/http/Delete.h"
#include "standard/http/FileReply.h"
#include "standard/http/FolderReply.h"
#include "standard/http/Handler.h"
#include "standard/http/LoginPage.h"
#include "standard/http/MkCol.h"
#include "standard/http/Move.h"
#include "standard/http/Options.h"
#include "standard/http/OwnNames.h"
#include "standard/http/Patch.h"
#include "standard/http/Put.h"
#include "standard/http/Reserved.h"
#include "standard/http/SessionCookie.h"

#include <utility>

namespace standard {

namespace {

constexpr auto keptNames = "Such names are kept for files that are being received.";
constexpr auto strangeName =
    "This server is not known by that name. Its owner can add it: see \"names\" in the reference.";
constexpr auto blockedByOwner = "The owner of this server has blocked this address.";
constexpr auto otherSite = "A page of another site asked for this.";

std::unique_ptr<Handler> makeGet(Exchange &exchange)
{
    const bool lists = exchange.share() && exchange.share()->isFolder() && exchange.namesFolder();
    return lists ? makeHandler<FolderReply>(exchange) : makeHandler<FileReply>(exchange);
}

/// How the owner is told of what is made out of a folder. Not by the whole query: nobody is to hide
/// it among the folders that were looked at.
QByteArray madeFile(const Request &request)
{
    return request.target.path + '?' + archiveQuery;
}

} // namespace

Routes fileRoutes()
{
    return { { { Method::Options, makeHandler<Options> },
               { Method::Get, makeGet },
               { Method::Head, makeGet },
               { Method::Put, makeHandler<Put> },
               { Method::Patch, makeHandler<Patch> },
               { Method::Delete, makeHandler<Delete> },
               { Method::MkCol, makeHandler<MkCol> },
               { Method::Copy, makeHandler<Copy> },
               { Method::Move, makeHandler<Move> } },
             {} };
}

FaceMaker standardFaces(Routes routes)
{
    auto common = std::make_shared<FaceCommon>(FaceCommon{ std::move(routes) });
    return [common](Connection &connection) -> std::unique_ptr<Face> {
        return std::make_unique<StandardFace>(connection, common);
    };
}

StandardFace::StandardFace(Connection &owner, std::shared_ptr<FaceCommon> shared)
    : connection(owner)
    , common(std::move(shared))
    , channel(owner.socket(), owner.service().traffic, *this)
    , exchange(owner.service(), channel, common->routes)
    , gate(*owner.service().setup.guesses, loginPatience, [this] { logIn(); })
{
}

StandardFace::~StandardFace() = default;

void StandardFace::readable()
{
    channel.readable();
    dropHandler();
}

void StandardFace::writable()
{
    channel.writable();
    dropHandler();
}

/// Idle connections keep nothing of their last request. Not to be done where the handler itself may
/// be at work.
void StandardFace::dropHandler()
{
    if (isAnswering || isAtDoor || !handler)
        return;
    handler.reset();
    exchange.forget();
}

void StandardFace::requestReady(Request request)
{
    request.outside =
        takeForwarded(request, channel.connection().peerAddress(), *exchange.service().profile);
    connection.noteRequest(request.outside.visitor, request.value("User-Agent"));
    exchange.begin(std::move(request));
    isAtDoor = true;
    if (isWelcome())
        logIn();
}

/// Whether it calls this server by a name of somebody else's. One without a name is no browser's.
bool StandardFace::isMisdirected() const
{
    if (!exchange.service().profile->isStrict())
        return false;
    const std::optional<QByteArray> called = calledName(exchange);
    return called && !isMeantForUs(*called, exchange);
}

/// Whether a visitor means this server by it, and not a page of somebody else's, which must not
/// have its visitor's browser change anything here.
bool StandardFace::isWelcome()
{
    // Whoever comes by a proxy; others got no connection.
    if (exchange.service().setup.peers->isBlocked(peerOf(exchange.request().outside.visitor))) {
        exchange.refuse(Status::Forbidden, blockedByOwner);
        return false;
    }
    if (isMisdirected()) {
        exchange.refuse(Status::MisdirectedRequest, strangeName);
        return false;
    }
    if (isSafe(exchange.request().method) || !isCrossSite())
        return true;
    exchange.refuse(Status::Forbidden, otherSite);
    return false;
}

bool StandardFace::isCrossSite() const
{
    const Request &request = exchange.request();
    return ::isCrossSite(request.value("Sec-Fetch-Site"), request.value("Origin"),
                         calledName(exchange).value_or(QByteArray()), isEncrypted(exchange));
}

/// Whether no proxy, and no page of another site, is behind the login.
bool StandardFace::standsForItself() const
{
    const QHostAddress &visitor = exchange.request().outside.visitor;
    return !isTrustedProxy(visitor, *exchange.service().profile) && !isCrossSite();
}

/// The door of every method. Comes once more when a login had to wait.
void StandardFace::logIn()
{
    const Request &request = exchange.request();
    const Service &service = exchange.service();
    const Route *route =
        findRoute(common->routes, request.method, exchange.path(), request.target.query);
    if (route && route->isOpen)
        return dispatch();
    if (goesOnInSession())
        return;
    const std::optional<QByteArray> account =
        Authenticator::triedAccount(request, *service.profile);
    const LoginGate::Turn turn = account ? gate.enter({ request.outside.visitor, *account,
                                                        Guesses::Clock::now(), standsForItself() })
                                         : LoginGate::Turn::Now;
    if (turn == LoginGate::Turn::Later)
        return;
    if (turn == LoginGate::Turn::TooLate) {
        return exchange.refuse(
            Status::TooManyRequests, tooManyGuesses,
            { { "Retry-After", QByteArray::number(qint64(gate.timeLeft().count())) } });
    }
    const Authenticator::Result login =
        common->authenticator.check(request, *service.profile, *service.setup.passwords, proven);
    if (login.outcome == Authenticator::Outcome::Undecided)
        return checkPassword(login);
    if (account && login.outcome != Authenticator::Outcome::Stale)
        gate.tell(login.outcome == Authenticator::Outcome::Admitted);
    decide(login);
}

bool StandardFace::goesOnInSession()
{
    Service &service = exchange.service();
    const QByteArray number = sessionNumber(exchange);
    session = number.isEmpty() ? nullptr : service.logins.use(number, *service.profile);
    if (!session)
        return false;
    Access access = Access::of(*service.profile, session->account());
    access.inSession = true;
    exchange.setAccess(access);
    dispatch();
    return true;
}

void StandardFace::checkPassword(const Authenticator::Result &login)
{
    checking = std::make_unique<QObject>();
    const auto told = [this, user = login.user,
                       proof = login.proof](PasswordChecks::Verdict verdict) {
        checking.reset();
        if (verdict == PasswordChecks::Verdict::Busy)
            return exchange.refuse(Status::Unavailable, {}, { { "Retry-After", "5" } });
        const bool fits = verdict == PasswordChecks::Verdict::Fits;
        gate.tell(fits);
        decide({ fits ? Authenticator::Outcome::Admitted : Authenticator::Outcome::Refused,
                 user,
                 {},
                 {},
                 proof });
    };
    exchange.service().setup.passwords->check(login.password, login.hash, checking.get(), told);
}

void StandardFace::decide(const Authenticator::Result &login)
{
    const Profile &profile = *exchange.service().profile;
    if (login.outcome != Authenticator::Outcome::Admitted)
        return refuseLogin(login.outcome);
    proven = login.proof;
    exchange.setAccess(Access::of(profile, login.user));
    dispatch();
}

/// Whether a page asks that its visitor looks at, which tells them by itself. Scripts say so by
/// this field; of pictures and films the browser does, or the session that was.
bool StandardFace::isOfPage() const
{
    const Request &request = exchange.request();
    return request.field("X-Requested-With") || request.value("Sec-Fetch-Mode") == "no-cors"
        || !sessionNumber(exchange).isEmpty();
}

/// People are led to the page, where there is one. A challenge along with it would have their
/// browser ask in its own way.
void StandardFace::refuseLogin(Authenticator::Outcome outcome)
{
    if (asksForPage(exchange) && findRoute(common->routes, Method::Get, loginPath))
        return exchange.refuse(
            Status::SeeOther, {},
            { { "Location", loginUrl(exchange) }, { "Cache-Control", "no-store" } });
    if (isOfPage())
        return exchange.refuse(Status::Unauthorized, {}, { { "WWW-Authenticate", "Session" } });
    exchange.refuse(Status::Unauthorized, {},
                    common->authenticator.challenges(outcome, *exchange.service().profile));
}

void StandardFace::dispatch()
{
    connection.noteAccount(exchange.access().account);
    const Request &request = exchange.request();
    if (namesHiddenUpload(exchange.path()))
        return exchange.refuse(isSafe(request.method) ? Status::NotFound : Status::Forbidden,
                               keptNames);
    const Route *route =
        findRoute(common->routes, request.method, exchange.path(), request.target.query);
    if (!route)
        return refuseMethod();
    handler = route->make(exchange);
    isAtDoor = false;
    isAnswering = true;
    handler->start();
}

void StandardFace::requestBad(Status status)
{
    qCDebug(standardLog) << "refused:" << statusText(status) << "from"
                         << channel.connection().peerAddress();
    connection.noteRequest(channel.connection().peerAddress(), {});
    exchange.begin({});
    exchange.refuse(status);
}

void StandardFace::bodyEnded(BodyEnd end)
{
    std::optional<QByteArray> body = exchange.takeBody();
    if (!body)
        return bodySaved(end);
    switch (end) {
    case BodyEnd::Whole:
        return handler->bodyReady(*body);
    case BodyEnd::TooLarge:
        return exchange.refuse(Status::ContentTooLarge);
    case BodyEnd::SinkFailed:
        return exchange.refuse(Status::Unavailable);
    case BodyEnd::Bad:
        return exchange.refuse(Status::BadRequest);
    case BodyEnd::Lost:
        return exchange.breakOff();
    }
}

void StandardFace::bodySaved(BodyEnd end)
{
    handler->bodySaved(end);
    if (end == BodyEnd::Lost && isAnswering)
        exchange.breakOff();
}

void StandardFace::drained()
{
    if (isAnswering)
        handler->drained();
}

void StandardFace::fileSent()
{
    if (isAnswering)
        handler->fileSent();
}

void StandardFace::peerStopped()
{
    if (isAnswering)
        handler->peerStopped();
}

void StandardFace::replyEnded()
{
    checking.reset();
    session.reset();
    gate.leave();
    isAtDoor = false;
    const bool wasAnswering = std::exchange(isAnswering, false);
    if (wasAnswering)
        handler->end();
    if (connection.isWatched())
        noteEnd(wasAnswering);
    exchange.finish();
}

/// What is done by the server's own names is no matter of a file, unless its handler says so.
void StandardFace::noteEnd(bool wasAnswering)
{
    constexpr int firstRefusal = 400;
    const auto added = wasAnswering ? handler->addedFiles() : std::vector<QByteArray>();
    for (const QByteArray &path : added)
        connection.noteEnd(upload(path));
    if (!added.empty() || (isReserved(exchange.path()) && exchange.status() < firstRefusal))
        return;
    connection.noteEnd(deed(wasAnswering ? handler->bytesLeft() : std::nullopt));
}

/// A file that was added at `path` of the share.
Deed StandardFace::upload(const QByteArray &path) const
{
    return { {},
             nameOf(Method::Put),
             '/' + seenFrom(exchange.access().home, path),
             int(Status::Created),
             channel.canAnswer(),
             false };
}

/// `unsent` bytes are missing of a file that was made: that is a download, however it was asked
/// for.
Deed StandardFace::deed(std::optional<qint64> unsent) const
{
    const Request &request = exchange.request();
    return { {},
             unsent ? nameOf(Method::Get) : request.methodName,
             unsent ? madeFile(request) : request.target.path,
             exchange.status(),
             channel.canAnswer() && unsent.value_or(0) == 0,
             !unsent && exchange.namesFolder() };
}

std::optional<FileTransfer> StandardFace::transfer() const
{
    std::optional<FileTransfer> found = channel.transfer();
    if (const auto unsent = isAnswering ? handler->bytesLeft() : std::nullopt)
        return FileTransfer{ false, *unsent + (found ? found->left : 0),
                             madeFile(exchange.request()) };
    if (!found)
        return {};
    const QByteArray received = isAnswering ? handler->receivedFile() : QByteArray();
    found->path = received.isEmpty() ? exchange.request().target.path
                                     : '/' + seenFrom(exchange.access().home, received);
    return found;
}

/// Of what is reserved but serves no purpose, nothing is told.
void StandardFace::refuseMethod()
{
    const Field allow = allowField(exchange);
    if (allow.value.isEmpty())
        return exchange.refuse(Status::NotFound);
    exchange.refuse(Status::MethodNotAllowed, {}, { allow });
}

} // namespace standard
