#include "server/LoginGate.h"

#include <QTimer>

#include <algorithm>
#include <utility>

LoginGate::LoginGate(Guesses &guesses, std::chrono::seconds longestWait,
                     std::function<void()> tryAgain)
    : table(guesses)
    , patience(longestWait)
    , again(std::move(tryAgain))
{
}

LoginGate::~LoginGate()
{
    forget();
}

LoginGate::Turn LoginGate::enter(const Guesses::Login &attempt)
{
    const Guesses::Clock::time_point now = Guesses::Clock::now();
    if (!login)
        login = attempt;
    if (isProven())
        return Turn::Now;
    turn = table.turnOf(*login, now);
    if (turn <= now) {
        table.begin(*login, now);
        isLookedAt = true;
        return Turn::Now;
    }
    table.noteWaiting(*login);
    if (turn > login->arrived + patience) {
        forget();
        return Turn::TooLate;
    }
    if (!timer) {
        timer = std::make_unique<QTimer>();
        timer->setSingleShot(true);
        timer->setTimerType(Qt::PreciseTimer);
        QObject::connect(timer.get(), &QTimer::timeout, timer.get(), [this] { again(); });
    }
    timer->start(std::chrono::ceil<std::chrono::milliseconds>(turn - now));
    return Turn::Later;
}

bool LoginGate::isProven() const
{
    return proven && proven->visitor == login->visitor && proven->account == login->account;
}

void LoginGate::forget()
{
    if (std::exchange(isLookedAt, false))
        table.end(*login);
    login.reset();
}

void LoginGate::tell(bool right)
{
    const Guesses::Clock::time_point now = Guesses::Clock::now();
    if (!right) {
        proven.reset();
        table.noteWrong(*login, now);
    } else if (!isProven()) {
        proven = login;
        table.noteRight(*login, now);
    }
    forget();
}

std::chrono::seconds LoginGate::timeLeft() const
{
    const auto left = std::chrono::ceil<std::chrono::seconds>(turn - Guesses::Clock::now());
    return std::max(left, std::chrono::seconds(1));
}

void LoginGate::leave()
{
    forget();
    if (timer)
        timer->stop();
}
