#pragma once

#include "files/FileDescriptor.h"
#include "net/Poller.h"
#include "net/SendQueue.h"
#include "net/Socket.h"

/// A connection on its own descriptor, which a poller watches: what plain and encrypted ones have
/// in common.
class DescriptorSocket : public Socket, private PollTarget
{
public:
    ~DescriptorSocket() override;

    bool hasStopped() const override { return inputEnded; }
    bool canSend() const override { return state == State::Open; }
    qint64 queued() const override { return queue.size(); }
    bool isCongested() const override { return poller->isCrowded(queued()); }
    void again() override { poller->again(this); }
    void endWriting() override;
    void finish() override;
    void abort() override;

    QHostAddress peerAddress() const override { return peer; }
    QHostAddress localAddress() const override;
    quint16 localPort() const override;

protected:
    /// Takes an accepted, non-blocking descriptor. Both pointers are borrowed and outlive the
    /// socket.
    DescriptorSocket(FileDescriptor accepted, const QHostAddress &peerAddress, Poller *watcher,
                     TrafficAccount *counter);

    int descriptor() const override { return fd.get(); }
    bool isOpen() const { return fd.isOpen(); }
    bool mayReceive() const override { return inputWaits; }

    /// Whether the call that failed just now may do later, by `errno`.
    static bool mustWait();

    /// The pipe of all sockets.
    Pipe *sharedPipe() { return poller->pipe(); }

    /// What the system has for us, as `Socket::read` tells it.
    qint64 takeNow(char *data, qint64 max);
    qint64 takeNow(Pipe &pipe, qint64 max);

    /// The peer said that nothing follows.
    void noteEnd() { inputWaits = inputEnded = true; }

    /// Sends these bytes behind what is queued, or queues what the system does not take.
    void pass(const char *data, qint64 size, bool more);

    /// Whether bytes are queued because the system takes no more.
    bool isStuck() const { return queue.size() > 0 && !queue.isHeld(); }

    /// Whether what is queued waits for what follows in this turn.
    bool holds() const { return queue.isHeld(); }

    /// Offers what is queued to the system; `more` tells that further bytes follow at once.
    void flush(bool more = false);

    /// The connection is of no use any more: the user hears of it in a turn of its own.
    void breakOff();

private:
    enum class State {
        Open,
        WritingEnded, ///< what is queued goes out, but nothing more
        Finishing, ///< what is queued goes out, then it closes
        Broken, ///< nothing works any more; the user is yet to be told
        Closed
    };

    /// Goes on with what comes before the first byte for the user, until `isEstablished`.
    virtual void establish() { }
    /// The last chance to queue something, before nothing more is sent.
    virtual void takeLeave() { }

    void ready(quint32 events) override;
    void watch();
    void handle(quint32 events);
    void serve(quint32 events);
    qint64 taken(qint64 size);
    void sendOrQueue(const char *data, qint64 size, bool more);
    qint64 sendNow(const char *data, qint64 size, bool more);
    void closeDescriptor();
    void close();

    FileDescriptor fd;
    Poller *poller;
    const QHostAddress peer;
    State state = State::Open;
    bool watched = false;
    bool inputWaits = false;
    bool inputEnded = false; ///< the peer stopped sending, though bytes may still wait
    SendQueue queue;
    bool serving = false; ///< the user is being told of something
};
