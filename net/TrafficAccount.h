#pragma once

#include <QtGlobal>

#include <functional>

/// What one server sent and received, and how much of it is allowed. All its connections count
/// here.
class TrafficAccount
{
public:
    /// `whenReached` is called at most once for each limit, from inside a connection's own call.
    explicit TrafficAccount(std::function<void()> whenReached)
        : limitReached(std::move(whenReached))
    {
    }

    /// Bytes sent and received together; 0 lifts the limit.
    void setLimit(qint64 bytes) { m_limit = bytes; }
    qint64 limit() const { return m_limit; }

    void addSent(qint64 bytes)
    {
        m_sent += bytes;
        check();
    }
    void addReceived(qint64 bytes)
    {
        m_received += bytes;
        check();
    }
    qint64 sent() const { return m_sent; }
    qint64 received() const { return m_received; }

    /// Once blocked, nothing more is sent.
    bool isBlocked() const { return blocked; }
    void setBlocked(bool on) { blocked = on; }

    void clear()
    {
        m_sent = 0;
        m_received = 0;
        blocked = false;
    }

private:
    void check()
    {
        if (blocked || m_limit <= 0 || m_sent + m_received < m_limit)
            return;
        blocked = true;
        limitReached();
    }

    std::function<void()> limitReached;
    qint64 m_sent = 0;
    qint64 m_received = 0;
    qint64 m_limit = 0;
    bool blocked = false;
};
