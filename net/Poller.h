#pragma once

#include "files/Pipe.h"

#include <QObject>
#include <QSocketNotifier>

#include <deque>
#include <vector>

/// Hears from a `Poller` what happened to one descriptor.
class PollTarget
{
public:
    PollTarget() = default;
    virtual ~PollTarget() = default;

    /// `events` are those of epoll_wait(2); 0 is a turn that was asked for by `Poller::again`.
    /// It may stop watching any descriptor, this one included.
    virtual void ready(quint32 events) = 0;

private:
    friend class Poller;

    static constexpr int noTurn = -1;

    int turn = noTurn; ///< index in the poller's next turns
    int reports = 0; ///< that wait for it in the poller

    Q_DISABLE_COPY(PollTarget)
};

/// Watches any number of descriptors in one epoll set, which is itself watched by one notifier of
/// the event loop: a wake-up costs the same with ten or ten thousand idle clients.
/// One serves all servers of a program and outlives them.
class Poller : public QObject
{
    Q_OBJECT
public:
    Poller();
    ~Poller() override;

    /// Reports input, output and hang-ups of `fd` to `target`, each time anew something happens
    /// (edge-triggered: the target goes on until the system says that it would have to wait).
    /// Both are borrowed until `forget`. False when the system can't watch it.
    bool watch(int fd, PollTarget *target) const;

    /// `fd`, still open, is no longer watched, and nothing more is reported to `target`.
    void forget(int fd, PollTarget *target);

    /// The same of a target whose descriptor is closed by now.
    void forget(PollTarget *target);

    /// Gives `target` another turn once the others had theirs.
    void again(PollTarget *target);

    /// Bytes that wait for their peers in all sockets of the program.
    qint64 backlog() const { return m_backlog; }
    void addBacklog(qint64 bytes) { m_backlog += bytes; }

    /// Whether a peer for whom `queued` bytes wait should get no more for now: it has enough, or
    /// all peers together have.
    bool isCrowded(qint64 queued) const;

    /// By which all sockets move bytes into files: whoever fills it empties it before it returns.
    /// Null when the system has none.
    Pipe *pipe() { return m_pipe.open() ? &m_pipe : nullptr; }

private:
    struct Happening
    {
        PollTarget *target; ///< null: it was forgotten meanwhile
        quint32 events;
    };

    void serve();
    void remember(PollTarget *target, quint32 events);
    void collect();
    void takeTurns();
    void report();
    void schedule();

    int epoll;
    QSocketNotifier notifier;
    std::deque<Happening> happenings; ///< not yet reported
    std::vector<PollTarget *> nextTurn; ///< null: it was forgotten meanwhile
    bool reporting = false;
    bool scheduled = false; ///< the next turns are queued in the event loop
    qint64 m_backlog = 0;
    Pipe m_pipe;
};
