#pragma once

#include "classic/http/Responder.h"
#include "files/Entry.h"
#include "files/Place.h"

#include <QByteArray>

class DiskWorker;
class Share;

/// The base of the responders of the WebDAV methods (RFC 4918). Paths are those of requests, as
/// bytes of the disk.
class Dav : public Responder
{
    Q_OBJECT
public:
    explicit Dav(Exchange &current);

    /// A path in UTF-8 as it stands in an href: percent-encoded, and harmless in XML.
    static QByteArray hrefPath(const QByteArray &path);

protected:
    /// The whole reply.
    void answer(const char *status) { sendHeader(status, 0); }

    /// The path of the request.
    QByteArray requestedPath() const;

    /// A look at what `path` names. A "/" at its end asks for a folder: a file is not there then.
    EntryFacts facts(const QByteArray &path) const;

    /// Where `path` names an entry, a last link itself. Not valid when there is no such folder.
    Place place(const QByteArray &path) const;

    /// Null when what is shared can't be opened.
    const Share *share() const;

    DiskWorker &disk() const;
};
