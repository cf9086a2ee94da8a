#pragma once

#include "classic/http/Responder.h"
#include "classic/http/Slices.h"
#include "classic/listing/Filter.h"
#include "files/FileDescriptor.h"
#include "files/FolderListing.h"

#include <QByteArray>

#include <memory>
#include <set>
#include <utility>
#include <vector>

class Share;

/// Lists files for the desktop client: lines alone, without a status line or header.
/// Kept by its face for the next request. A long listing is made in slices, between which the
/// event loop serves other clients; its folders are read once for all who look at them. It stops
/// when its reply ends or the peer is lost.
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

    /// A folder that is being listed.
    struct Level
    {
        int prefixSize; ///< of its lines
        Identity identity;
        FileDescriptor folder; ///< kept only where paths grow longer than the system can say
        std::shared_ptr<const FolderListing> listing; ///< null until it is read
        qint64 next = 0; ///< entry
    };

    ListingShape shape() const;
    void list();
    void sendFile(const QByteArray &path, const FolderListing::Entry &file);
    void sendEntry(const FolderListing::Entry &entry);
    void sendFolder(const QByteArray &path, const FolderListing::Entry &folder);
    void addPicture(const QByteArray &path, const FolderListing::Entry &file);
    bool isWanted(const FolderListing::Entry &entry) const;
    void enter(const QByteArray &path, const QByteArray &name);
    std::optional<FolderReader> open(const QByteArray &path, const QByteArray &name) const;
    void leave();
    void climb(const FileDescriptor &left);
    bool isReading() const { return !levels.empty() && !levels.back().listing; }
    void step();
    bool walk(const Turn &turn);
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
    QByteArray top; ///< the path to begin with, until there is a turn
    std::unique_ptr<QObject> reading; ///< while it is there, a folder is waited for
    Slices slices;
};
