#include "server/PeerCount.h"

#include "server/PeerAddress.h"

#include <utility>

namespace {

constexpr int maxPerPeer = 64;

/// Programs on this machine, a proxy for many peers among them.
bool isLoopback(const QHostAddress &address)
{
    return address.isEqual(QHostAddress(QHostAddress::LocalHost))
        || address.isEqual(QHostAddress(QHostAddress::LocalHostIPv6));
}

} // namespace

PeerCount::Ticket::Ticket(PeerCount *count, const QHostAddress &address)
    : owner(count)
    , peer(address)
{
}

PeerCount::Ticket::Ticket(Ticket &&other) noexcept
    : owner(std::exchange(other.owner, nullptr))
    , peer(other.peer)
{
}

PeerCount::Ticket &PeerCount::Ticket::operator=(Ticket &&other) noexcept
{
    giveBack();
    owner = std::exchange(other.owner, nullptr);
    peer = std::move(other.peer);
    return *this;
}

void PeerCount::Ticket::giveBack()
{
    if (!owner)
        return;
    --owner->all;
    if (!peer.isNull() && --owner->perPeer[peer] == 0)
        owner->perPeer.remove(peer);
    owner = nullptr;
}

PeerCount::Ticket PeerCount::admitUncounted()
{
    if (isFull())
        return {};
    ++all;
    return { this, {} };
}

PeerCount::Ticket PeerCount::admit(const QHostAddress &address, const QHostAddress &reached)
{
    if (isLoopback(address))
        return admitUncounted();
    if (isFull() || isBlocked(address))
        return {};
    const QHostAddress peer = peerOf(address, reached);
    int &count = perPeer[peer];
    if (count >= maxPerPeer)
        return {};
    ++count;
    ++all;
    return { this, peer };
}

void PeerCount::block(const QHostAddress &address)
{
    if (!isLoopback(address))
        blocked.insert(peerOf(address));
}

bool PeerCount::isBlocked(const QHostAddress &address) const
{
    return blocksAny() && blocked.contains(peerOf(address));
}
