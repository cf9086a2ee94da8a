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
    , counted(address)
{
}

PeerCount::Ticket::Ticket(Ticket &&other) noexcept
    : owner(std::exchange(other.owner, nullptr))
    , counted(other.counted)
{
}

PeerCount::Ticket &PeerCount::Ticket::operator=(Ticket &&other) noexcept
{
    giveBack();
    owner = std::exchange(other.owner, nullptr);
    counted = std::move(other.counted);
    return *this;
}

void PeerCount::Ticket::giveBack()
{
    if (!owner)
        return;
    --owner->all;
    if (!counted.isNull() && --owner->perPeer[counted] == 0)
        owner->perPeer.remove(counted);
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
    const QHostAddress peer = peerOf(address, reached);
    if (isFull() || isBlocked(peer))
        return {};
    int &count = perPeer[peer];
    if (count >= maxPerPeer)
        return {};
    ++count;
    ++all;
    return { this, peer };
}
