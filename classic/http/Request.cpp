#include "classic/http/Request.h"

#include "classic/http/FormFields.h"
#include "classic/http/RequestReader.h"

#include <QUrl>

#include <algorithm>
#include <array>

namespace {

struct MethodName
{
    const char *name;
    Request::Method method;
    bool inSingleFileMode;
};

constexpr std::array<MethodName, 12> methods{ {
    { "GET", Request::Get, true },
    { "POST", Request::Post, true },
    { "PROPFIND", Request::PropFind, false },
    { "PUT", Request::Put, false },
    { "OPTIONS", Request::Options, false },
    { "DELETE", Request::Delete, false },
    { "COPY", Request::Copy, false },
    { "MOVE", Request::Move, false },
    { "MKCOL", Request::MkCol, false },
    { "LOCK", Request::Lock, false },
    { "UNLOCK", Request::UnLock, false },
    { "HEAD", Request::Head, false },
} };

constexpr int shortestRequestLine = 3;
constexpr auto formType = "application/x-www";

bool hasDestination(int method)
{
    return method == Request::Copy || method == Request::Move;
}

/// "https://host:port" or "host:port" without the scheme.
QByteArray authority(const QByteArray &origin)
{
    const auto separator = origin.indexOf("://");
    return origin.mid(separator < 0 ? 0 : int(separator) + 3).toLower();
}

} // namespace

bool Request::parse(RequestReader &reader, bool singleFile)
{
    startFresh();
    QByteArray line = reader.readLine();
    if (line.size() < shortestRequestLine)
        return false;
    if (!parseMethod(line, singleFile))
        return true;

    const int blank = int(line.indexOf(' '));
    parseRequestTarget(blank > 0 ? line.left(blank) : line);
    for (line = reader.readLine(); !line.isEmpty(); line = reader.readLine())
        parseHeaderLine(line);
    if (lengthDeclared)
        contentLength = reader.framing().contentLength;
    return true;
}

void Request::parseRest(const RequestReader &reader)
{
    for (const QByteArray &line : reader.restLines())
        parseHeaderLine(line);
    if (methodCode != Get)
        contentLength = reader.framing().contentLength;
}

/// What would repeat, swallow or overwrite something if a request took it from the one before it.
/// The other fields (Range, User-Agent, Host, Depth, ...) stay as they were last sent.
void Request::startFresh()
{
    methodCode = None;
    contentLength = 0;
    lengthDeclared = false;
    contentType.clear();
    destination.clear();
    overwrite.clear();
    credentials.clear();
    query.clear();
    origin.clear();
    fetchSite.clear();
    keepAlive.reset();
    bringsUserAgent = false;
    bringsCookies = false;
}

bool Request::parseMethod(QByteArray &line, bool singleFile)
{
    for (const MethodName &known : methods) {
        if (singleFile && !known.inSingleFileMode)
            continue;
        const int size = int(qstrlen(known.name));
        const bool ends = line.size() == size || line.at(qMin(size, int(line.size()) - 1)) == ' ';
        if (!ends || !line.startsWith(known.name))
            continue;
        methodCode = known.method;
        line.remove(0, size + 1);
        return true;
    }
    return false;
}

void Request::parseRequestTarget(const QByteArray &encoded)
{
    const RequestTarget target = parseTarget(encoded);
    targetForm = target.form;
    path = target.path;
    query = target.query;
    // Only what changes something must say where.
    if (targetForm == RequestTarget::Form::Empty && onlyReads())
        path = QStringLiteral("/");
}

void Request::parseHeaderLine(const QByteArray &line)
{
    if (parseCommonHeader(line) || methodCode == Get)
        return;
    parseBodyHeader(line);
}

bool Request::parseCommonHeader(const QByteArray &line)
{
    QByteArray value;
    const auto is = [&line, &value](const char *name) {
        value = headerValue(line, name);
        return !value.isNull();
    };

    if (is("User-Agent:")) {
        userAgent = value;
        bringsUserAgent = true;
    } else if (is("Host:"))
        host = value;
    else if (is("Connection:"))
        keepAlive = !value.toLower().contains("close");
    else if (is("Range:"))
        parseRange(value);
    else if (is("Cookie:"))
        setCookies(value);
    else if (is("Authorization:"))
        parseCredentials(value);
    else
        return false;
    return true;
}

