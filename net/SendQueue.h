#pragma once

#include "net/Poller.h"

#include <QByteArray>

/// What a socket has to send and the system has not taken yet. It counts with what waits in all
/// other sockets. A part of its socket.
class SendQueue
{
public:
    /// `engine` is borrowed and outlives it.
    explicit SendQueue(Poller *engine)
        : poller(engine)
    {
    }
    ~SendQueue() { clear(); }

    const char *data() const { return bytes.constData() + start; }
    qint64 size() const { return bytes.size() - start; }

    void append(const char *data, qint64 size);

    /// The system took the first `size` bytes.
    void remove(qint64 size);

    /// Forgets all of it.
    void clear();

    /// Whether it waits for what follows in this turn, so that one call takes both.
    bool isHeld() const { return held; }
    void hold() { held = true; }
    void release() { held = false; }

private:
    Q_DISABLE_COPY_MOVE(SendQueue)

    Poller *poller;
    QByteArray bytes;
    int start = 0; ///< what stands before it was taken
    bool held = false;
};
