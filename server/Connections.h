#pragma once

#include "server/Connection.h"

#include <QObject>
#include <QTimer>

#include <functional>
#include <memory>
#include <unordered_map>
#include <vector>

/// The connections of one server, with their deadlines. Owns them; lives in the event loop.
class Connections : public QObject
{
public:
    using Choice = std::function<bool(const Visit &)>;

    /// `mayBeRoom` is told when descriptors may be free again.
    explicit Connections(std::function<void()> mayBeRoom);

    /// One more; `service` is borrowed and outlives it.
    void add(std::unique_ptr<Socket> accepted, PeerCount::Ticket place, Service &service);

    int count() const { return int(all.size()); }

    /// In no order.
    std::vector<Visit> visits() const;

    /// Cuts all of them; they go later.
    void drop();

    /// The same with those that are meant.
    void dropSome(const Choice &meant);

    /// Makes descriptors free for new clients: those that idle the longest go. False when none do.
    bool closeIdle();

    /// Ends what peers have kept waiting for too long. Happens once a second by itself.
    void checkDeadlines(Connection::Clock::time_point now);

    /// Lets go of all of them at once.
    void clear();

private:
    void forget(Connection *connection);

    const std::function<void()> tellRoom;
    const Connection::Ended ended;
    std::unordered_map<Connection *, std::unique_ptr<Connection>> all;
    std::vector<std::unique_ptr<Connection>> leaving; ///< their peers are gone
    quint64 added = 0; ///< so far
    QTimer deadlines; ///< runs while there are connections
};
