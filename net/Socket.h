#pragma once

#include "net/TrafficAccount.h"

#include <QByteArray>
#include <QHostAddress>

#include <algorithm>

class Pipe;

/// What a connection reads from and writes to, plain or encrypted. Nothing in it waits, and every
/// byte counts in the server's account. Owned by its connection; its user is told of events and
/// never from inside a call of its own.
class Socket
{
public:
    class User
    {
    public:
        User() = default;
        virtual ~User() = default;

        /// Something can be read, or the peer stopped sending.
        virtual void readable() = 0;
        /// The peer took bytes; more can be written.
        virtual void writable() = 0;
        /// The connection is over. The socket stays until this call has returned.
        virtual void gone() = 0;

    private:
        Q_DISABLE_COPY(User)
    };

    /// `counter` is borrowed and outlives the socket.
    explicit Socket(TrafficAccount *counter)
        : account(counter)
    {
    }
    virtual ~Socket() = default;

    /// `newUser` is borrowed and outlives the socket.
    void setUser(User *newUser) { user = newUser; }

    /// Whether a `read` may find something. What was reported and not read is not reported again.
    bool mayRead() const { return !unread.isEmpty() || mayReceive(); }

    /// Up to `max` bytes; 0 when there are none yet, -1 at the end of what the peer sends.
    qint64 read(char *data, qint64 max)
    {
        if (!unread.isEmpty())
            return readAgain(data, max);
        return count(receive(data, max));
    }

    /// By which what comes next can go into a file unseen, see `read`. Null where it has to be
    /// read: it is encrypted, or was put back.
    Pipe *pipe() { return unread.isEmpty() ? ownPipe() : nullptr; }

    /// As above, into that pipe, which is to be emptied in the same turn.
    qint64 read(Pipe &pipe, qint64 max) { return count(receiveInto(pipe, max)); }

    qint64 received() const { return m_received; } ///< bytes so far

    /// Bytes that came and that the peer has, together. Asks the system, which tells of room to
    /// write only once a third of its buffer is free: a slow peer takes minutes for that.
    qint64 exchanged() const;

    /// Bytes so far that were received, or handed to the system to be sent. Costs nothing.
    qint64 passed() const { return m_received + m_sent; }

    /// What was read comes once more, before anything else.
    void putBack(const QByteArray &bytes) { unread.prepend(bytes); }

    /// Sends or queues `bytes`; nothing once the traffic limit was reached. `more` tells that
    /// further bytes follow at once.
    void write(const QByteArray &bytes, bool more)
    {
        if (account->isBlocked() || !send(bytes, more))
            return;
        account->addSent(bytes.size());
        m_sent += bytes.size();
    }

    /// Sends up to `count` bytes of the file `fd` from `offset` on. Gives how many were taken,
    /// 0 when the peer must take some first, -1 when the file ended, the connection broke or the
    /// traffic limit was reached.
    qint64 sendFile(int fd, qint64 offset, qint64 count);

    /// Whether the peer stopped sending while it may still receive: who just leaves is seen no
    /// other way. What it sent before may still wait to be read.
    virtual bool hasStopped() const { return false; }

    /// Whether what is written may still reach the peer; false before the user is told `gone`.
    virtual bool canSend() const = 0;

    /// Bytes that wait here for the peer.
    virtual qint64 queued() const = 0;

    /// Whether so much waits for the peer, or for all peers together, that nothing more should be
    /// written until `writable`.
    virtual bool isCongested() const = 0;

    /// Has the user told `readable` and `writable` once more, after others had their turn.
    virtual void again() = 0;

    /// Tells the peer that nothing follows what is queued, where the connection can say so; reading
    /// goes on.
    virtual void endWriting() = 0;

    /// Closes once the peer took what is queued. The user is told.
    virtual void finish() = 0;

    /// Cuts the connection at once. The user is told.
    virtual void abort() = 0;

    virtual bool isEncrypted() const = 0;

    /// Whether both ends agreed on how to talk.
    virtual bool isEstablished() const = 0;

    virtual QHostAddress peerAddress() const = 0;
    virtual QHostAddress localAddress() const = 0;
    virtual quint16 localPort() const = 0;

protected:
    User *user = nullptr;

private:
    qint64 readAgain(char *data, qint64 max)
    {
        const int size = int(qMin<qint64>(max, unread.size()));
        std::copy_n(unread.constData(), size, data);
        unread = unread.mid(size);
        return size;
    }

    /// Of what was received.
    qint64 count(qint64 size)
    {
        if (size > 0) {
            account->addReceived(size);
            m_received += size;
        }
        return size;
    }

    /// Of the connection, to ask the system about it; negative when there is none.
    virtual int descriptor() const = 0;
    virtual bool mayReceive() const = 0;
    virtual qint64 receive(char *data, qint64 max) = 0;
    virtual Pipe *ownPipe() { return nullptr; }
    virtual qint64 receiveInto(Pipe & /*pipe*/, qint64 /*max*/) { return -1; }
    /// False when the connection is over.
    virtual bool send(const QByteArray &bytes, bool more) = 0;
    virtual qint64 send(int file, qint64 offset, qint64 count) = 0;

    TrafficAccount *account;
    qint64 m_received = 0;
    qint64 m_sent = 0; ///< bytes, or queued
    QByteArray unread; ///< was put back

    Q_DISABLE_COPY(Socket)
};
