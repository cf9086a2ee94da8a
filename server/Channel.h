#pragma once

#include "server/HeadScan.h"
#include "server/MultipartCutter.h"

#include <QBasicTimer>
#include <QByteArray>
#include <QHostAddress>
#include <QObject>
#include <QSslSocket>

#include <array>

class QFile;

/// How an upload ended, as `Channel::uploadEnded` and `Responder::reply(int)` tell it.
enum SaveResult {
    Saved = 0,
    OpenFailed = 1,
    ReadFailed = 2,
    WriteFailed = 3,
    NoUsableForm = 4,
    NameExists = 5,
    BoundaryMissing = 6
};

/// The channel of one connection, plain or encrypted: collects request heads, writes replies,
/// streams files out and request bodies into files, and counts every byte against the server's
/// traffic limit. Owned by value by its `Request`; responders are its children.
///
/// One request at a time: collecting a head, then its reply, then - on a kept-alive connection -
/// whatever nobody read of that request is dropped and the next head is collected.
class Channel : public QObject
{
    Q_OBJECT
public:
    static constexpr int headBufferSize = 2048;
    static constexpr int maxPartHead = 8 * 1024; ///< bytes of part headers in a multipart body

    /// The traffic account of one server, shared by all its connections.
    struct Traffic
    {
        qint64 sentBytes = 0;
        qint64 receivedBytes = 0;
        qint64 dataLimit = 0; ///< bytes sent and received together, 0 = no limit
        bool blocked = false; ///< once set, nothing more is written
    };

    /// `account` belongs to the server and outlives the channel.
    explicit Channel(Traffic *account);
    ~Channel() override;

    QSslSocket &socket() { return m_socket; }
    QHostAddress peerAddress() const { return m_socket.peerAddress(); }
    QHostAddress localAddress() const { return m_socket.localAddress(); }
    quint16 localPort() const { return m_socket.localPort(); }
    bool isEncrypted() const { return m_socket.isEncrypted(); }

    /// Bounds what waits unread in the socket, in bytes.
    void setReadBufferSize(qint64 size) { m_socket.setReadBufferSize(size); }

    /// Whether the connection serves another request after this one.
    bool isKeepAlive() const { return keepAlive; }
    void setKeepAlive(bool on);

    /// What the head of the current request declares about its body.
    const HeadScan &framing() const { return head; }

    /// Whether the peer stopped sending before its head was whole.
    bool isHeadTruncated() const { return headTruncated; }

    /// The next line of the request without its CR LF. Empty at the end of the head, and when no
    /// whole line is buffered; the position then stays.
    QByteArray readLine();

    /// Up to `count` bytes of the current request that stand in the head buffer; it never waits
    /// for more, so a body longer than the buffer is cut.
    QByteArray read(qint64 count);

    /// Whether the whole body of the current request stands in the head buffer.
    bool isBodyBuffered() const { return bodyToCome == 0; }

    /// Queues `bytes` for sending; nothing once the traffic limit was reached. `last` ends the
    /// reply.
    void write(const QByteArray &bytes, bool last);

    /// Whether more than about 1 MB waits to be taken by the peer. A responder that writes in
    /// slices pauses then, and goes on at `drained`.
    bool isCongested() const;

    /// Streams `count` bytes of the open `file` from `offset` on (0 = to its end), closes it and
    /// ends the reply. `file` is borrowed and must live until then; a file that ends early closes
    /// the connection, since the peer was told more.
    void sendFile(QFile *file, qint64 offset, qint64 count);

    /// Writes a request body of `length` bytes into the open `file` and reports the end, once,
    /// through `uploadEnded`: `Saved`, `ReadFailed` or `WriteFailed`. `file` is borrowed until
    /// then.
    void saveFile(QFile *file, qint64 length);

    /// The same for one part of a multipart body: the file ends at the first `delimiter` within
    /// the `length` bytes (`BoundaryMissing` if there is none), the rest of the body is dropped.
    void saveFile(QFile *file, const QByteArray &delimiter, qint64 length);

