#include "server/Request.h"

#include <QStringList>
#include <QUrlQuery>

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
constexpr auto sessionCookieName = "ID";
constexpr auto iconFolder = "/_i/";

bool hasDestination(int method)
{
    return method == Request::Copy || method == Request::Move;
}

/// Offset of the path in "scheme://host/path", or -1 when `target` is no absolute URL.
int absoluteFormPath(const QByteArray &target)
{
    const auto separator = target.indexOf("://");
    if (separator < 1)
        return -1;
    for (int i = 0; i < separator; ++i) {
        const char c = target.at(i);
        const bool letter = (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z');
        const bool other = (c >= '0' && c <= '9') || c == '+' || c == '-' || c == '.';
        if (!letter && (i == 0 || !other))
            return -1;
    }
    auto end = separator + 3;
    while (end < target.size() && target.at(end) != '/' && target.at(end) != '?')
        ++end;
    return int(end);
}

RequestTarget::Form formOf(const QByteArray &path)
{
    if (path.isEmpty())
        return RequestTarget::Form::Empty;
    if (path == "*")
        return RequestTarget::Form::Asterisk;
    return path.startsWith('/') ? RequestTarget::Form::Path : RequestTarget::Form::Malformed;
}

/// All of it: the toolkit's shorter call stops at a NUL.
QString fromUtf8(const QByteArray &bytes)
{
    return QString::fromUtf8(bytes.constData(), bytes.size());
}

} // namespace

RequestTarget parseTarget(const QByteArray &encoded)
{
    QByteArray rest = encoded.mid(0, int(encoded.indexOf('#')));
    if (const int start = absoluteFormPath(rest); start >= 0)
        rest = rest.mid(start);

    RequestTarget target;
    const auto mark = rest.indexOf('?');
    if (mark >= 0)
        target.query = rest.mid(int(mark) + 1);
    const QByteArray path = rest.mid(0, int(mark));
    target.form = formOf(path);
    target.path = fromUtf8(QByteArray::fromPercentEncoding(path));
    return target;
}

bool climbsOut(const QString &path)
{
    if (!path.contains(QLatin1String("..")))
        return false;

    int depth = 0;
    const QStringList segments = path.split(QLatin1Char('/'));
    for (const QString &segment : segments) {
        if (segment.isEmpty() || segment == QLatin1String("."))
            continue;
        depth += segment == QLatin1String("..") ? -1 : 1;
        if (depth < 0)
            return true;
    }
    return false;
}

Request::Request(SessionTable *manager, Channel::Traffic *traffic, bool single)
    : clients(manager)
    , channel(traffic)
    , singleFile(single)
{
}

bool Request::start()
{
    startFresh();
    QByteArray line = channel.readLine();
    if (line.size() < shortestRequestLine)
        return false;
    if (!parseMethod(line))
        return true;

    const int blank = int(line.indexOf(' '));
    parseRequestTarget(blank > 0 ? line.left(blank) : line);
    for (line = channel.readLine(); !line.isEmpty(); line = channel.readLine())
        parseHeaderLine(line);
    if (channel.framing().lengthDoubtful)
        channel.setKeepAlive(false);
    return true;
}

/// What would repeat, swallow or overwrite something if a request took it from the one before it.
/// The other fields (Range, User-Agent, Host, Depth, ...) stay as they were last sent.
void Request::startFresh()
{
    methodCode = None;
    contentLength = 0;
    contentType.clear();
    destination.clear();
    overwrite.clear();
    credentials.clear();
    if (!client)
        return;
    if (clients->holds(client))
        client->active = true;
    else
        client.reset();
}

bool Request::parseMethod(QByteArray &line)
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
    // Only what changes something must say where.
    if (targetForm == RequestTarget::Form::Empty && onlyReads())
        path = QStringLiteral("/");
    url = QUrl();
    url.setPath(path, QUrl::DecodedMode);
    if (!target.query.isEmpty())
        url.setQuery(fromUtf8(target.query));
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

    if (is("User-Agent:"))
        userAgent = value;
    else if (is("Host:"))
        host = value;
    else if (is("Connection:"))
        channel.setKeepAlive(!value.toLower().contains("close"));
    else if (is("Range:"))
        parseRange(value);
    else if (is("Cookie:"))
        parseCookies(value);
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
    static constexpr std::array<BodyHeader, 6> headers{ {
        { "Content-Type:", &Request::contentType, { None, None } },
        { "Referer:", &Request::referer, { Post, Post } },
        { "Depth:", &Request::depth, { PropFind, PropFind } },
        { "Depth:", &Request::depth, { Copy, Move } },
        { "Destination:", &Request::destination, { Copy, Move } },
        { "Overwrite:", &Request::overwrite, { Copy, Move } },
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
    if (const QByteArray value = headerValue(line, "Content-Length:"); !value.isNull())
        contentLength = channel.framing().contentLength;
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

void Request::parseCookies(const QByteArray &value)
{
    if (client)
        return;
    cookies.clear();
    setCookie(value);
    client = clients->ofCookie(getCookie(sessionCookieName));
}

void Request::parseCredentials(const QByteArray &value)
{
    const QByteArray base64 = headerValue(value, "Basic ");
    const QByteArray decoded = QByteArray::fromBase64(base64);
    credentials = decoded.mid(0, int(decoded.indexOf('\0')));
}

Session Request::session()
{
    if (!client)
        client = clients->handOut();
    return client;
}

const QNetworkCookie *Request::getCookie(const QByteArray &name) const
{
    for (const QNetworkCookie &cookie : cookies) {
        if (cookie.name() == name)
            return &cookie;
    }
    return nullptr;
}

void Request::setCookie(const QByteArray &value)
{
    const QList<QByteArray> pieces = value.split(';');
    for (const QByteArray &piece : pieces)
        addCookie(piece);
}

void Request::addCookie(const QByteArray &piece)
{
    const QByteArray pair = piece.trimmed();
    const auto equals = pair.indexOf('=');
    if (equals > 0)
        cookies.append(QNetworkCookie(pair.left(equals), pair.mid(equals + 1)));
}

void Request::endSession()
{
    if (client)
        client->end();
}

void Request::end()
{
    channel.end();
    endSession();
}

void Request::setForm(QByteArray body)
{
    url.setQuery(fromUtf8(body.replace('+', "%20")));
}

QString Request::field(const char *name) const
{
    if (!url.hasQuery())
        return {};
    return QUrlQuery(url).queryItemValue(QLatin1String(name), QUrl::FullyDecoded);
}

bool Request::climbs() const
{
    if (climbsOut(path))
        return true;
    if (path.startsWith(QLatin1String(iconFolder)) && climbsOut(path.mid(int(qstrlen(iconFolder)))))
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

bool Request::isMultipart() const
{
    return methodCode == Post && contentType.toLower().startsWith("multipart/form-data");
}

bool Request::onlyReads() const
{
    return methodCode == Get || methodCode == Head || methodCode == Options
        || methodCode == PropFind;
}
