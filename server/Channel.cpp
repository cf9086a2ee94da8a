#include "server/Channel.h"

#include <QFile>
#include <QScopedValueRollback>
#include <QTimerEvent>

#include <algorithm>
#include <chrono>
#include <cstring>
#include <utility>

#include <sys/socket.h>

using namespace std::chrono_literals;

namespace {

constexpr qint64 maxQueuedBytes = qint64(256) * 1024; ///< in the socket, before the pump pauses
constexpr qint64 pumpBudget = qint64(512) * 1024; ///< bytes of one file per turn of the event loop
constexpr int chunkSize = 64 * 1024;
constexpr int limitedChunkSize = 2048; ///< a traffic limit is overrun by no more than this
constexpr int longestRestLine = 256; ///< of a cut head; enough for a Content-Length
constexpr auto pumpRetry = 200ms;
constexpr auto lingerTime = 2s;
constexpr auto drainTime = 10s; ///< for a peer that takes nothing

constexpr int milliseconds(std::chrono::milliseconds duration)
{
    return int(duration.count());
}

} // namespace

Channel::Channel(Traffic *account)
    : traffic(account)
{
    connect(&m_socket, &QIODevice::readyRead, this, &Channel::readyRead);
    connect(&m_socket, &QIODevice::readChannelFinished, this, &Channel::readChannelFinished);
    connect(&m_socket, &QIODevice::bytesWritten, this, &Channel::bytesWritten);
    connect(&m_socket, &QSslSocket::encryptedBytesWritten, this, &Channel::bytesWritten);
    connect(&m_socket, &QAbstractSocket::disconnected, this, &Channel::peerLost);
}

Channel::~Channel()
{
    QObject::disconnect(&m_socket, nullptr, this, nullptr);
}

void Channel::setKeepAlive(bool on)
{
    if (keepAlive == on)
        return;
    keepAlive = on;
    m_socket.setSocketOption(QAbstractSocket::KeepAliveOption, on ? 1 : 0);
}

// Reading

void Channel::readyRead()
{
    countArrived();
    switch (state) {
    case State::Collecting:
        collectHead();
        break;
    case State::ReadingPartHead:
        collectPartHead();
        break;
    case State::Saving:
        continueSaving();
        break;
    case State::Settling:
        settle();
        break;
    case State::Lingering:
        if (dropInput())
            closeSocket();
        break;
    case State::Replying:
    case State::Streaming:
    case State::Closing:
        // Further bytes wait in the socket.
        break;
    }
    if (traffic->blocked)
        giveUp();
}

/// The traffic limit was reached: an upload counts as cut off, and the connection closes.
void Channel::giveUp()
{
    abandonUpload();
    if (state != State::Closing)
        closeSocket();
}

/// Each byte counts once, when it arrives.
void Channel::countArrived()
{
    const qint64 available = m_socket.bytesAvailable();
    if (available > counted)
        receivedBytes(available - counted);
    counted = available;
}

qint64 Channel::readSocket(char *data, qint64 max)
{
    const qint64 size = m_socket.read(data, max);
    if (size > 0)
        counted = qMax<qint64>(0, counted - size);
    return size;
}

void Channel::collectHead()
{
    const qint64 size = readSocket(buffer.data() + fill, headBufferSize - fill);
    if (size < 0)
        return m_socket.close();
    fill += int(size);
    if (fill > 0)
        examineHead();
}

void Channel::examineHead()
{
    const auto bytes = QByteArray::fromRawData(buffer.data(), fill);
    head = scanHead(bytes);
    askForBody();
    if (fill == headBufferSize || canHandle(bytes, head, !lengthSeen) || peerFinished())
        return handOverHead();
    lengthSeen = head.end >= 0 && head.contentLength > 0;
}

/// Some peers hold their body back until they are asked for it (RFC 9110, section 10.1.1).
void Channel::askForBody()
{
    const bool bodyMissing = head.end >= 0 && head.contentLength > fill - head.end;
    if (!head.expectsContinue || !bodyMissing || bodyAskedFor)
        return;
    bodyAskedFor = true;
    put("HTTP/1.1 100 Continue\r\n\r\n", true);
}

void Channel::handOverHead()
{
    state = State::Replying;
    headCut = head.end < 0;
    headTruncated = headCut && fill < headBufferSize;
    const qint64 headEnd = headCut ? fill : head.end;
    requestEnd = int(qMin<qint64>(fill, headEnd + head.contentLength));
    bodyToCome = head.contentLength - (requestEnd - headEnd);
    if (headCut) {
        const auto bytes = QByteArray::fromRawData(buffer.data(), fill);
        restLine = bytes.mid(int(bytes.lastIndexOf('\n')) + 1).left(longestRestLine);
    }
    Q_EMIT headerReady();
}

