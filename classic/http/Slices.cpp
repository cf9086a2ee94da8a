#include "classic/http/Slices.h"

#include "classic/http/Exchange.h"

#include <utility>

Slices::Slices(Exchange &current, Work slice)
    : channel(current.channel)
    , turns(*current.service.setup.turns)
    , doSlice(std::move(slice))
{
}

void Slices::start()
{
    stop();
    state = State::Working;
    turns.begin(this);
}

bool Slices::takeTurn(const Turn &turn)
{
    if (!channel.canAnswer()) {
        stop();
        channel.end();
        return false;
    }
    if (!doSlice(turn))
        stop();
    if (state == State::Working && channel.isCongested()) {
        state = State::Resting;
        turns.rest(this);
    }
    return state == State::Working;
}

void Slices::breakOff()
{
    stop();
    channel.abort();
}

void Slices::drained()
{
    if (state == State::Resting)
        goOn();
}

void Slices::resume()
{
    if (state == State::Paused)
        goOn();
}

void Slices::goOn()
{
    state = State::Working;
    turns.again(this);
}

void Slices::stop()
{
    if (std::exchange(state, State::Idle) != State::Idle)
        turns.leave(this);
}
