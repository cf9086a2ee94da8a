#pragma once

#include "server/Responder.h"

#include <QByteArray>
#include <QFileInfo>
#include <QString>

/// The status lines that several methods share.
namespace DavStatus {
constexpr auto ok = "200 OK";
constexpr auto created = "201 Created";
constexpr auto multiStatus = "207 Multi-Status";
constexpr auto notFound = "404 Not Found";
constexpr auto preconditionFailed = "412 Precondition Failed";
constexpr auto locked = "423 Locked";
} // namespace DavStatus

/// The base of the responders of the WebDAV methods (RFC 4918). A child of the request's channel,
/// kept while the connection asks for the same method again.
class Dav : public Responder
{
    Q_OBJECT
public:
    using Responder::reply;

    /// The path that `requested`, a decoded path of a request, has in the file system. Empty when
    /// no entry can have it; every operation on an empty path fails.
    static QString pathIn(const QFileInfo &shared, const QString &requested);

    /// A path as it stands in an href: percent-encoded, and harmless in XML.
    static QByteArray hrefPath(const QString &path);

protected:
    /// `name` is the object name.
    Dav(Request *request, const char *name);

    /// Begins an XML document in `body`; the name of the root element is to follow.
    static void init(QByteArray &body);

    /// Answers with a whole document.
    void sendDocument(const QByteArray &body);
};
