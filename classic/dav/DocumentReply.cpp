#include "classic/dav/DocumentReply.h"

#include <utility>

DocumentReply::DocumentReply(Exchange &current)
    : Dav(current)
    , slices(current, [this](const Turn &turn) { return work(turn); })
{
}

void DocumentReply::whenInTurn(std::function<void()> making)
{
    makeDocument = std::move(making);
    state = State::Making;
    slices.start();
}

void DocumentReply::sendDocument(Document whole)
{
    document = std::move(whole);
    next = 0;
    length = document.start.size() + document.end.size();
    rendered = document.start;
    if (document.count <= 1)
        return sendAtOnce();
    const bool isBegun = state == State::Making;
    state = State::Counting;
    if (isBegun)
        slices.resume();
    else
        slices.start();
}

void DocumentReply::sendAtOnce()
{
    if (document.count == 1)
        document.append(rendered, 0);
    rendered += document.end;
    sendHeader(Status::multiStatus, rendered.size());
    channel.write(std::exchange(rendered, {}), true);
}

bool DocumentReply::work(const Turn &turn)
{
    if (state == State::Making)
        make();
    while (state == State::Counting && !turn.isOver())
        count();
    while (state == State::Sending && !turn.isOver() && !channel.isCongested())
        send();
    return state != State::Idle;
}

void DocumentReply::make()
{
    if (!makeDocument)
        return;
    // Whoever waits for the disk needs no turns.
    slices.pause();
    std::exchange(makeDocument, {})();
}

void DocumentReply::count()
{
    if (next == document.count)
        return begin();
    const auto before = rendered.size();
    document.append(rendered, next++);
    length += rendered.size() - before;
    if (length > Slices::keptBytes)
        rendered.resize(0);
}

void DocumentReply::begin()
{
    if (length > Slices::keptBytes) {
        next = 0;
        rendered = document.start;
    }
    state = State::Sending;
    sendHeader(Status::multiStatus, length);
}

void DocumentReply::send()
{
    rendered.reserve(Slices::pieceBytes);
    while (next < document.count && rendered.size() < Slices::pieceBytes)
        document.append(rendered, next++);
    const bool last = next == document.count;
    if (last)
        rendered += document.end;
    channel.write(std::exchange(rendered, {}), last);
}

void DocumentReply::replyEnded()
{
    slices.stop();
    state = State::Idle;
    makeDocument = nullptr;
    document = {};
    rendered.clear();
}
