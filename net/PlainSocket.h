#pragma once

#include "files/FileDescriptor.h"
#include "net/Poller.h"
#include "net/SendQueue.h"
#include "net/Socket.h"

/// A connection without encryption, straight on its descriptor.
class PlainSocket final : public Socket, private PollTarget
{
public:
    /// Takes an accepted, non-blocking descriptor. Both pointers are borrowed and outlive the
    /// socket.
    PlainSocket(FileDescriptor accepted, const QHostAddress &peerAddress, Poller *watcher,
                TrafficAccount *counter);
    ~PlainSocket() override;

    bool hasStopped() const override { return inputEnded; }
    bool canSend() const override { return state == State::Open; }
    qint64 queued() const override { return queue.size(); }
    bool isCongested() const override { return poller->isCrowded(queued()); }
    void again() override { poller->again(this); }
    void endWriting() override;
    void finish() override;
    void abort() override;

    bool isEncrypted() const override { return false; }
    bool isEstablished() const override { return true; }
    QHostAddress peerAddress() const override { return peer; }
    QHostAddress localAddress() const override;
    quint16 localPort() const override;

private:
    enum class State {
        Open,
        WritingEnded, ///< what is queued goes out, but nothing more
        Finishing, ///< what is queued goes out, then it closes
        Broken, ///< nothing works any more; the user is yet to be told
        Closed
    };

    void ready(quint32 events) override;
    int descriptor() const override { return fd.get(); }
    bool mayReceive() const override { return inputWaits; }
    qint64 receive(char *data, qint64 max) override;
    Pipe *ownPipe() override { return poller->pipe(); }
    qint64 receiveInto(Pipe &pipe, qint64 max) override;
    qint64 taken(qint64 size);
    bool send(const QByteArray &bytes, bool more) override;
    qint64 send(int file, qint64 offset, qint64 count) override;
    void sendOrQueue(const char *data, qint64 size, bool more);
    qint64 sendNow(const char *data, qint64 size, bool more);
    qint64 sendSmall(int file, qint64 offset, qint64 count);
    void serve(quint32 events);
    void flush(bool more = false);
    void closeDescriptor();
    void breakOff();
    void close();

    FileDescriptor fd;
    Poller *poller;
    const QHostAddress peer;
    State state = State::Open;
    bool inputWaits = false;
    bool inputEnded = false; ///< the peer stopped sending, though bytes may still wait
    SendQueue queue;
    bool serving = false; ///< the user is being told of something
};
