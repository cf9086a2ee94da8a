#pragma once

#include "standard/http/Nonces.h"
#include "standard/http/Request.h"

#include <QByteArray>
#include <QElapsedTimer>

#include <chrono>
#include <optional>

class PasswordChecks;
class Profile;

namespace standard {

struct Login
{
    QByteArray user;
    QByteArray password;
};

/// How long the answer to a login may be held back: what any program waits for. With a longer wait
/// it would give up without a word, so it is told when to come back.
constexpr std::chrono::seconds loginPatience{ 10 };
constexpr auto tooManyGuesses = "Too many wrong passwords. Try again later.";

/// Finds out who sends a request, by Digest or Basic (RFC 7616, RFC 7617). Where a page asks
/// browsers for a password, any user name goes with it. One serves a whole program.
class Authenticator
{
public:
    enum class Outcome {
        Admitted,
        Refused,
        Stale, ///< the password is right, but another nonce is needed
        Undecided ///< `PasswordChecks::check` will tell
    };

    struct Result
    {
        Outcome outcome;
        QByteArray user = {}; ///< empty without a login
        QByteArray password = {}; ///< while it is undecided, and the hash that it may fit
        QByteArray hash = {};
        QByteArray proof = {}; ///< of it, see `PasswordChecks`; empty where nothing is kept
    };

    Authenticator() { clock.start(); }

    /// Whose password the request brings, if `profile` asks for one; empty where any name will do.
    static std::optional<QByteArray> triedAccount(const Request &request, const Profile &profile);

    /// Whether `profile` lets the request in. `proven` is the proof of the password that its
    /// connection brought last, if any.
    Result check(const Request &request, const Profile &profile, PasswordChecks &passwords,
                 const QByteArray &proven);

    /// Whether the profile, which asks for logins, knows this one.
    static Result check(const Login &given, const Profile &profile, PasswordChecks &passwords,
                        const QByteArray &proven = {});

    /// The fields of a 401. Digest comes first: over a connection that isn't encrypted one of the
    /// desktop systems speaks nothing else. Where every password is hashed there is none.
    Fields challenges(Outcome outcome, const Profile &profile) const;

private:
    Result checkDigest(const Request &request, const Profile &profile);

    Nonces nonces;
    QElapsedTimer clock;
};

} // namespace standard
