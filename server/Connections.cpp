#include "server/Connections.h"

#include <algorithm>
#include <chrono>
#include <utility>

using namespace std::chrono_literals;

namespace {

constexpr auto deadlineInterval = 1s;
constexpr int closedAtOnce = 32; ///< idle connections, when no descriptor is left

} // namespace

Connections::Connections(std::function<void()> mayBeRoom)
    : tellRoom(std::move(mayBeRoom))
    , ended([this](Connection *connection) { forget(connection); })
{
    deadlines.setInterval(deadlineInterval);
    connect(&deadlines, &QTimer::timeout, this,
            [this] { checkDeadlines(Connection::Clock::now()); });
}

void Connections::add(std::unique_ptr<Socket> accepted, PeerCount::Ticket place, Service &service)
{
    auto connection = std::make_unique<Connection>(++added, std::move(accepted), std::move(place),
                                                   service, ended);
    all.emplace(connection.get(), std::move(connection));
    if (!deadlines.isActive())
        deadlines.start();
}

void Connections::drop()
{
    for (const auto &[connection, owned] : all)
        connection->drop();
}

std::vector<Visit> Connections::visits() const
{
    std::vector<Visit> found;
    found.reserve(all.size());
    for (const auto &[connection, owned] : all)
        found.push_back(connection->visit());
    return found;
}

void Connections::dropSome(const Choice &meant)
{
    for (const auto &[connection, owned] : all) {
        if (meant(connection->visit()))
            connection->drop();
    }
}

bool Connections::closeIdle()
{
    std::vector<Connection *> idle;
    for (const auto &[connection, owned] : all) {
        if (connection->isIdle())
            idle.push_back(connection);
    }
    std::sort(idle.begin(), idle.end(), [](const Connection *a, const Connection *b) {
        return a->lastActivity() < b->lastActivity();
    });
    idle.resize(std::min<std::size_t>(idle.size(), closedAtOnce));
    for (Connection *connection : idle)
        all.erase(connection);
    // The next look goes on accepting; whoever asks again and again must not put it off.
    if (!deadlines.isActive())
        deadlines.start();
    return !idle.empty();
}

/// It goes later: it is telling of its end.
void Connections::forget(Connection *connection)
{
    const auto found = all.find(connection);
    if (leaving.empty())
        QMetaObject::invokeMethod(
            this, [this] { leaving.clear(); }, Qt::QueuedConnection);
    leaving.push_back(std::move(found->second));
    all.erase(found);
    tellRoom();
}

void Connections::checkDeadlines(Connection::Clock::time_point now)
{
    for (const auto &[connection, owned] : all)
        connection->checkDeadline(now);
    if (all.empty())
        deadlines.stop();
    tellRoom();
}

void Connections::clear()
{
    all.clear();
    leaving.clear();
}
