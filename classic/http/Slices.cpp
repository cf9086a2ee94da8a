#include "classic/http/Slices.h"

#include "classic/http/Channel.h"

#include <utility>

Slices::Slices(Channel &target, Work slice)
    : channel(target)
    , doSlice(std::move(slice))
{
}

void Slices::start()
{
    state = State::Working;
    work();
}

void Slices::work()
{
    scheduled = false;
    if (state != State::Working)
        return;
    if (!channel.canAnswer())
        return channel.end();
    const bool more = doSlice(Turn());
    if (!more)
        return stop();
    if (channel.isCongested())
        state = State::Resting;
    else
        schedule();
}

void Slices::schedule()
{
    // Queued: other clients are served before the next slice.
    if (!std::exchange(scheduled, true))
        QMetaObject::invokeMethod(this, &Slices::work, Qt::QueuedConnection);
}

void Slices::drained()
{
    if (state != State::Resting)
        return;
    state = State::Working;
    schedule();
}
