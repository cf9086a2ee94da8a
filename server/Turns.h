#pragma once

#include <QObject>

#include <chrono>
#include <deque>
#include <set>

class MemoryTrim;

/// How long a reply may go on before others have their turn. A value for one call.
class Turn
{
public:
    using Clock = std::chrono::steady_clock;

    explicit Turn(Clock::time_point deadline)
        : end(deadline)
    {
    }

    bool isOver() const { return Clock::now() >= end; }

private:
    Clock::time_point end;
};

/// A reply that is too long to be made at once.
class TurnTaker
{
public:
    TurnTaker() = default;
    virtual ~TurnTaker() = default;

    /// Works until the turn is over, at least one step. Whether it wants another turn. It may leave
    /// meanwhile, but not be destroyed.
    virtual bool takeTurn(const Turn &turn) = 0;

    /// There was too little memory for its turn: it ends its connection, and leaves.
    virtual void breakOff() = 0;

private:
    Q_DISABLE_COPY(TurnTaker)
};

/// Shares the time of the event loop among all replies that are made in turns: together they have
/// a few milliseconds between two looks at the sockets, however many they are. Only some are
/// begun at the same time; the others wait, and hold nothing but their request. One serves a whole
/// program.
class Turns : public QObject
{
public:
    /// `trim` is borrowed and outlives it.
    explicit Turns(MemoryTrim &trim, QObject *parent = nullptr);

    /// Gives `taker` its first turn, before this call returns if there is time. Takers are
    /// borrowed until they leave.
    void begin(TurnTaker *taker);

    /// Gives one that has begun, and that did not want another turn, further ones.
    void again(TurnTaker *taker);

    /// Others may begin in the place of `taker`: it waits for its peer.
    void rest(TurnTaker *taker);

    /// Forgets `taker`, at work or waiting.
    void leave(TurnTaker *taker);

private:
    bool mayAdmit() const;
    TurnTaker *next();
    void give(TurnTaker *taker);
    static bool takeTurn(TurnTaker *taker, const Turn &turn);
    void giveAll();
    void schedule();

    MemoryTrim &memory;
    std::deque<TurnTaker *> newcomers; ///< have not begun
    std::deque<TurnTaker *> ring; ///< have, and want a turn
    std::set<TurnTaker *> placed; ///< have begun and not yet rested
    TurnTaker *current = nullptr; ///< has its turn
    Turn::Clock::duration used{}; ///< since the event loop came by
    bool newcomerIsNext = true;
    bool scheduled = false;
};