    /// Collects the headers of the first part of a multipart body, its opening boundary line
    /// included, and reports them through `partHead`, perhaps before this call returns.
    void readPartHead();

    /// Adds to the server's counters; the first to reach the limit sets `blocked` and emits
    /// `dataLimit`.
    void receivedBytes(qint64 count);
    void sentBytes(qint64 count);

    /// Ends the reply: the connection is re-armed for the next request, or closed once the peer
    /// has taken the last bytes (a peer that takes none for 10 s is cut off). Never calls into
    /// the next request, and does nothing when no reply is due.
    void end();

    /// Cuts the connection at once.
    void abort();

Q_SIGNALS:
    void headerReady(); ///< a request head can be parsed
    void dataLimit(); ///< the traffic limit was reached
    void uploadEnded(int result); ///< an upload ended, see `SaveResult`
    void partHead(const QByteArray &lines); ///< empty: too long, or the connection is lost
    void drained(); ///< what waited to be sent fell below the mark
    void replyEnded(); ///< the session of the request idles from now on

public Q_SLOTS:
    void readyRead();
    void readChannelFinished();
    void sendFile();

protected:
    void timerEvent(QTimerEvent *event) override;

private:
    enum class State {
        Collecting, ///< a request head
        Replying, ///< a responder is at work
        Streaming, ///< a file goes out
        ReadingPartHead, ///< of a multipart body
        Saving, ///< a request body goes into a file
        Settling, ///< between requests: the rest of the last one is dropped, its reply drains
        Lingering, ///< about to close, input is dropped for a while so that the reply arrives
        Closing ///< the last bytes drain
    };

    void collectHead();
    void examineHead();
    void askForBody();
    void handOverHead();
    bool peerFinished() const;

    void countArrived();
    qint64 readSocket(char *data, qint64 max);
    qint64 readBody(char *data, qint64 max);
    bool skipHeadRest();
    bool takeRestLine();
    bool dropRequest();
    bool dropInput();
    bool isFramingUnknown() const;

    void collectPartHead();
    void startSaving(QFile *file, qint64 length);
    void continueSaving();
    bool savePiece(const char *data, qint64 size);
    bool isBodySaved() const;
    SaveResult flushSaved();
    void finishSaving(SaveResult result);

    void put(const QByteArray &bytes, bool complete);
    qint64 writeSocket(const char *data, qint64 size, bool complete);
    void finishStreaming();
    void bytesWritten();
    void settle();
    void rearm();
    void close();
    void closeSocket();
    void peerLost();
    void abandonUpload();
    void giveUp();
    void checkLimit();

    Traffic *traffic;
    bool keepAlive = false;
    QSslSocket m_socket;
    State state = State::Collecting;
    QBasicTimer timer; ///< the pump's fallback while streaming, the deadline while closing
    qint64 counted = 0; ///< bytes that wait in the socket and have been counted

    int readPos = 0; ///< where the parser reads in `buffer`
    int fill = 0; ///< bytes in `buffer`
    int requestEnd = 0; ///< what follows in `buffer` belongs to the next request
    qint64 bodyToCome = 0; ///< body bytes of the current request that are still in the socket
    HeadScan head;
    bool lengthSeen = false; ///< an earlier look at this head found its Content-Length
    bool bodyAskedFor = false;
    bool headCut = false; ///< the rest of the head is still in the socket
    bool headTruncated = false;
    QByteArray restLine; ///< line of a cut head that has not arrived whole

    QFile *sendingFile = nullptr; ///< borrowed from the responder
    qint64 toSend = 0; ///< bytes still to stream
    bool pumping = false;

    QFile *uploadFile = nullptr; ///< borrowed from the responder
    qint64 toSave = 0; ///< body bytes still to save
    bool inMultipart = false;
    MultipartCutter cutter;
    QByteArray partHeadLines;

    std::array<char, headBufferSize> buffer;
};
