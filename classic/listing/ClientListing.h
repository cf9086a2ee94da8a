#pragma once

#include "classic/listing/Filter.h"
#include "server/Responder.h"

#include <QByteArray>
#include <QString>

#include <vector>

struct EntryFacts;

/// Lists files for the desktop client: lines alone, without a status line or header.
/// Kept by its connection for the next request. A long listing is made in slices, between which
/// the event loop serves other clients; it stops when its reply ends or the peer is lost.
class ClientListing : public Responder
{
    Q_OBJECT
public:
    explicit ClientListing(Request *request);
    ~ClientListing() override;

    using Responder::reply;
    using Responder::sendFile;

    /// Lists the folder or file at the request's path below `shared`; a lone empty line for a
    /// missing one. The query selects (`Filter`), or only switches the previews of `profile`,
    /// until it is loaded again.
    void reply(const QFileInfo &shared, Profile *profile) override;

private:
    struct Folder;

    enum class State {
        Idle,
        Walking, ///< the next slice is under way or queued
        Paused ///< until the peer has taken what waits to be sent
    };

    void switchThumbnails(Profile *profile, bool on);
    void list(const QFileInfo &target);
    void sendDir(const QByteArray &prefix, const QString &path, const QString &canonicalPath);
    void sendFile(const QByteArray &prefix, const QFileInfo &file, const EntryFacts &facts);
    void sendEntry(const QString &name);
    void sendFolder(const QByteArray &line, const QFileInfo &entry, const EntryFacts &facts);
    QByteArray picture(const QByteArray &prefix, const QFileInfo &file,
                       const EntryFacts &facts) const;

    bool isOnPath(const QString &canonicalPath) const;
    void readName(Folder &folder) const;
    void step();
    void walk();
    void schedule();
    void resume();
    void finish();
    void stop();

    bool thumbnails = false;
    bool showHidden = false;
    Filter filter;
    QByteArray buffer; ///< lines not yet written
    std::vector<Folder> folders; ///< from the top of the listing down to the current one
    State state = State::Idle;
    bool scheduled = false; ///< a slice is queued
};
