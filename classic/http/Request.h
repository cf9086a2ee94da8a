#pragma once

#include "classic/http/Cookies.h"
#include "classic/http/RequestTarget.h"

#include <QByteArray>
#include <QString>
#include <QUrlQuery>

#include <optional>

/// The parsed form of the current request on one connection, see `RequestParser`. A record: it
/// knows neither the connection nor the server. It lives across all requests of a kept-alive
/// connection, since some of its fields stay as they were last sent.
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

    static constexpr auto sessionCookieName = "ID";
    static constexpr auto actionField = "a"; ///< tells what a form is for
    static constexpr auto loginAction = "log";
    static constexpr auto desktopClient = "mc"; ///< as its User-Agent says

    const Cookies::Cookie *sessionCookie() const;

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
    bool isCrossSite(bool encrypted) const;

    /// Whether such a page made it change something, or log in; links of theirs are welcome.
    bool isCrossSiteChange(bool encrypted) const
    {
        return (!onlyReads() || isLogin()) && isCrossSite(encrypted);
    }

    /// `destination` taken apart.
    RequestTarget destinationTarget() const { return parseTarget(destination); }

    int methodCode = None;
    RequestTarget::Form targetForm = RequestTarget::Form::Malformed;
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
    Cookies cookies; ///< perhaps of an earlier request
    bool bringsCookies = false; ///< this request has a Cookie header
    QByteArray origin;
    QByteArray fetchSite;
};
