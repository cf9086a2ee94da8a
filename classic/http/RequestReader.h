#pragma once

#include "classic/http/HeadScan.h"
#include "net/BufferPool.h"

#include <QByteArray>
#include <QList>

class Pipe;
class Socket;

/// Takes one request after another out of a socket: collects the head, then gives its lines and its
/// body. It calls nobody; its buffer exists only while there is something in it.
class RequestReader
{
public:
    static constexpr int bufferSize = 2048; ///< of a head no more is seen at first

    enum class Look {
        Incomplete, ///< more has to arrive
        Ready, ///< the head can be parsed
        Ended ///< the peer is gone and left nothing to answer
    };

    /// `heads` are of `bufferSize`; they are borrowed and outlive the reader.
    explicit RequestReader(BufferPool &heads)
        : buffer(heads)
    {
    }

    /// Reads what arrived of a head.
    Look collect(Socket &socket);

    bool isEmpty() const { return fill == 0; }

    /// What the head declares about its body.
    const HeadScan &framing() const { return head; }

    /// Whether the peer stopped sending before the head was whole.
    bool isTruncated() const { return truncated; }

    /// Whether a part of the head did not fit and is still to come.
    bool isCut() const { return cut; }

    /// The next line of the head without its CR LF, as it stands in the buffer: valid until the
    /// request is over. Empty at its end, and when no whole line is buffered; the position then
    /// stays.
    QByteArray readLine();

    /// Up to `count` bytes of the body that stand in the buffer; it never waits for more.
    QByteArray readBuffered(qint64 count);

    /// Bytes of the body that are still to come.
    qint64 bytesLeft() const { return bodyToCome; }

    /// Whether the whole body stands in the buffer.
    bool isBodyBuffered() const { return bodyToCome == 0; }

    /// Whether the buffer could have held head and body, so that no more of the body is waited for.
    bool fitsBuffer() const;

    /// Reads on to the end of a cut head and keeps the lines that methods which change something
    /// must not miss. `Ended` when the peer is gone or the rest is too long.
    Look collectRest(Socket &socket);

    /// Those lines.
    const QList<QByteArray> &restLines() const { return keptLines; }

    /// The next bytes of the body, as `Socket::read`; 0 at its end too.
    qint64 readBody(Socket &socket, char *data, qint64 max);

    /// By which the next bytes of the body can go into a file unseen; null where they have to be
    /// read.
    Pipe *pipe(Socket &socket) const;

    /// As above, into that pipe.
    qint64 readBody(Socket &socket, Pipe &pipe, qint64 max);

    /// Whether all of the request was read.
    bool isAllRead() const { return !cut && bodyToCome == 0 && readPos == requestEnd; }

    /// Drops what arrived of the request and nobody read. `Ready` once that was surely all of it,
    /// `Ended` when the peer is gone.
    Look drop(Socket &socket);

    /// Whether nobody can say where the next request begins.
    bool isFramingUnknown() const { return head.transferEncoding || head.lengthDoubtful; }

    /// Goes on to the next request, which may be in the buffer already.
    void next();

private:
    QByteArray filled() const { return QByteArray::fromRawData(buffer.data(), fill); }
    qint64 fillBuffer(Socket &socket);
    void handOver();
    qint64 skipHeadRest(Socket &socket);
    bool takeRestLine();
    void endHead();

    BufferPool::Buffer buffer; ///< none while empty
    int readPos = 0; ///< where the parser reads
    int fill = 0;
    int requestEnd = 0; ///< what follows belongs to the next request
    qint64 bodyToCome = 0; ///< body bytes that are still in the socket
    HeadScan head;
    bool lengthSeen = false; ///< an earlier look at this head found its Content-Length
    bool cut = false;
    bool truncated = false;
    qint64 restSize = 0; ///< bytes of a cut head that have passed
    QByteArray restLine; ///< line of a cut head that has not arrived whole
    bool restLineCut = false;
    QList<QByteArray> keptLines;
};
