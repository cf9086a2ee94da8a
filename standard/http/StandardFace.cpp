#include "standard/http/StandardFace.h"

#include "config/Profile.h"
#include "files/HiddenUploads.h"
#include "net/Socket.h"
#include "server/Connection.h"
#include "server/PasswordChecks.h"
#include "standard/Log.h"
#include "standard/http/Copy.h"
#include "standard/http/Delete.h"
#include "standard/http/FileReply.h"
#include "standard/http/Handler.h"
#include "standard/http/MkCol.h"
#include "standard/http/Move.h"
#include "standard/http/Options.h"
#include "standard/http/Patch.h"
#include "standard/http/Put.h"
#include "standard/http/Reserved.h"

#include <utility>

namespace standard {

namespace {

constexpr auto keptNames = "Such names are kept for files that are being received.";

} // namespace

Routes fileRoutes()
{
    return { { { Method::Options, makeHandler<Options> },
               { Method::Get, makeHandler<FileReply> },
               { Method::Head, makeHandler<FileReply> },
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
    if (isAnswering || checking || !handler)
        return;
    handler.reset();
    exchange.forget();
}

void StandardFace::requestReady(Request request)
{
    connection.noteRequest();
    request.outside =
        takeForwarded(request, channel.connection().peerAddress(), *exchange.service().profile);
    exchange.begin(std::move(request));
    const Service &service = exchange.service();
    const Authenticator::Result login =
        common->authenticator.check(exchange.request(), *service.profile, *service.setup.passwords);
    if (login.outcome == Authenticator::Outcome::Undecided)
        checkPassword(login);
    else
        answer(login);
}

void StandardFace::checkPassword(const Authenticator::Result &login)
{
    checking = std::make_unique<QObject>();
    const auto told = [this, user = login.user](PasswordChecks::Verdict verdict) {
        checking.reset();
        if (verdict == PasswordChecks::Verdict::Busy)
            return exchange.refuse(Status::Unavailable, {}, { { "Retry-After", "5" } });
        answer({ verdict == PasswordChecks::Verdict::Fits ? Authenticator::Outcome::Admitted
                                                          : Authenticator::Outcome::Refused,
                 user });
    };
    exchange.service().setup.passwords->check(login.password, login.hash, checking.get(), told);
}

void StandardFace::answer(const Authenticator::Result &login)
{
    if (!isAdmitted(login))
        return;
    if (namesHiddenUpload(exchange.path()))
        return exchange.refuse(
            isSafe(exchange.request().method) ? Status::NotFound : Status::Forbidden, keptNames);
    const Route *route = findRoute();
    if (!route)
        return refuseMethod();
    handler = route->make(exchange);
    isAnswering = true;
    handler->start();
}

/// The door of every method: who is asked for a login, and who may not come from another site.
bool StandardFace::isAdmitted(const Authenticator::Result &login)
{
    const Request &request = exchange.request();
    const Profile &profile = *exchange.service().profile;
    if (login.outcome != Authenticator::Outcome::Admitted) {
        exchange.refuse(Status::Unauthorized, {},
                        common->authenticator.challenges(login.outcome, profile));
        return false;
    }
    exchange.setAccess(Access::of(profile, login.user));
    // A page of somebody else's must not have its visitor's browser change anything here.
    const QByteArray site = request.value("Sec-Fetch-Site");
    if (isSafe(request.method) || (site != "cross-site" && site != "same-site"))
        return true;
    exchange.refuse(Status::Forbidden);
    return false;
}

void StandardFace::requestBad(Status status)
{
    qCDebug(standardLog) << "refused:" << statusText(status) << "from"
                         << channel.connection().peerAddress();
    connection.noteRequest();
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

void StandardFace::replyEnded()
{
    checking.reset();
    if (std::exchange(isAnswering, false))
        handler->end();
    exchange.finish();
}

/// Of what is reserved but serves no purpose, nothing is told.
void StandardFace::refuseMethod()
{
    const Field allow = allowField(exchange);
    if (allow.value.isEmpty())
        return exchange.refuse(Status::NotFound);
    exchange.refuse(Status::MethodNotAllowed, {}, { allow });
}

const Route *StandardFace::findRoute() const
{
    for (const Route &route : common->routes.rows) {
        if (route.method == exchange.request().method && isFor(route, exchange.path()))
            return &route;
    }
    return nullptr;
}

} // namespace standard
