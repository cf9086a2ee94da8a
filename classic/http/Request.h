#pragma once

#include "classic/http/RequestTarget.h"

#include <QByteArray>
#include <QString>
#include <QUrlQuery>

#include <optional>
#include <vector>

class RequestReader;

/// The parsed form of the current request on one connection. A record: it knows neither the
/// connection nor the server. It lives across all requests of a kept-alive connection, since some
/// of its fields stay as they were last sent.
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

    struct Cookie
    {
        QByteArray name;
        QByteArray value;
    };

    static constexpr auto sessionCookieName = "ID";
    static constexpr auto actionField = "a"; ///< tells what a form is for
    static constexpr auto loginAction = "log";
    static constexpr auto desktopClient = "mc"; ///< as its User-Agent says

    /// Parses the head that `reader` collected. False when its first line is shorter than 3 bytes:
    /// the connection is to be dropped. A method that is not known leaves `methodCode` None.
    /// A server of a `singleFile` knows only GET and POST.
    bool parse(RequestReader &reader, bool singleFile);

    /// Takes over the header lines of the head's rest, see `RequestReader::restLines`.
    void parseRest(const RequestReader &reader);

    /// The first cookie of this name, or null.
    const Cookie *cookie(const char *name) const;
    const Cookie *sessionCookie() const;

    /// Reads a Cookie header's value.
    void setCookies(const QByteArray &value);

    /// Makes the form in `body` (application/x-www-form-urlencoded) the query:
    /// "+" is a blank there, "%2B" a plus.
    void setForm(QByteArray body);

    /// The items of the target's query, which a head bounds; forms are gone through by
    /// `FormFields`.
    QUrlQuery fields() const;

    /// The value of the first query item or form field of this name, decoded; empty if absent.
    QString field(const char *name) const;

    /// Whether the target, a Destination, or the name of an icon leaves its folder by ".."
    /// segments.
    bool climbs() const;

    /// Whether the target or Destination is no path that this method can act on.
    bool isMalformed() const;

    bool isForm() const;
    bool isMultipart() const;

    /// Whether it brings the password of the login page.
    bool isLogin() const;

    /// Whether it asks for a file or its head.
    bool isDownload() const { return methodCode == Get || methodCode == Head; }

    /// Whether the method changes nothing in the share.
    bool onlyReads() const;

    /// Whether a page of another site made the browser send this.
    bool isCrossSite() const;

    /// `destination` taken apart.
    RequestTarget destinationTarget() const { return parseTarget(destination); }

    int methodCode = None;
    QString path; ///< decoded path of the target
    QByteArray query; ///< of the target, encoded; the form of a POST replaces it
    qint64 contentLength = 0; ///< bytes; stays 0 for GET
    qint64 rangeStart = 0;
    qint64 rangeEnd = 0; ///< 0 = open
    QByteArray contentType;
    QByteArray host;
    QByteArray userAgent;
    QByteArray credentials; ///< decoded HTTP Basic credentials, "user:password"
    QByteArray depth;
    QByteArray destination; ///< as sent, see `destinationTarget`
    QByteArray overwrite;
    std::optional<bool> keepAlive; ///< what a Connection header asks for
    bool bringsUserAgent = false; ///< this request has a User-Agent header
    bool bringsCookies = false; ///< this request has a Cookie header, `cookies` may be older

private:
    void startFresh();
    bool parseMethod(QByteArray &line, bool singleFile);
    void parseRequestTarget(const QByteArray &encoded);
    void parseHeaderLine(const QByteArray &line);
    bool parseCommonHeader(const QByteArray &line);
    void parseBodyHeader(const QByteArray &line);
    void parseRange(const QByteArray &value);
    void parseCredentials(const QByteArray &value);
    void addCookie(const QByteArray &piece);

    RequestTarget::Form targetForm = RequestTarget::Form::Malformed;
    bool lengthDeclared = false;
    std::vector<Cookie> cookies;
    QByteArray origin;
    QByteArray fetchSite;
};
