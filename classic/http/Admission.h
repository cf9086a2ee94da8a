#pragma once

#include "server/LoginGate.h"

#include <QByteArray>
#include <QObject>

#include <functional>
#include <memory>
#include <optional>

struct Exchange;

/// Finds out whether the profile lets the request of an exchange in: by the page's password, a
/// session that has brought it, or an account. Logins wait for their turn, and never in the way of
/// others. Owned by the face.
class Admission
{
public:
    enum class Verdict {
        Admitted,
        Refused, ///< also unseen, when its turn would come too late, which looks the same
        Busy ///< too many passwords are being looked at
    };

    /// Borrows the exchange, which outlives it; what came of a request is told through `decided`.
    Admission(Exchange &asked, std::function<void(Verdict)> decided);

    /// Looks at the request of the exchange. `decided` is called once, perhaps before this returns,
    /// unless `leave` is called earlier.
    void look();

    /// Whether a password is being looked at, so that nothing was answered yet.
    bool isLooking() const { return checking != nullptr; }

    /// The request is over.
    void leave();

private:
    /// What a visitor says to know, and by what that is found to be true.
    struct Claim
    {
        QByteArray password;
        QByteArray hash;
    };

    std::optional<QByteArray> triedAccount() const;
    bool remembers(const Claim &claimed) const;
    bool isAdmitted();
    bool passwordFits();
    bool isAccount() const;
    std::optional<Claim> claim() const;
    void check(const Claim &claimed);
    void letInBy(const Claim &proved);
    void letIn();
    void turnAway();

    Exchange &exchange;
    const std::function<void(Verdict)> tell;
    LoginGate gate;
    QByteArray proven; ///< of the password that fitted last
    std::unique_ptr<QObject> checking; ///< while nobody knows whether the password fits
};
