#pragma once

#include "server/Turns.h"
#include "standard/http/Resource.h"

#include <QByteArray>

namespace standard {

/// The base of the handlers with long answers: these are made piece by piece, in turns with those
/// of others and as fast as the client takes them.
class PacedReply : public ResourceHandler, protected TurnTaker
{
public:
    using ResourceHandler::ResourceHandler;

    void drained() override;

protected:
    enum class State {
        Idle,
        Making, ///< the next piece, when it has its turn
        Waiting, ///< for the disk, while the piece before is on its way
        Resting ///< until the client took what was sent
    };

    /// The first turn may come before this call returns.
    void beginTurns();

    /// Has another turn, in which the next piece is made.
    void again();

    /// Others have the turns until the client took what was sent.
    void rest();

    /// No turn comes any more. False when none was to come.
    bool leave();

    /// Sends a piece, in front of the first one the head of the reply. True when the client can
    /// have the next one at once, else there is none, or it rests.
    bool send(Status status, Fields fields, const QByteArray &piece, bool isLast);

    void breakOff() override { exchange.breakOff(); }

    State state = State::Idle;
    bool begun = false; ///< the reply has

private:
    Turns &turns() const { return *exchange.service().setup.turns; }
};

} // namespace standard
