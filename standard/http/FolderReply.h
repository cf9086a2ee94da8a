#pragma once

#include "files/ListingCache.h"
#include "standard/http/FolderPage.h"
#include "standard/http/PacedReply.h"

#include <QByteArray>

#include <optional>

namespace standard {

/// GET and HEAD of a folder: a page that lists it.
class FolderReply final : public PacedReply
{
public:
    using PacedReply::PacedReply;
    ~FolderReply() override { stop(); }

    void start() override;
    void ended() override { stop(); }

private:
    bool isDropBox() const;
    bool takesForms() const;
    bool hasPad() const;
    bool isArchived() const;
    void sendListing(const ListingCache::Listing &listing);
    void sendPage(const ListingCache::Listing &listing);
    bool takeTurn(const Turn &turn) override;
    void sendPiece();
    bool settle();
    void stop();

    Fields fields; ///< of the reply
    std::optional<FolderPage> page;
    QByteArray text; ///< of the page, to be sent next
};

} // namespace standard