/// Whether nothing more will come although the connection still takes an answer.
bool Channel::peerFinished() const
{
    char next = 0;
    const auto fd = int(m_socket.socketDescriptor());
    return fd >= 0 && ::recv(fd, &next, 1, MSG_PEEK | MSG_DONTWAIT) == 0;
}

void Channel::readChannelFinished()
{
    if (m_socket.bytesAvailable() > 0)
        readyRead();
    // A head without its blank line is answered too once the peer stops sending.
    if (state == State::Collecting && fill > 0)
        handOverHead();
}

QByteArray Channel::readLine()
{
    const auto rest = QByteArray::fromRawData(buffer.data() + readPos, requestEnd - readPos);
    const auto size = rest.indexOf('\r');
    if (size < 0)
        return {};
    readPos = qMin(requestEnd, readPos + int(size) + 2);
    return { rest.constData(), int(size) };
}

QByteArray Channel::read(qint64 count)
{
    const auto size = int(std::clamp<qint64>(count, 0, requestEnd - readPos));
    const int start = std::exchange(readPos, readPos + size);
    return { buffer.data() + start, size };
}

/// The next bytes of the current request's body, from the head buffer or the socket.
qint64 Channel::readBody(char *data, qint64 max)
{
    if (!skipHeadRest())
        return 0;
    if (const int buffered = requestEnd - readPos; buffered > 0) {
        const auto size = int(qMin<qint64>(max, buffered));
        std::memcpy(data, buffer.data() + readPos, size_t(size));
        readPos += size;
        return size;
    }
    const qint64 size = readSocket(data, qMin(max, bodyToCome));
    if (size > 0)
        bodyToCome -= size;
    return size;
}

/// Drops what the head buffer could not hold of a head. True once the body begins.
bool Channel::skipHeadRest()
{
    while (headCut) {
        const qint64 size = readSocket(buffer.data(), headBufferSize);
        if (size <= 0)
            return false;
        readPos = 0;
        fill = int(size);
        requestEnd = fill;
        while (headCut && takeRestLine()) { }
    }
    return true;
}

/// Takes one line of a cut head out of `buffer`; false when it has not arrived whole. Its
/// Content-Length is needed to find the next request, although this one was answered without.
bool Channel::takeRestLine()
{
    const auto rest = QByteArray::fromRawData(buffer.data() + readPos, fill - readPos);
    const auto eol = rest.indexOf('\n');
    const auto size = eol < 0 ? rest.size() : eol;
    restLine += rest.left(int(qMin<qint64>(size, longestRestLine - restLine.size())));
    if (eol < 0) {
        readPos = fill;
        return false;
    }
    readPos += int(eol) + 1;
    if (restLine.endsWith('\r'))
        restLine.chop(1);
    if (restLine.isEmpty()) {
        headCut = false;
        requestEnd = int(qMin<qint64>(fill, readPos + head.contentLength));
        bodyToCome = head.contentLength - (requestEnd - readPos);
    }
    scanHeaderLine(restLine, head);
    restLine.clear();
    return true;
}

/// Drops what has arrived of the current request and nobody read. True once that was all of it.
bool Channel::dropRequest()
{
    std::array<char, chunkSize> dropped;
    while (readBody(dropped.data(), chunkSize) > 0) { }
    return !headCut && bodyToCome == 0;
}

bool Channel::isFramingUnknown() const
{
    return head.transferEncoding || head.lengthDoubtful;
}

/// Drops input while the reply is on its way to a peer that may still be sending. True once
/// there is surely no more of it.
bool Channel::dropInput()
{
    if (!isFramingUnknown())
        return dropRequest();
    std::array<char, chunkSize> dropped;
    while (readSocket(dropped.data(), chunkSize) > 0) { }
    return false;
}

// Writing

void Channel::write(const QByteArray &bytes, bool last)
{
    put(bytes, last);
    if (last)
        end();
}

void Channel::put(const QByteArray &bytes, bool complete)
{
    if (traffic->blocked || m_socket.state() != QAbstractSocket::ConnectedState)
        return;
    const qint64 size = writeSocket(bytes.constData(), bytes.size(), complete);
    if (size > 0)
        sentBytes(size);
}

