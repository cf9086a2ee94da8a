#pragma once

#include "files/ListingCache.h"
#include "server/Turns.h"
#include "standard/http/FolderPage.h"
#include "standard/http/Resource.h"

#include <QByteArray>

#include <optional>

namespace standard {

/// GET and HEAD of a folder: a page that lists it. A long one is made piece by piece, as fast as
/// the client takes them.
class FolderReply final : public ResourceHandler, private TurnTaker
{
public:
    using ResourceHandler::ResourceHandler;
    ~FolderReply() override { stop(); }

    void start() override;
    void drained() override;
    void ended() override { stop(); }

private:
    enum class State {
        Idle,
        Making, ///< the next piece, when it has its turn
        Resting ///< until the client took what was sent
    };

    bool isDropBox() const;
    bool takesForms() const;
    bool hasPad() const;
    bool isArchived() const;
    void sendListing(const ListingCache::Listing &listing);
    void sendPage(const ListingCache::Listing &listing);
    bool takeTurn(const Turn &turn) override;
    void breakOff() override { exchange.breakOff(); }
    void sendPiece();
    bool begin();
    void stop();

    State state = State::Idle;
    bool begun = false; ///< the reply has
    Fields fields; ///< of it
    std::optional<FolderPage> page;
    QByteArray text; ///< of the page, to be sent next
};

} // namespace standard
