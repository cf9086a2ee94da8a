#include "standard/http/Authenticator.h"

#include "config/Profile.h"
#include "files/Path.h"
#include "server/PasswordChecks.h"
#include "server/Secret.h"
#include "standard/http/Digest.h"

namespace standard {

namespace {

constexpr auto realm = "Quillon"; ///< one for all: some programs ask anew for each
constexpr auto basicScheme = "basic ";

/// Of "name:password".
Login loginOf(const QByteArray &text)
{
    const int colon = int(text.indexOf(':'));
    if (colon < 0)
        return {};
    return { text.left(colon), text.mid(colon + 1) };
}

/// The logins whose password can be read. Where any name will do it is `given`.
QList<Login> knownLogins(const Profile &profile, const QByteArray &given)
{
    QList<Login> logins;
    if (profile.authMode == AuthPasswordPage && !isPasswordHash(profile.password))
        logins.append({ given, profile.password.toUtf8() });
    if (profile.authMode == AuthPasswordPage)
        return logins;
    for (const QString &account : profile.accounts())
        logins.append(loginOf(account.toUtf8()));
    return logins;
}

/// Of what Digest is made.
bool keepsPasswords(const Profile &profile)
{
    return !knownLogins(profile, {}).isEmpty()
        || (profile.authMode == AuthBasic && !profile.hashesPasswords());
}

bool isBasic(const QByteArray &value)
{
    return qstrnicmp(value.constData(), basicScheme, uint(qstrlen(basicScheme))) == 0;
}

/// "name:password" of a Basic login.
QByteArray basicText(const QByteArray &value)
{
    return QByteArray::fromBase64(value.mid(int(qstrlen(basicScheme))).trimmed());
}

/// A proof for one path must not open another.
bool isForTarget(const DigestCredentials &given, const Request &request)
{
    if (request.isForServer)
        return given.uri == "*";
    const std::optional<Target> target = parseTarget(given.uri);
    const auto path = target ? request.outside.inside(target->path) : std::nullopt;
    return path && cleanPath(*path) == cleanPath(request.target.path);
}

QByteArray digestChallenge(const char *algorithm, const QByteArray &nonce, bool stale)
{
    return QByteArray(R"(Digest realm=")") + realm + R"(", qop="auth", algorithm=)" + algorithm
        + R"(, nonce=")" + nonce + R"(", charset=UTF-8)" + (stale ? ", stale=true" : "");
}

} // namespace

std::optional<QByteArray> Authenticator::triedAccount(const Request &request,
                                                      const Profile &profile)
{
    if (profile.admitsEveryone())
        return {};
    const QByteArray value = request.value("Authorization");
    if (value.isEmpty())
        return {};
    if (profile.authMode == AuthPasswordPage)
        return QByteArray();
    if (isBasic(value))
        return loginOf(basicText(value)).user;
    const auto given = DigestCredentials::parse(value);
    return given ? std::optional(given->user) : std::nullopt;
}

Authenticator::Result Authenticator::check(const Request &request, const Profile &profile,
                                           PasswordChecks &passwords, const QByteArray &proven)
{
    if (profile.admitsEveryone())
        return { Outcome::Admitted };
    const QByteArray value = request.value("Authorization");
    if (!isBasic(value))
        return checkDigest(request, profile);
    const QByteArray text = basicText(value);
    const Result found = check(loginOf(text), profile, passwords, proven);
    // Without a colon it is no login, whatever the password is.
    return text.contains(':') ? found : Result{ Outcome::Refused };
}

Authenticator::Result Authenticator::check(const Login &given, const Profile &profile,
                                           PasswordChecks &passwords, const QByteArray &proven)
{
    bool known = false;
    for (const Login &login : knownLogins(profile, given.user)) {
        const bool same = isSameSecret(given.user, login.user);
        known = (isSameSecret(given.password, login.password) && same) || known;
    }
    if (known)
        return { Outcome::Admitted, given.user };
    const QByteArray hash = PasswordChecks::hashFor(profile, given.user);
    if (hash.isEmpty())
        return { Outcome::Refused };
    const QByteArray proof = passwords.proof(given.password, hash);
    if (proof == proven || passwords.remembers(given.password, hash))
        return { Outcome::Admitted, given.user, {}, {}, proof };
    return { Outcome::Undecided, given.user, given.password, hash, proof };
}

Authenticator::Result Authenticator::checkDigest(const Request &request, const Profile &profile)
{
    const auto given = DigestCredentials::parse(request.value("Authorization"));
    if (!given || given->realm != realm || !isForTarget(*given, request))
        return { Outcome::Refused };
    bool exists = false;
    bool known = false;
    for (const Login &login : knownLogins(profile, given->user)) {
        if (login.user != given->user)
            continue;
        exists = true;
        known = given->fits(request.methodName, login.password) || known;
    }
    // The time tells nobody who exists.
    if (!exists)
        given->fits(request.methodName, {});
    if (!known)
        return { Outcome::Refused };
    if (!nonces.use(given->nonce, given->count, clock.elapsed()))
        return { Outcome::Stale };
    return { Outcome::Admitted, given->user };
}

Fields Authenticator::challenges(Outcome outcome, const Profile &profile) const
{
    const QByteArray basic = QByteArray(R"(Basic realm=")") + realm + R"(", charset="UTF-8")";
    if (!keepsPasswords(profile))
        return { { "WWW-Authenticate", basic } };
    const QByteArray nonce = nonces.make(clock.elapsed());
    const bool stale = outcome == Outcome::Stale;
    // Many programs look at the first one alone, and can do no more than MD5.
    return { { "WWW-Authenticate", digestChallenge("MD5", nonce, stale) },
             { "WWW-Authenticate", digestChallenge("SHA-256", nonce, stale) },
             { "WWW-Authenticate", basic } };
}

} // namespace standard
