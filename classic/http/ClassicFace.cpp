#include "classic/http/ClassicFace.h"

#include "classic/Log.h"
#include "classic/http/FileReply.h"
#include "classic/http/Refusals.h"
#include "classic/http/RequestParser.h"
#include "config/Profile.h"
#include "net/Socket.h"
#include "server/Access.h"
#include "server/Connection.h"
#include "server/OwnNames.h"
#include "server/PasswordChecks.h"
#include "server/Secret.h"
#include "server/TrustedProxy.h"

#include <algorithm>
#include <array>
#include <utility>

namespace {

constexpr int spareHeads = 64;
constexpr std::chrono::seconds loginPatience{ 60 };
constexpr auto openArchive = "Client.jar"; ///< the launcher fetches it without a password

constexpr Route statusRoute{ Request::None, nullptr, makeResponder<StatusReply> };
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
    return !isMeantForUs(called, false, exchange.channel.connection(), profile);
}

/// Whether no proxy, and no page of another site, may be behind a login. Where the connection is
/// not encrypted browsers say of forms alone whose page it was.
bool standsForItself(const Exchange &exchange)
{
    const Request &request = exchange.request;
    const bool isLink = request.isLogin() && request.methodCode != Request::Post;
    return !isLink && !request.isCrossSite()
        && !isTrustedProxy(exchange.channel.connection().peerAddress(), *exchange.service.profile);
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
    , gate(*owner.service().setup.guesses, loginPatience, [this] { admit(); })
{
}

ClassicFace::~ClassicFace() = default;

void ClassicFace::headReady()
{
    connection.noteRequest();
    Request &request = exchange.request;
    if (exchange.service.profile->isStrict())
        request = Request();
    if (!RequestParser(request).parse(channel.request(), exchange.service.singleFile)) {
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
    if (exchange.request.isForm())
        return readForm();
    admit();
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
    if (request.climbs() || request.isCrossSiteForm() || isKeptFromChanging(request, exchange))
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
    if (length > Channel::maxForm) {
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
    channel.readForm(length);
}

/// Makes the fields of a posted form the query of the request.
void ClassicFace::formReady(const QByteArray &form)
{
    QByteArray body = form;
    // A field that was cut off would name something that nobody chose.
    if (body.size() < exchange.request.contentLength)
        body.truncate(qMax(0, int(body.lastIndexOf('&'))));
    exchange.request.setForm(body);
    admit();
}

void ClassicFace::admit()
{
    const std::optional<QByteArray> account = triedAccount();
    if (!account)
        return isAdmitted() ? answer() : refuseLogin();
    switch (gate.enter({ channel.connection().peerAddress(), *account, Guesses::Clock::now(),
                         standsForItself(exchange) })) {
    case LoginGate::Turn::Later:
        return;
    case LoginGate::Turn::TooLate:
        return refuseLogin(); // unseen, which looks the same
    case LoginGate::Turn::Now:
        break;
    }
    if (isAdmitted()) {
        gate.tell(true);
        return answer();
    }
    const std::optional<Claim> claimed = claim();
    if (!claimed)
        return turnAway();
    if (exchange.service.setup.passwords->remembers(claimed->password, claimed->hash))
        return letIn(*claimed);
    checkPassword(*claimed);
}

/// Whose password the request brings; none when it brings none.
std::optional<QByteArray> ClassicFace::triedAccount() const
{
    const Request &request = exchange.request;
    const int mode = exchange.service.profile->authMode;
    if (mode == AuthPasswordPage && request.isLogin())
        return QByteArray();
    if (mode == AuthBasic && !request.credentials.isEmpty())
        return request.credentials.left(request.credentials.indexOf(':'));
    return {};
}

/// The password that the request brings, where a hash tells whether it fits.
std::optional<ClassicFace::Claim> ClassicFace::claim() const
{
    const Request &request = exchange.request;
    const Profile &profile = *exchange.service.profile;
    const int colon = int(request.credentials.indexOf(':'));
    const bool byPage = profile.authMode == AuthPasswordPage;
    if (byPage ? !request.isLogin() : colon < 0)
        return {};
    const QByteArray user = byPage ? QByteArray() : request.credentials.left(colon);
    Claim claimed;
    claimed.hash = PasswordChecks::hashFor(profile, user);
    claimed.password =
        byPage ? request.field("password").toUtf8() : request.credentials.mid(colon + 1);
    return claimed.hash.isEmpty() ? std::nullopt : std::optional(claimed);
}

void ClassicFace::checkPassword(const Claim &claimed)
{
    using Verdict = PasswordChecks::Verdict;
    checking = std::make_unique<QObject>();
    const auto told = [this, claimed](Verdict verdict) {
        checking.reset();
        if (!channel.canAnswer())
            return;
        if (verdict == Verdict::Busy)
            return refuse("503 Service Unavailable");
        verdict == Verdict::Fits ? letIn(claimed) : turnAway();
    };
    exchange.service.setup.passwords->check(claimed.password, claimed.hash, checking.get(), told);
}

/// The password was found to fit its hash, which takes its place in the session.
void ClassicFace::letIn(const Claim &proved)
{
    gate.tell(true);
    if (exchange.service.profile->authMode == AuthPasswordPage)
        exchange.session()->logIn(QString::fromLatin1(proved.hash),
                                  channel.connection().peerAddress());
    answer();
}

void ClassicFace::turnAway()
{
    gate.tell(false);
    refuseLogin();
}

void ClassicFace::answer()
{
    // Its methods know the switches alone: who has other rights must not gain by asking it.
    const Profile &profile = *exchange.service.profile;
    const QByteArray account = exchange.request.credentials.split(':').constFirst();
    if (!Access::of(profile, account).isAsSwitched(profile))
        return refuse(Status::forbidden);
    dispatch();
}

bool ClassicFace::isAdmitted()
{
    const Profile &profile = *exchange.service.profile;
    switch (profile.authMode) {
    case AuthNone:
        return true;
    case AuthPasswordPage:
        return passwordFits();
    case AuthBasic:
        return isAccount();
    default:
        return false;
    }
}

bool ClassicFace::passwordFits()
{
    const Request &request = exchange.request;
    const QString &password = exchange.service.profile->password;
    const QHostAddress peer = channel.connection().peerAddress();
    const Session session = exchange.session();
    if (request.isLogin()) {
        // A wrong one changes nothing: the number may be somebody else's.
        const QString given = request.field("password");
        if (isPasswordHash(password) || !isSameSecret(given.toUtf8(), password.toUtf8()))
            return false;
        session->logIn(given, peer);
        return true;
    }
    if (request.path.endsWith(QLatin1String(openArchive)) && request.isDownload())
        return true;
    const bool loggedInHere = password.isEmpty() || session->isLoggedInFrom(peer);
    return loggedInHere && isSameSecret(session->password.toUtf8(), password.toUtf8());
}

bool ClassicFace::isAccount() const
{
    bool known = false;
    const QStringList accounts = exchange.service.profile->accounts();
    for (const QString &account : accounts)
        known = isSameSecret(exchange.request.credentials, account.toUtf8()) || known;
    return known;
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
    checking.reset();
    gate.leave();
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
    if (current && !checking)
        current->drained();
}

void ClassicFace::replyEnded()
{
    if (current && !checking)
        current->replyEnded();
    endRequest();
}
