#include "classic/dav/DocumentReply.h"

#include <utility>

DocumentReply::DocumentReply(Exchange &current)
    : Dav(current)
    , slices(current.channel, [this](const Slices::Turn &turn) { return work(turn); })
{
}

void DocumentReply::sendDocument(Document whole)
{
    document = std::move(whole);
    next = 0;
    length = document.start.size() + document.end.size();
    rendered = document.start;
    state = State::Counting;
    slices.start();
}

bool DocumentReply::work(const Slices::Turn &turn)
{
    while (state == State::Counting && !turn.isOver())
        count();
    while (state == State::Sending && !turn.isOver() && !channel.isCongested())
        send();
    return state != State::Idle;
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
    document = {};
    rendered.clear();
}
