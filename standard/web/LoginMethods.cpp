#include "standard/web/LoginMethods.h"

#include "config/Profile.h"
#include "server/PasswordChecks.h"
#include "server/TrustedProxy.h"
#include "standard/http/LoginPage.h"
#include "standard/http/Protection.h"
#include "standard/http/SessionCookie.h"

#include <utility>

namespace standard {

namespace {

constexpr qint64 maxForm = 4096; ///< bytes

void showPage(Exchange &exchange, Status status = Status::Ok, const QByteArray &problem = {},
              const QByteArray &name = {}, Fields fields = {})
{
    const bool asksForName = exchange.service().profile->authMode == AuthBasic;
    fields.push_back({ "Content-Type", "text/html; charset=utf-8" });
    fields.push_back({ "Cache-Control", "no-store" });
    addFormProtection(fields, LoginPage::style());
    exchange.reply(status, std::move(fields), LoginPage{ asksForName, name, problem }.html());
}

/// The browser asks for it by GET.
void leadTo(Exchange &exchange, const QByteArray &url, Fields fields = {})
{
    fields.push_back({ "Location", url });
    fields.push_back({ "Cache-Control", "no-store" });
    exchange.refuse(Status::SeeOther, {}, std::move(fields));
}

Field retryAfter(std::chrono::seconds time)
{
    return { "Retry-After", QByteArray::number(qint64(time.count())) };
}

} // namespace

void LoginForm::start()
{
    if (exchange.service().profile->admitsEveryone())
        return leadTo(exchange, urlAfterLogin(exchange));
    showPage(exchange);
}

LogIn::LogIn(Exchange &current)
    : Handler(current)
    , gate(*current.service().setup.guesses, loginPatience, [this] { look(); })
{
}

void LogIn::start()
{
    exchange.readBody(maxForm);
}

void LogIn::bodyReady(const QByteArray &form)
{
    const Profile &profile = *exchange.service().profile;
    if (profile.admitsEveryone())
        return leadTo(exchange, urlAfterLogin(exchange));
    if (profile.authMode == AuthBasic)
        given.user = formValue(form, "name").value_or(QByteArray());
    given.password = formValue(form, "password").value_or(QByteArray());
    look();
}

/// Comes once more when it had to wait.
void LogIn::look()
{
    const Service &service = exchange.service();
    const QHostAddress &visitor = exchange.request().outside.visitor;
    const bool standsForItself = !isTrustedProxy(visitor, *service.profile);
    const LoginGate::Turn turn =
        gate.enter({ visitor, given.user, Guesses::Clock::now(), standsForItself });
    if (turn == LoginGate::Turn::Later)
        return;
    if (turn == LoginGate::Turn::TooLate)
        return showPage(exchange, Status::TooManyRequests, tooManyGuesses, given.user,
                        { retryAfter(gate.timeLeft()) });
    mark = service.logins.markOf(*service.profile, given.user);
    PasswordChecks &passwords = *service.setup.passwords;
    const Authenticator::Result login = Authenticator::check(given, *service.profile, passwords);
    if (login.outcome != Authenticator::Outcome::Undecided)
        return decide(login.outcome == Authenticator::Outcome::Admitted);
    passwords.check(given.password, login.hash, this, [this](PasswordChecks::Verdict verdict) {
        if (isOver())
            return;
        if (verdict == PasswordChecks::Verdict::Busy)
            return showPage(exchange, Status::Unavailable, "The server is busy. Try again.",
                            given.user, { retryAfter(std::chrono::seconds(5)) });
        decide(verdict == PasswordChecks::Verdict::Fits);
    });
}

/// A number from before the login may be known to others: it ends, too.
void LogIn::decide(bool isRight)
{
    gate.tell(isRight);
    if (!isRight)
        return showPage(exchange, Status::Forbidden,
                        exchange.service().profile->authMode == AuthBasic
                            ? "The name or the password is wrong."
                            : "The password is wrong.",
                        given.user);
    LoginSessions &sessions = exchange.service().logins;
    sessions.end(sessionNumber(exchange));
    leadTo(exchange, urlAfterLogin(exchange),
           { sessionCookie(exchange, sessions.begin(given.user, mark)) });
}

void LogOut::start()
{
    exchange.service().logins.end(sessionNumber(exchange));
    leadTo(exchange, exchange.urlPath(loginPath, false), { sessionCookie(exchange, {}) });
}

} // namespace standard
