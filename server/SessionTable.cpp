#include "server/SessionTable.h"

#include "config/Profile.h"

#include <QDateTime>
#include <QRandomGenerator>

#include <algorithm>
#include <chrono>
#include <limits>
#include <vector>

using namespace std::chrono_literals;

namespace {

constexpr auto checkInterval = 60s;
constexpr int maxLoginAddresses = 16; ///< of one session number
constexpr int numbers = 1000; ///< session numbers that are handed out: 0 to 999

/// Never one of those that are not strict.
qint64 unguessable()
{
    constexpr auto positive = quint64(std::numeric_limits<qint64>::max());
    return numbers + qint64(QRandomGenerator::system()->generate64() & (positive >> 1));
}

} // namespace

void SessionData::logIn(const QString &fitting, const QHostAddress &peer)
{
    if (password != fitting)
        loginAddresses.clear();
    password = fitting;
    loginAddresses.removeAll(peer);
    loginAddresses.append(peer);
    if (loginAddresses.size() > maxLoginAddresses)
        loginAddresses.removeFirst();
}

SessionUse::SessionUse(Session used)
    : held(std::move(used))
{
    ++held->uses;
}

SessionUse::~SessionUse()
{
    --held->uses;
    held->lastSeen = std::chrono::steady_clock::now();
}

SessionTable::SessionTable()
{
    connect(&timer, &QTimer::timeout, this, &SessionTable::checkSessions);
}

void SessionTable::profileEdited(const Profile *profile)
{
    lifetime = profile->sessionLifetime;
    strict = profile->isStrict();
}

void SessionTable::startTimer()
{
    if (!timer.isActive())
        timer.start(checkInterval);
}

void SessionTable::stopTimer()
{
    timer.stop();
}

Session SessionTable::ofCookie(const QByteArray &value)
{
    const qint64 id = strict ? value.toLongLong() : value.toInt();
    Session known = sessions.value(id);
    return known || strict ? known : enter(id);
}

Session SessionTable::enter(qint64 id)
{
    Session session = handedOut.take(id).lock();
    if (!session) {
        session = std::make_shared<SessionData>();
        session->id = id;
    }
    if (sessions.size() >= maxSessions)
        makeRoom();
    sessions.insert(id, session);
    return session;
}

Session SessionTable::handOut()
{
    // Its number never comes up again by itself, so it must not depend on its first connection.
    if (strict)
        return enter(unguessable());
    auto session = std::make_shared<SessionData>();
    session->id = QDateTime::currentMSecsSinceEpoch() % numbers;
    handedOut.insert(session->id, session);
    return session;
}

bool SessionTable::holds(const Session &session) const
{
    return sessions.value(session->id) == session || handedOut.value(session->id).lock() == session;
}

void SessionTable::checkSessions()
{
    const auto oldest = std::chrono::steady_clock::now() - std::chrono::seconds(lifetime);
    for (auto it = sessions.begin(); it != sessions.end();) {
        const SessionData &session = **it;
        const bool expired = session.uses == 0 && session.lastSeen < oldest;
        it = expired ? sessions.erase(it) : std::next(it);
    }
    startTimer();
}

/// A crowd of strangers must not log anybody out, whatever it does with its connections.
void SessionTable::makeRoom()
{
    std::vector<Session> dispensable;
    for (const Session &session : std::as_const(sessions)) {
        if (session->uses == 0 || !session->isLoggedIn())
            dispensable.push_back(session);
    }
    std::sort(dispensable.begin(), dispensable.end(), [](const Session &a, const Session &b) {
        return a->isLoggedIn() != b->isLoggedIn() ? b->isLoggedIn() : a->lastSeen < b->lastSeen;
    });
    // A tenth at a time, so that a flood of numbers does not pay for a sort with every request.
    dispensable.resize(std::min<size_t>(dispensable.size(), maxSessions / 10));
    for (const Session &session : dispensable)
        sessions.remove(session->id);
}
