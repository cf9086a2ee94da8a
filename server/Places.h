#pragma once

#include <QtGlobal>

#include <deque>

class Places;

/// The right to be at work, given back at its end. Movable; ends before its `Places`.
class Pass
{
public:
    Pass() = default;
    explicit Pass(Places *owner)
        : places(owner)
    {
    }
    Pass(Pass &&other) noexcept;
    Pass &operator=(Pass &&other) noexcept;
    ~Pass() { end(); }

    /// The work is done, so that others may begin, but `bytes` of it are kept until the end.
    void keep(qint64 bytes);

    void end();

private:
    Q_DISABLE_COPY(Pass)

    Places *places = nullptr; ///< null: there is no right
    qint64 kept = 0; ///< bytes, 0 while at work
};

/// Waits for a pass.
class PassTaker
{
public:
    PassTaker() = default;
    virtual ~PassTaker() = default;

    /// The work may begin.
    virtual void take(Pass pass) = 0;

private:
    Q_DISABLE_COPY(PassTaker)
};

/// Lets a few long works go on at the same time; the others wait, in order. What those that are
/// done keep in memory, for peers that take their time, is bounded too. One serves all of a
/// program's works of a kind.
class Places
{
public:
    /// For `most` works, begun while less than `maxBytes` are kept.
    Places(int most, qint64 maxBytes)
        : free(most)
        , freeBytes(maxBytes)
    {
    }

    /// Gives `taker` a pass, before this call returns if there is a place. Takers are borrowed
    /// while they wait.
    void enter(PassTaker *taker);

    /// Forgets `taker`, which may wait.
    void leave(PassTaker *taker);

private:
    friend class Pass;

    void giveBack(int places, qint64 bytes);
    void admit();

    int free; ///< places
    qint64 freeBytes;
    std::deque<PassTaker *> waiting;
    bool admitting = false;
};