void Request::parseBodyHeader(const QByteArray &line)
{
    struct BodyHeader
    {
        const char *name;
        QByteArray Request::*field;
        std::array<int, 2> methods; ///< None: every method
    };
    static constexpr std::array<BodyHeader, 7> headers{ {
        { "Content-Type:", &Request::contentType, { None, None } },
        { "Depth:", &Request::depth, { PropFind, PropFind } },
        { "Depth:", &Request::depth, { Copy, Move } },
        { "Destination:", &Request::destination, { Copy, Move } },
        { "Overwrite:", &Request::overwrite, { Copy, Move } },
        { "Origin:", &Request::origin, { Post, Post } },
        { "Sec-Fetch-Site:", &Request::fetchSite, { Post, Post } },
    } };

    for (const BodyHeader &header : headers) {
        const bool wanted = header.methods[0] == None || header.methods[0] == methodCode
            || header.methods[1] == methodCode;
        if (!wanted)
            continue;
        const QByteArray value = headerValue(line, header.name);
        if (value.isNull())
            continue;
        this->*header.field = value;
        return;
    }
    if (!headerValue(line, "Content-Length:").isNull())
        lengthDeclared = true;
}

/// "bytes=100-199", "bytes=100-", "bytes=-500" (RFC 9110, section 14.1.2) as this server takes
/// them: a lone number is the end. Several ranges change nothing.
void Request::parseRange(const QByteArray &value)
{
    const QByteArray unit("bytes=");
    const QList<QByteArray> ends = value.mid(unit.size()).split('-');
    if (ends.size() > 2)
        return;
    if (ends.size() == 2)
        rangeStart = ends.first().toLongLong();
    rangeEnd = ends.last().toLongLong();
}

void Request::parseCredentials(const QByteArray &value)
{
    const QByteArray base64 = headerValue(value, "Basic ");
    const QByteArray decoded = QByteArray::fromBase64(base64);
    credentials = decoded.mid(0, int(decoded.indexOf('\0')));
}

const Request::Cookie *Request::cookie(const char *name) const
{
    const auto found = std::find_if(cookies.begin(), cookies.end(),
                                    [name](const Cookie &known) { return known.name == name; });
    return found == cookies.end() ? nullptr : &*found;
}

void Request::setCookies(const QByteArray &value)
{
    cookies.clear();
    bringsCookies = true;
    const QList<QByteArray> pieces = value.split(';');
    for (const QByteArray &piece : pieces)
        addCookie(piece);
}

void Request::addCookie(const QByteArray &piece)
{
    const QByteArray pair = piece.trimmed();
    const auto equals = pair.indexOf('=');
    // The reply repeats them: a line break would begin a header of its own.
    const bool breaksLine = pair.contains('\n') || pair.contains('\r');
    if (equals > 0 && !breaksLine)
        cookies.push_back({ pair.left(equals), pair.mid(equals + 1) });
}

void Request::setForm(QByteArray body)
{
    query = body.replace('+', "%20");
}

QUrlQuery Request::fields() const
{
    QUrl url;
    url.setQuery(QString::fromUtf8(query.constData(), query.size()));
    return QUrlQuery(url);
}

QString Request::field(const char *name) const
{
    FormFields fields(query);
    while (fields.next()) {
        if (fields.is(name))
            return fields.value();
    }
    return {};
}

bool Request::climbs() const
{
    if (climbsOut(path))
        return true;
    if (const auto icon = restBehind(iconUrl, path); icon && climbsOut(*icon))
        return true;
    return hasDestination(methodCode) && climbsOut(destinationTarget().path);
}

bool Request::isMalformed() const
{
    const auto malformed = [](RequestTarget::Form form) {
        return form == RequestTarget::Form::Malformed || form == RequestTarget::Form::Asterisk;
    };

    if (methodCode == Options && targetForm == RequestTarget::Form::Asterisk)
        return false;
    if (targetForm == RequestTarget::Form::Empty && !onlyReads())
        return true;
    if (malformed(targetForm))
        return true;
    return hasDestination(methodCode) && malformed(destinationTarget().form);
}

bool Request::isLogin() const
{
    return field(actionField) == QLatin1String(loginAction);
}

const Request::Cookie *Request::sessionCookie() const
{
    return cookie(sessionCookieName);
}

bool Request::isForm() const
{
    return methodCode == Post && contentType.startsWith(formType);
}

bool Request::isMultipart() const
{
    return methodCode == Post && contentType.toLower().startsWith("multipart/form-data");
}

bool Request::onlyReads() const
{
    return methodCode == Get || methodCode == Head || methodCode == Options
        || methodCode == PropFind;
}

bool Request::isCrossSite() const
{
    // Browsers don't let pages write these lines. A proxy may have changed the Host, but what the
    // browser itself calls its own site is.
    if (fetchSite == "same-origin" || fetchSite == "none")
        return false;
    const bool otherOrigin = !origin.isEmpty() && authority(origin) != authority(host);
    return fetchSite == "cross-site" || otherOrigin;
}