/// Bytes that the kernel takes at once spare the socket's own buffer, which would stay with an
/// idle connection. `complete` is false when more of the reply follows right away.
qint64 Channel::writeSocket(const char *data, qint64 size, bool complete)
{
    qint64 taken = 0;
    if (m_socket.mode() == QSslSocket::UnencryptedMode && m_socket.bytesToWrite() == 0) {
        const int flags = MSG_DONTWAIT | MSG_NOSIGNAL | (complete ? 0 : MSG_MORE);
        const auto fd = int(m_socket.socketDescriptor());
        taken = qMax<qint64>(0, ::send(fd, data, size_t(size), flags));
    }
    if (taken == size)
        return size;
    // The rest waits in the socket, which also finds out about errors.
    const qint64 queued = m_socket.write(data + taken, size - taken);
    return queued < 0 ? queued : taken + queued;
}

void Channel::sendFile(QFile *file, qint64 offset, qint64 count)
{
    if (offset > 0)
        file->seek(offset);
    const qint64 left = qMax<qint64>(0, file->size() - offset);
    sendingFile = file;
    toSend = count > 0 ? qMin(count, left) : left;
    state = State::Streaming;
    sendFile();
}

void Channel::sendFile()
{
    if (state != State::Streaming || pumping)
        return;
    const QScopedValueRollback<bool> guard(pumping, true);

    std::array<char, chunkSize> chunk;
    const int portion = traffic->dataLimit > 0 ? limitedChunkSize : chunkSize;
    for (qint64 budget = pumpBudget; budget > 0; budget -= portion) {
        if (toSend == 0 || traffic->blocked)
            return finishStreaming();
        if (isCongested())
            return timer.start(milliseconds(pumpRetry), this);

        const qint64 size = sendingFile->read(chunk.data(), qMin<qint64>(portion, toSend));
        if (size <= 0 || writeSocket(chunk.data(), size, size == toSend) != size)
            return finishStreaming();
        toSend -= size;
        sentBytes(size);
        m_socket.flush();
        if (state != State::Streaming)
            return;
    }
    // Queued: other connections get their turn between two helpings of a fast reader.
    QMetaObject::invokeMethod(this, qOverload<>(&Channel::sendFile), Qt::QueuedConnection);
}

void Channel::finishStreaming()
{
    timer.stop();
    sendingFile->close();
    sendingFile = nullptr;
    // The peer was told more than it got: only the end of the connection can end this reply.
    if (toSend > 0)
        setKeepAlive(false);
    state = State::Replying;
    end();
}

bool Channel::isCongested() const
{
    return m_socket.bytesToWrite() > maxQueuedBytes
        || m_socket.encryptedBytesToWrite() > maxQueuedBytes;
}

void Channel::bytesWritten()
{
    if (state == State::Closing)
        timer.start(milliseconds(drainTime), this);
    if (isCongested())
        return;
    if (state == State::Streaming)
        sendFile();
    else if (state == State::Settling)
        settle();
    else if (state == State::Replying)
        Q_EMIT drained();
}

// Saving

void Channel::readPartHead()
{
    partHeadLines.clear();
    state = State::ReadingPartHead;
    collectPartHead();
}

void Channel::collectPartHead()
{
    char byte = 0;
    // One byte at a time: what follows the blank line is the part's content.
    while (partHeadLines.size() < maxPartHead && readBody(&byte, 1) == 1) {
        partHeadLines += byte;
        if (byte == '\n' && partHeadLines.endsWith("\r\n\r\n")) {
            state = State::Replying;
            return Q_EMIT partHead(partHeadLines);
        }
    }
    const bool complete = !headCut && bodyToCome == 0 && readPos == requestEnd;
    if (partHeadLines.size() < maxPartHead && !complete)
        return;
    state = State::Replying;
    Q_EMIT partHead({});
}

void Channel::saveFile(QFile *file, qint64 length)
{
    inMultipart = false;
    startSaving(file, length);
}

void Channel::saveFile(QFile *file, const QByteArray &delimiter, qint64 length)
{
    inMultipart = true;
    cutter = MultipartCutter(delimiter);
    startSaving(file, length);
}

void Channel::startSaving(QFile *file, qint64 length)
{
    uploadFile = file;
    toSave = length;
    state = State::Saving;
    continueSaving();
}

void Channel::continueSaving()
{
    std::array<char, chunkSize> chunk;
    while (!isBodySaved()) {
        const qint64 size = readBody(chunk.data(), qMin<qint64>(chunkSize, toSave));
        if (size < 0)
            return finishSaving(ReadFailed);
        if (size == 0)
            return;
        toSave -= size;
        if (!savePiece(chunk.data(), size))
            return finishSaving(WriteFailed);
    }
    finishSaving(flushSaved());
}

