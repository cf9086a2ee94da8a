#pragma once

#include "server/LoginGate.h"
#include "standard/http/Authenticator.h"
#include "standard/http/Handler.h"

namespace standard {

/// GET and HEAD: the page that asks for a login.
class LoginForm final : public Handler
{
public:
    using Handler::Handler;

    void start() override;
};

/// POST of its form: begins a session and leads to what was wanted.
class LogIn final : public Handler
{
public:
    explicit LogIn(Exchange &current);

    void start() override;
    void bodyReady(const QByteArray &form) override;
    void ended() override { gate.leave(); }

private:
    void look();
    void decide(bool isRight);

    LoginGate gate;
    Login given;
    QByteArray mark; ///< of the password that it was found to be, see `LoginSessions::markOf`
};

/// POST: ends the session.
class LogOut final : public Handler
{
public:
    using Handler::Handler;

    void start() override;
};

} // namespace standard
