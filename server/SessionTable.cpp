#include "server/SessionTable.h"

#include "config/Profile.h"

#include <QNetworkCookie>

#include <algorithm>
#include <chrono>
#include <vector>

using namespace std::chrono_literals;

namespace {

constexpr auto checkInterval = 60s;
constexpr int numbers = 1000; ///< session numbers that are handed out: 0 to 999

} // namespace

void SessionData::end()
{
    active = false;
    lastSeen = QTime::currentTime();
}

SessionTable::SessionTable(QObject *parent)
    : QObject(parent)
{
    connect(&timer, &QTimer::timeout, this, &SessionTable::checkSessions);
}

void SessionTable::profileEdited(const Profile *profile)
{
    lifetime = profile->sessionLifetime;
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

Session SessionTable::getSession(int id)
{
    Session session = sessions.value(id);
    if (session)
        session->active = true;
    return session;
}

Session SessionTable::ofCookie(const QNetworkCookie *cookie)
{
    if (!cookie)
        return nullptr;
    const int id = cookie->value().toInt();
    const Session known = getSession(id);
    return known ? known : enter(id);
}

Session SessionTable::enter(int id)
{
    Session session = handedOut.take(id).lock();
    if (!session) {
        session = std::make_shared<SessionData>();
        session->id = id;
    }
    session->active = true;
    if (sessions.size() >= maxSessions)
        makeRoom();
    sessions.insert(id, session);
    return session;
}

Session SessionTable::handOut()
{
    auto session = std::make_shared<SessionData>();
    session->id = QTime::currentTime().msec() % numbers;
    handedOut.insert(session->id, session);
    return session;
}

bool SessionTable::holds(const Session &session) const
{
    return sessions.value(session->id) == session || handedOut.value(session->id).lock() == session;
}

void SessionTable::checkSessions()
{
    const QTime now = QTime::currentTime();
    for (auto it = sessions.begin(); it != sessions.end();) {
        const SessionData &session = **it;
        // A time of day only: a session that idles across midnight lives on until the clock
        // passes its hour again.
        const bool expired = !session.active && session.lastSeen.secsTo(now) > lifetime;
        it = expired ? sessions.erase(it) : std::next(it);
    }
    startTimer();
}

void SessionTable::makeRoom()
{
    std::vector<Session> idle;
    for (const Session &session : std::as_const(sessions)) {
        if (!session->active)
            idle.push_back(session);
    }
    std::sort(idle.begin(), idle.end(),
              [](const Session &a, const Session &b) { return a->lastSeen < b->lastSeen; });
    // A tenth at a time, so that a flood of numbers does not pay for a sort with every request.
    idle.resize(std::min<size_t>(idle.size(), maxSessions / 10));
    for (const Session &session : idle)
        sessions.remove(session->id);
}
