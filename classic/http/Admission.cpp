#include "classic/http/Admission.h"

#include "classic/http/Exchange.h"
#include "config/Profile.h"
#include "net/Socket.h"
#include "server/PasswordChecks.h"
#include "server/Secret.h"
#include "server/TrustedProxy.h"

#include <utility>

namespace {

constexpr std::chrono::seconds loginPatience{ 60 };
constexpr auto openArchive = "Client.jar"; ///< the launcher fetches it without a password

/// Whether no proxy, and no page of another site, may be behind a login. Where the connection is
/// not encrypted browsers say of forms alone whose page it was.
bool standsForItself(const Exchange &exchange)
{
    const Request &request = exchange.request;
    const bool isLink = request.isLogin() && request.methodCode != Request::Post;
    const Socket &connection = exchange.channel.connection();
    return !isLink && !request.isCrossSite(connection.isEncrypted())
        && !isTrustedProxy(connection.peerAddress(), *exchange.service.profile);
}

} // namespace

Admission::Admission(Exchange &asked, std::function<void(Verdict)> decided)
    : exchange(asked)
    , tell(std::move(decided))
    , gate(*asked.service.setup.guesses, loginPatience, [this] { look(); })
{
}

void Admission::look()
{
    const std::optional<QByteArray> account = triedAccount();
    if (!account)
        return tell(isAdmitted() ? Verdict::Admitted : Verdict::Refused);
    switch (gate.enter({ exchange.channel.connection().peerAddress(), *account,
                         Guesses::Clock::now(), standsForItself(exchange) })) {
    case LoginGate::Turn::Later:
        return;
    case LoginGate::Turn::TooLate:
        return tell(Verdict::Refused);
    case LoginGate::Turn::Now:
        break;
    }
    if (isAdmitted())
        return letIn();
    const std::optional<Claim> claimed = claim();
    if (!claimed)
        return turnAway();
    if (remembers(*claimed))
        return letInBy(*claimed);
    check(*claimed);
}

/// Whose password the request brings; none when it brings none.
std::optional<QByteArray> Admission::triedAccount() const
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
std::optional<Admission::Claim> Admission::claim() const
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

/// For a minute, and for as long as the connection lasts.
bool Admission::remembers(const Claim &claimed) const
{
    PasswordChecks &passwords = *exchange.service.setup.passwords;
    return proven == passwords.proof(claimed.password, claimed.hash)
        || passwords.remembers(claimed.password, claimed.hash);
}

void Admission::check(const Claim &claimed)
{
    using Answer = PasswordChecks::Verdict;
    checking = std::make_unique<QObject>();
    const auto told = [this, claimed](Answer answer) {
        checking.reset();
        if (!exchange.channel.canAnswer())
            return;
        if (answer == Answer::Busy)
            return tell(Verdict::Busy);
        answer == Answer::Fits ? letInBy(claimed) : turnAway();
    };
    exchange.service.setup.passwords->check(claimed.password, claimed.hash, checking.get(), told);
}

/// The password was found to fit its hash, which takes its place in the session.
void Admission::letInBy(const Claim &proved)
{
    proven = exchange.service.setup.passwords->proof(proved.password, proved.hash);
    if (exchange.service.profile->authMode == AuthPasswordPage)
        exchange.session()->logIn(QString::fromLatin1(proved.hash),
                                  exchange.channel.connection().peerAddress());
    letIn();
}

void Admission::letIn()
{
    gate.tell(true);
    tell(Verdict::Admitted);
}

void Admission::turnAway()
{
    gate.tell(false);
    tell(Verdict::Refused);
}

void Admission::leave()
{
    checking.reset();
    gate.leave();
}

bool Admission::isAdmitted()
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

bool Admission::passwordFits()
{
    const Request &request = exchange.request;
    const QString &password = exchange.service.profile->password;
    const QHostAddress peer = exchange.channel.connection().peerAddress();
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

bool Admission::isAccount() const
{
    bool known = false;
    const QStringList accounts = exchange.service.profile->accounts();
    for (const QString &account : accounts)
        known = isSameSecret(exchange.request.credentials, account.toUtf8()) || known;
    return known;
}
