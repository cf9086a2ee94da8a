#pragma once

#include "classic/http/Responder.h"
#include "classic/http/Slices.h"
#include "classic/listing/Filter.h"
#include "files/FolderReader.h"

#include <QByteArray>
#include <QString>

#include <queue>
#include <deque>
#include <memory>
#include <optional>
#include <set>
#include <utility>
#include <vector>

class Share;

/// Lists files for the desktop client: lines alone, without a status line or header.
/// Kept by its face for the next request. A long listing is made in slices, between which the
/// event loop serves other clients; it stops when its reply ends or the peer is lost.
class ClientListing final : public Responder
{
    Q_OBJECT
public:
    explicit ClientListing(Exchange &current);

    /// Lists the folder or file at the request's path; a lone empty line for a missing one. The
    /// query selects (`Filter`), or only switches the previews of the profile, until it is loaded
    /// again.
    void reply() override;

    void drained() override { slices.drained(); }
    void replyEnded() override { stop(); }

private:
    using Identity = std::pair<dev_t, ino_t>;

    struct Found
    {
        QString key; ///< lower case
        QString name;
        qint64 size; ///< bytes
        qint64 modified; ///< milliseconds since 1970-01-01 UTC
        bool folder;
    };

    /// Clients show entries in the order they come: by name, in any case.
    struct ComesLater
    {
        bool operator()(const Found &left, const Found &right) const;
    };

    /// A folder that is being listed. All of its names are read before the first is sent; they are
    /// sorted as they go, a heap, so that no slice has to sort a large folder whole.
    struct Level
    {
        int prefixSize; ///< of its lines
        Identity identity;
        std::priority_queue<Found, std::deque<Found>, ComesLater> entries; ///< yet to be sent
    };

    class Discard;

    void list();
    void sendFile(const QByteArray &path, const Found &file);
    void sendEntry(const Found &entry);
    void sendFolder(const QByteArray &path, const Found &folder);
    void addPicture(const QByteArray &path, const Found &file);
    bool enter(const QByteArray &path);
    void leave();
    void readEntry();
    bool isVisible(const QByteArray &nativeName) const;
    void step();
    bool walk(const Slices::Turn &turn);
    void finish();
    void stop();

    bool thumbnails = false;
    bool showHidden = false;
    Filter filter;
    std::shared_ptr<const Share> share; ///< of this request, also when another is shared meanwhile
    QByteArray root; ///< the path of the share on disk, UTF-8
    QByteArray buffer; ///< lines not yet written
    QByteArray prefix; ///< what the lines of the current folder begin with, ends in "/"
    std::vector<Level> levels; ///< from the top of the listing down to the current one
    std::set<Identity> onPath; ///< the same folders
    std::optional<FolderReader> unread; ///< the current one, until all of its names were read
    Slices slices;
};
