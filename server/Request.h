#pragma once

#include "server/Channel.h"
#include "server/SessionTable.h"

#include <QByteArray>
#include <QList>
#include <QNetworkCookie>
#include <QString>
#include <QUrl>

struct Directories;

/// The target of a request line, or of a Destination header (RFC 9112, section 3.2).
struct RequestTarget
{
    enum class Form {
        Path, ///< begins with "/"
        Empty, ///< names no path at all
        Asterisk, ///< "*"
        Malformed ///< anything else
    };

    Form form = Form::Malformed;
    QString path; ///< decoded, UTF-8
    QByteArray query; ///< as sent, without the question mark
};

/// Takes an encoded target apart. "//x" is a path, never a host; of an absolute URL
/// ("http://host/path") only the path and the query count.
RequestTarget parseTarget(const QByteArray &encoded);

/// Whether ".." segments of `path` lead out of the folder that the path is relative to.
/// Leading and doubled slashes don't matter.
bool climbsOut(const QString &path);

/// The parsed form of the current request on one connection, and the owner of its channel.
/// Lives as long as its `Connection`, across all requests of a kept-alive connection.
class Request
{
public:
    enum Method {
        None = 0,
        Get = 1,
        Post = 2,
        PropFind = 3,
        Options = 4,
        Delete = 5,
        Copy = 6,
        Put = 7,
        Move = 8,
        MkCol = 9,
        Head = 10,
        Lock = 11,
        UnLock = 12
    };

    /// All pointers are borrowed from the server, which outlives the request.
    Request(SessionTable *manager, Channel::Traffic *traffic, bool single);

    /// Parses one request from the channel. False when its first line is shorter than 3 bytes:
    /// the connection is to be dropped. A method that is not known leaves `methodCode` None.
    bool start();

    /// The session of this request; a new one is handed out when it brought none.
    Session session();

    /// The first cookie of this name, or null.
    const QNetworkCookie *getCookie(const QByteArray &name) const;

    /// Reads a Cookie header's value.
    void setCookie(const QByteArray &value);
    void addCookie(const QByteArray &piece);

    /// The session idles from now on.
    void endSession();

    /// Ends the channel's reply and the session's activity.
    void end();

    /// Makes the form in `body` (application/x-www-form-urlencoded) the query of `url`:
    /// "+" is a blank there, "%2B" a plus.
    void setForm(QByteArray body);

    /// The value of the first query item or form field of this name, decoded; empty if absent.
    QString field(const char *name) const;

    /// Whether the target, a Destination, or what follows "/_i/" leaves its folder by ".."
    /// segments.
    bool climbs() const;

    /// Whether the target or Destination is no path that this method can act on.
    bool isMalformed() const;

    bool isMultipart() const;

    /// Whether the method changes nothing in the share.
    bool onlyReads() const;

    SessionTable *clients;
    Channel channel;
    const Directories *directories = nullptr; ///< the connection's
    const bool singleFile; ///< only GET and POST are known
    qint64 contentLength = 0; ///< bytes; stays 0 for GET
    int methodCode = None;
    qint64 rangeStart = 0;
    qint64 rangeEnd = 0; ///< 0 = open
    QByteArray contentType;
    QByteArray referer;
    QByteArray host;
    QByteArray userAgent;
    QUrl url; ///< target with its query; the form of a POST replaces the query
    QString path; ///< decoded path of the target, as the responders append it to the share
    QByteArray credentials; ///< decoded HTTP Basic credentials, "user:password"
    QByteArray depth;
    QByteArray destination; ///< as sent, see `destinationTarget`
    QByteArray overwrite;
    QList<QNetworkCookie> cookies;
    Session client; ///< null until the request needs one

    /// `destination` taken apart.
    RequestTarget destinationTarget() const { return parseTarget(destination); }

private:
    void startFresh();
    bool parseMethod(QByteArray &line);
    void parseRequestTarget(const QByteArray &encoded);
    void parseHeaderLine(const QByteArray &line);
    bool parseCommonHeader(const QByteArray &line);
    void parseBodyHeader(const QByteArray &line);
    void parseRange(const QByteArray &value);
    void parseCookies(const QByteArray &value);
    void parseCredentials(const QByteArray &value);

    RequestTarget::Form targetForm = RequestTarget::Form::Malformed;
};
