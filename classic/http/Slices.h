#pragma once

#include <QObject>

#include <chrono>
#include <functional>

class Channel;

/// Has a long reply made in slices, between which other clients are served. Rests while the peer
/// has to take something first, and ends the reply when nobody can get it. A part of its responder.
class Slices : public QObject
{
public:
    static constexpr int pieceBytes = 32 * 1024; ///< written at once
    static constexpr int keptBytes = 256 * 1024; ///< a reply up to that size is not made twice

    /// What is to be done before other clients have their turn.
    class Turn
    {
    public:
        bool isOver() const { return std::chrono::steady_clock::now() >= end; }

    private:
        std::chrono::steady_clock::time_point end =
            std::chrono::steady_clock::now() + std::chrono::milliseconds(2);
    };

    /// Works until the turn is over or it wrote a piece, at least one step. False at the end.
    using Work = std::function<bool(const Turn &turn)>;

    /// `target` is borrowed and outlives it.
    Slices(Channel &target, Work slice);

    /// The first slice is done before this call returns.
    void start();

    /// To be called when the channel drained.
    void drained();

    /// Nothing is done until the next start.
    void stop() { state = State::Idle; }

private:
    enum class State {
        Idle,
        Working,
        Resting ///< until the peer has taken what waits to be sent
    };

    void work();
    void schedule();

    Channel &channel;
    const Work doSlice;
    State state = State::Idle;
    bool scheduled = false; ///< a slice is queued
};
