#include "classic/dav/DocumentReply.h"

#include <QTimerEvent>

#include <chrono>
#include <utility>

using namespace std::chrono_literals;

namespace {

constexpr int pieceSize = 32 * 1024;
constexpr int keptSize = 256 * 1024; ///< a document of that size is not rendered twice

/// What may be done before other clients have their turn.
class Turn
{
public:
    bool isOver() const { return std::chrono::steady_clock::now() >= end; }

private:
    std::chrono::steady_clock::time_point end = std::chrono::steady_clock::now() + 2ms;
};

} // namespace

DocumentReply::DocumentReply(Exchange &current)
    : Dav(current)
{
}

void DocumentReply::sendDocument(Document whole)
{
    document = std::move(whole);
    next = 0;
    length = document.start.size() + document.end.size();
    rendered.reserve(pieceSize);
    rendered += document.start;
    state = State::Counting;
    count();
}

void DocumentReply::count()
{
    const Turn turn;
    while (next < document.count) {
        const auto before = rendered.size();
        document.append(rendered, next++);
        length += rendered.size() - before;
        if (length > keptSize)
            rendered.resize(0);
        if (turn.isOver())
            return nextTurn.start(0, this);
    }
    if (length > keptSize) {
        next = 0;
        rendered = document.start;
    }
    state = State::Sending;
    sendHeader(DavStatus::multiStatus, length);
    send();
}

void DocumentReply::send()
{
    const Turn turn;
    while (channel.canAnswer()) {
        fillPiece();
        if (next == document.count)
            return channel.write(std::exchange(rendered, {}) + document.end, true);
        channel.write(std::exchange(rendered, {}), false);
        if (channel.isCongested())
            return;
        if (turn.isOver())
            return nextTurn.start(0, this);
    }
    channel.end();
}

void DocumentReply::fillPiece()
{
    rendered.reserve(pieceSize);
    while (next < document.count && rendered.size() < pieceSize)
        document.append(rendered, next++);
}

void DocumentReply::drained()
{
    if (state == State::Sending && !nextTurn.isActive())
        send();
}

void DocumentReply::timerEvent(QTimerEvent *event)
{
    if (event->timerId() != nextTurn.timerId())
        return;
    nextTurn.stop();
    if (state == State::Counting)
        count();
    else
        send();
}

void DocumentReply::replyEnded()
{
    nextTurn.stop();
    state = State::Idle;
    document = {};
    rendered.clear();
}
