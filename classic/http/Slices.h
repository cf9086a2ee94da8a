#pragma once

#include "server/Turns.h"

#include <QtGlobal>

#include <functional>

class Channel;
struct Exchange;

/// Has a long reply made in slices, between which other clients are served. Rests while the peer
/// has to take something first, and ends the reply when nobody can get it. A part of its responder.
class Slices final : private TurnTaker
{
public:
    static constexpr int pieceBytes = 32 * 1024; ///< written at once
    static constexpr int keptBytes = 256 * 1024; ///< a reply up to that size is not made twice

    /// Works until the turn is over, it wrote a piece or has to pause, at least one step. False at
    /// the end.
    using Work = std::function<bool(const Turn &turn)>;

    /// `current` is borrowed and outlives it.
    Slices(Exchange &current, Work slice);
    ~Slices() override { stop(); }

    /// The first slice is done before this call returns, or later when many replies are under way:
    /// what a reply needs of memory and descriptors is to be had in there.
    void start();

    /// To be called when the channel drained.
    void drained();

    /// Nothing is done until `resume`: something else than the peer is waited for.
    void pause() { state = State::Paused; }
    void resume();

    /// Nothing is done until the next start.
    void stop();

private:
    enum class State {
        Idle,
        Working,
        Paused,
        Resting ///< until the peer has taken what waits to be sent
    };

    bool takeTurn(const Turn &turn) override;
    void breakOff() override;
    void goOn();

    Channel &channel;
    Turns &turns;
    const Work doSlice;
    State state = State::Idle;
};
