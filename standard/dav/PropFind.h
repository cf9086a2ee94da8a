#pragma once

#include "standard/dav/PropFindJob.h"
#include "standard/http/PacedReply.h"

#include <memory>
#include <optional>

namespace standard {

/// PROPFIND: properties of one resource, of a folder's entries too, or of a whole tree.
class PropFind final : public PacedReply
{
public:
    using PacedReply::PacedReply;
    ~PropFind() override { stop(); }

    void start() override;
    void bodyReady(const QByteArray &body) override;
    void ended() override { stop(); }

private:
    std::optional<Depth> askedDepth() const;
    ReplyFacts commonFacts(const PropFindBody &asked, Depth depth) const;
    bool takeTurn(const Turn &turn) override;
    void pieceMade();
    void trySend();
    void sendPiece();
    void makeAhead();
    void stop();

    std::shared_ptr<PropFindJob> job;
    std::optional<MemoryBudget::Part> ahead; ///< for a piece that may have to wait
};

} // namespace standard
