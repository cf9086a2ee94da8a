#pragma once

#include <QByteArray>
#include <QtGlobal>

class Pipe;
class Socket;

namespace standard {

/// What a peer sends, with room to look ahead. Its buffer holds memory only while there is
/// something in it. One for each connection.
class Input
{
public:
    /// `from` is borrowed and outlives it.
    explicit Input(Socket &from)
        : socket(from)
    {
    }

    /// Takes more of what has arrived into the buffer, up to `most` bytes in it. As
    /// `Socket::read`: 0 when there was nothing yet, also when the buffer is full; -1 at the end.
    qint64 fill(int most);

    /// What is in the buffer.
    const QByteArray &buffered() const { return buffer; }

    /// Forgets the first `size` bytes of the buffer.
    void take(qint64 size);

    /// The next bytes, out of the buffer first; as `Socket::read`.
    qint64 read(char *data, qint64 max);

    /// See `Socket::pipe`.
    Pipe *pipe() const;

    /// The same into that pipe.
    qint64 read(Pipe &pipe, qint64 max);

    /// Whether there may be something that nobody has looked at.
    bool mayRead() const;

private:
    Socket &socket;
    QByteArray buffer;
};

} // namespace standard
