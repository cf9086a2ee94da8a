#include "classic/http/BodyIntake.h"

#include "classic/http/RequestReader.h"
#include "net/Socket.h"

#include <algorithm>
#include <array>

namespace {

constexpr int savedAtOnce = 256 * 1024;
constexpr int savesInATurn = 16;

} // namespace

BodyIntake::BodyIntake(RequestReader &requestReader, Socket &peerSocket)
    : reader(requestReader)
    , socket(peerSocket)
{
}

/// Some peers hold their body back until they are asked for it (RFC 9110, section 10.1.1): only
/// somebody who wants it asks.
void BodyIntake::start(const Wanted &what)
{
    m_target = what.target;
    if (what.target != Target::File)
        collector.start(what.length);
    else if (what.delimiter.isEmpty())
        saver.start(what.upload, what.length);
    else
        saver.startPart(what.upload, what.length, what.delimiter);
    if (!isHeldBack())
        return;
    asked = true;
    socket.write("HTTP/1.1 100 Continue\r\n\r\n", false);
}

bool BodyIntake::isHeldBack() const
{
    return reader.framing().expectsContinue && !asked && !reader.isBodyBuffered();
}

BodyIntake::Progress BodyIntake::goOn()
{
    if (m_target == Target::File)
        return save();
    const bool done = m_target == Target::Form ? collector.collectForm(reader, socket)
                                               : collector.collectPartHead(reader, socket);
    return done ? Progress::Done : Progress::Waiting;
}

BodyIntake::Progress BodyIntake::save()
{
    std::array<char, savedAtOnce> piece;
    for (int i = 0; !saver.isDone(); ++i) {
        if (i == savesInATurn)
            return Progress::TurnOver;
        Pipe *const pipe = saver.takesPipe() ? reader.pipe(socket) : nullptr;
        const qint64 size = pipe
            ? reader.readBody(socket, *pipe, saver.left())
            : reader.readBody(socket, piece.data(), std::min<qint64>(savedAtOnce, saver.left()));
        if (size < 0)
            return end(ReadFailed);
        if (size == 0)
            return Progress::Waiting;
        if (!(pipe ? saver.feed(*pipe) : saver.feed(piece.data(), size)))
            return end(WriteFailed);
    }
    return end(saver.result());
}

BodyIntake::Progress BodyIntake::end(SaveResult how)
{
    m_result = how;
    return Progress::Done;
}

void BodyIntake::cutOff()
{
    collector.take();
    end(ReadFailed);
}
