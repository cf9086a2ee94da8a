#pragma once

#include <QHash>
#include <QHostAddress>
#include <QSet>

/// Counts connections, so that one peer can't take the place of all others. One serves all
/// servers of a program and outlives their connections.
class PeerCount
{
public:
    /// Counts one connection as long as it lives. Movable; empty when there was no place.
    class Ticket
    {
    public:
        Ticket() = default;
        Ticket(Ticket &&other) noexcept;
        Ticket &operator=(Ticket &&other) noexcept;
        ~Ticket() { giveBack(); }

        bool isValid() const { return owner != nullptr; }

        /// As which it is counted; null for whoever is not.
        const QHostAddress &peer() const { return counted; }

    private:
        friend class PeerCount;
        Ticket(PeerCount *count, const QHostAddress &address);
        void giveBack();

        PeerCount *owner = nullptr;
        QHostAddress counted;
    };

    /// At most `most` connections in all.
    explicit PeerCount(int most)
        : maxAll(most)
    {
    }

    /// A place for a connection from `address` to `reached`, an address of ours. This machine
    /// itself takes as many as it likes.
    Ticket admit(const QHostAddress &address, const QHostAddress &reached);

    /// A place for one that stands for many peers.
    Ticket admitUncounted();

    bool isFull() const { return all >= maxAll; }

    /// Who is counted as `peer` gets no place any more.
    void block(const QHostAddress &peer) { blocked.insert(peer); }
    bool isBlocked(const QHostAddress &peer) const { return blocked.contains(peer); }

    /// Takes all of that back.
    void unblockAll() { blocked.clear(); }
    bool blocksAny() const { return !blocked.isEmpty(); }

private:
    Q_DISABLE_COPY(PeerCount)

    const int maxAll;
    int all = 0;
    QHash<QHostAddress, int> perPeer;
    QSet<QHostAddress> blocked;
};
