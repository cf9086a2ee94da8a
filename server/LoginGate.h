#pragma once

#include "server/Guesses.h"

#include <chrono>
#include <functional>
#include <memory>
#include <optional>

class QTimer;

/// Has the logins of one connection wait for their turn, see `Guesses`. Owned by its face.
class LoginGate
{
public:
    enum class Turn {
        Now, ///< the password may be looked at
        Later, ///< the gate will say when
        TooLate ///< not within the time that a login may wait
    };

    /// `guesses` is borrowed and outlives it. A login waits for at most `longestWait`; when its
    /// turn may have come, `tryAgain` is called from the event loop.
    LoginGate(Guesses &guesses, std::chrono::seconds longestWait, std::function<void()> tryAgain);
    ~LoginGate();

    /// Whether the password of `attempt` may be looked at; when asked again, of the first one. A
    /// visitor who has brought the account's password on this connection does not wait; others that
    /// a proxy sends over it do.
    Turn enter(const Guesses::Login &attempt);

    /// What came of the login that was let in.
    void tell(bool right);

    /// How long the login that is too late would have to wait, at least a second.
    std::chrono::seconds timeLeft() const;

    /// The request is over: nobody waits any more, nor wants to know what comes of it.
    void leave();

private:
    bool isProven() const;
    void forget();

    Guesses &table;
    const std::chrono::seconds patience;
    const std::function<void()> again;
    std::optional<Guesses::Login> login; ///< that waits or is being looked at
    bool isLookedAt = false; ///< and counts as wrong for now
    Guesses::Clock::time_point turn; ///< its own
    std::optional<Guesses::Login> proven; ///< whose password was right
    std::unique_ptr<QTimer> timer;
};