bool Channel::isBodySaved() const
{
    return toSave <= 0 || (inMultipart && cutter.isFound());
}

bool Channel::savePiece(const char *data, qint64 size)
{
    if (!inMultipart)
        return uploadFile->write(data, size) == size;
    const QByteArray content = cutter.feed(QByteArray::fromRawData(data, int(size)));
    return uploadFile->write(content) == content.size();
}

SaveResult Channel::flushSaved()
{
    if (inMultipart && !cutter.isFound())
        return BoundaryMissing;
    return uploadFile->flush() ? Saved : WriteFailed;
}

void Channel::finishSaving(SaveResult result)
{
    uploadFile = nullptr;
    state = State::Replying;
    Q_EMIT uploadEnded(result);
}

// Counting

void Channel::receivedBytes(qint64 count)
{
    traffic->receivedBytes += count;
    checkLimit();
}

void Channel::sentBytes(qint64 count)
{
    traffic->sentBytes += count;
    checkLimit();
}

void Channel::checkLimit()
{
    const bool reached =
        traffic->dataLimit > 0 && traffic->sentBytes + traffic->receivedBytes >= traffic->dataLimit;
    if (!reached || traffic->blocked)
        return;
    traffic->blocked = true;
    Q_EMIT dataLimit();
}

// Ending

void Channel::end()
{
    if (state != State::Replying)
        return;
    Q_EMIT replyEnded();
    m_socket.flush();
    if (!keepAlive || traffic->blocked)
        return close();

    state = State::Settling;
    const bool settled = !headCut && bodyToCome == 0 && !isCongested();
    if (settled)
        rearm();
    // Queued: the next request must not be parsed inside the reply to this one.
    if (fill > 0 || m_socket.bytesAvailable() > 0)
        QMetaObject::invokeMethod(this, &Channel::readyRead, Qt::QueuedConnection);
}

/// Goes on to the next request once the last one is dropped and its reply is on its way. A peer
/// that sends requests but takes no replies waits here. The rest of a cut head may have told that
/// nobody can say where the next request begins.
void Channel::settle()
{
    if (!dropRequest() || isCongested())
        return;
    if (isFramingUnknown())
        return close();
    rearm();
    if (fill > 0 || m_socket.bytesAvailable() > 0)
        QMetaObject::invokeMethod(this, &Channel::readyRead, Qt::QueuedConnection);
}

void Channel::rearm()
{
    const auto nextRequest = buffer.begin() + requestEnd;
    std::copy(nextRequest, buffer.begin() + fill, buffer.begin());
    fill -= requestEnd;
    requestEnd = 0;
    readPos = 0;
    head = {};
    lengthSeen = false;
    bodyAskedFor = false;
    state = State::Collecting;
}

void Channel::close()
{
    const bool inputUnread = headCut || bodyToCome > 0 || isFramingUnknown();
    if (!inputUnread)
        return closeSocket();
    // Closing on unread input would destroy the reply on its way (RFC 9112, section 9.6).
    state = State::Lingering;
    timer.start(milliseconds(lingerTime), this);
    QMetaObject::invokeMethod(this, &Channel::readyRead, Qt::QueuedConnection);
}

void Channel::closeSocket()
{
    state = State::Closing;
    timer.start(milliseconds(drainTime), this);
    m_socket.disconnectFromHost();
}

void Channel::abort()
{
    m_socket.abort();
}

/// The connection is gone, whoever ended it.
void Channel::peerLost()
{
    timer.stop();
    if (state == State::Saving && m_socket.bytesAvailable() > 0)
        continueSaving();
    abandonUpload();
    const State last = std::exchange(state, State::Closing);
    if (last == State::Streaming)
        sendingFile->close();
    if (last == State::Streaming || last == State::Replying)
        Q_EMIT replyEnded();
}

/// Tells the responder that the rest of an upload won't come.
void Channel::abandonUpload()
{
    if (state == State::Saving)
        return finishSaving(ReadFailed);
    if (state != State::ReadingPartHead)
        return;
    state = State::Replying;
    Q_EMIT partHead({});
}

void Channel::timerEvent(QTimerEvent *event)
{
    if (event->timerId() != timer.timerId())
        return QObject::timerEvent(event);
    timer.stop();
    switch (state) {
    case State::Streaming:
        return sendFile();
    case State::Lingering:
        return closeSocket();
    case State::Closing:
        return abort();
    default:
        return;
    }
}
