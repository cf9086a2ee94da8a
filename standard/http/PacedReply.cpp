#include "standard/http/PacedReply.h"

#include <optional>
#include <utility>

namespace standard {

void PacedReply::beginTurns()
{
    state = State::Making;
    turns().begin(this);
}

void PacedReply::again()
{
    state = State::Making;
    turns().again(this);
}

void PacedReply::rest()
{
    state = State::Resting;
    turns().rest(this);
}

bool PacedReply::leave()
{
    if (std::exchange(state, State::Idle) == State::Idle)
        return false;
    turns().leave(this);
    return true;
}

void PacedReply::drained()
{
    if (state == State::Resting)
        again();
}

bool PacedReply::send(Status status, Fields fields, const QByteArray &piece, bool isLast)
{
    if (isLast && !begun) {
        exchange.reply(status, std::move(fields), piece);
        return false;
    }
    if (!begun && !exchange.startBody(status, std::move(fields), std::nullopt))
        return false;
    begun = true;
    const State before = state;
    exchange.write(piece);
    if (state != before) // it ended meanwhile
        return false;
    if (isLast) {
        exchange.end();
        return false;
    }
    // For a client that takes nothing nothing is made.
    if (exchange.isCongested())
        rest();
    return state == before;
}

} // namespace standard
