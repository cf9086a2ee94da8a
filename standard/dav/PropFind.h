#pragma once

#include "server/Turns.h"
#include "standard/dav/PropFindJob.h"
#include "standard/http/Resource.h"

#include <memory>
#include <optional>

namespace standard {

/// PROPFIND: properties of one resource, of a folder's entries too, or of a whole tree. Long
/// answers are made piece by piece, as fast as the client takes them.
class PropFind final : public ResourceHandler, private TurnTaker
{
public:
    using ResourceHandler::ResourceHandler;
    ~PropFind() override { stop(); }

    void start() override;
    void bodyReady(const QByteArray &body) override;
    void drained() override;
    void ended() override { stop(); }

private:
    enum class State {
        Idle,
        Making, ///< the next piece, when it has its turn
        Waiting, ///< for the disk, while the piece before is on its way
        Resting ///< until the client took what was sent
    };

    std::optional<Depth> askedDepth() const;
    ReplyFacts commonFacts(const PropFindBody &asked, Depth depth) const;
    bool takeTurn(const Turn &turn) override;
    void breakOff() override { exchange.breakOff(); }
    void rest();
    void pieceMade();
    void trySend();
    void sendPiece();
    void makeAhead();
    void stop();

    State state = State::Idle;
    bool begun = false; ///< the reply has
    std::shared_ptr<PropFindJob> job;
    std::optional<MemoryBudget::Part> ahead; ///< for a piece that may have to wait
};

} // namespace standard
