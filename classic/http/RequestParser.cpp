#include "classic/http/RequestParser.h"

#include "classic/http/Request.h"
#include "classic/http/RequestReader.h"

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

} // namespace

bool RequestParser::parse(RequestReader &reader, bool singleFile)
{
    startFresh();
    QByteArray line = reader.readLine();
    if (line.size() < shortestRequestLine)
        return false;
    if (!parseMethod(line, singleFile))
        return true;

    const int blank = int(line.indexOf(' '));
    parseTargetOf(blank > 0 ? line.left(blank) : line);
    for (line = reader.readLine(); !line.isEmpty(); line = reader.readLine())
        parseHeaderLine(line);
    if (lengthDeclared)
        request.contentLength = reader.framing().contentLength;
    return true;
}

QByteArray RequestParser::methodName(const Request &request)
{
    for (const MethodName &row : methods) {
        if (row.method == request.methodCode)
            return row.name;
    }
    return {};
}

void RequestParser::parseRest(const RequestReader &reader)
{
    for (const QByteArray &line : reader.restLines())
        parseHeaderLine(line);
    if (request.methodCode != Request::Get)
        request.contentLength = reader.framing().contentLength;
}

/// What would repeat, swallow or overwrite something if a request took it from the one before it.
/// The other fields (Range, User-Agent, Host, Depth, ...) stay as they were last sent.
void RequestParser::startFresh()
{
    request.methodCode = Request::None;
    request.contentLength = 0;
    request.contentType.clear();
    request.destination.clear();
    request.overwrite.clear();
    request.credentials.clear();
    request.query.clear();
    request.origin.clear();
    request.fetchSite.clear();
    request.keepAlive.reset();
    request.bringsUserAgent = false;
    request.bringsCookies = false;
}

bool RequestParser::parseMethod(QByteArray &line, bool singleFile)
{
    for (const MethodName &known : methods) {
        if (singleFile && !known.inSingleFileMode)
            continue;
        const int size = int(qstrlen(known.name));
        const bool ends = line.size() == size || line.at(qMin(size, int(line.size()) - 1)) == ' ';
        if (!ends || !line.startsWith(known.name))
            continue;
        request.methodCode = known.method;
        line.remove(0, size + 1);
        return true;
    }
    return false;
}

void RequestParser::parseTargetOf(const QByteArray &encoded)
{
    const RequestTarget target = parseTarget(encoded);
    request.targetForm = target.form;
    request.path = target.path;
    request.query = target.query;
    // Only what changes something must say where.
    if (target.form == RequestTarget::Form::Empty && request.onlyReads())
        request.path = QStringLiteral("/");
}

void RequestParser::parseHeaderLine(const QByteArray &line)
{
    if (parseCommonHeader(line) || request.methodCode == Request::Get)
        return;
    parseBodyHeader(line);
}

bool RequestParser::parseCommonHeader(const QByteArray &line)
{
    QByteArray value;
    const auto is = [&line, &value](const char *name) {
        value = headerValue(line, name);
        return !value.isNull();
    };

    if (is("User-Agent:")) {
        request.userAgent = value;
        request.bringsUserAgent = true;
    } else if (is("Host:"))
        request.host = value;
    else if (is("Connection:"))
        request.keepAlive = !value.toLower().contains("close");
    else if (is("Origin:"))
        request.origin = value;
    else if (is("Sec-Fetch-Site:"))
        request.fetchSite = value;
    else if (is("Range:"))
        parseRange(value);
    else if (is("Cookie:")) {
        request.cookies.set(value);
        request.bringsCookies = true;
    } else if (is("Authorization:"))
        parseCredentials(value);
    else
        return false;
    return true;
}

void RequestParser::parseBodyHeader(const QByteArray &line)
{
    struct BodyHeader
    {
        const char *name;
        QByteArray Request::*field;
        std::array<int, 2> methods; ///< None: every method
    };
    static constexpr std::array<BodyHeader, 5> headers{ {
        { "Content-Type:", &Request::contentType, { Request::None, Request::None } },
        { "Depth:", &Request::depth, { Request::PropFind, Request::PropFind } },
        { "Depth:", &Request::depth, { Request::Copy, Request::Move } },
        { "Destination:", &Request::destination, { Request::Copy, Request::Move } },
        { "Overwrite:", &Request::overwrite, { Request::Copy, Request::Move } },
    } };

    for (const BodyHeader &header : headers) {
        const int method = request.methodCode;
        const bool wanted = header.methods[0] == Request::None || header.methods[0] == method
            || header.methods[1] == method;
        if (!wanted)
            continue;
        const QByteArray value = headerValue(line, header.name);
        if (value.isNull())
            continue;
        request.*header.field = value;
        return;
    }
    if (!headerValue(line, "Content-Length:").isNull())
        lengthDeclared = true;
}

/// "bytes=100-199", "bytes=100-", "bytes=-500" (RFC 9110, section 14.1.2) as this server takes
/// them: a lone number is the end. Several ranges change nothing.
void RequestParser::parseRange(const QByteArray &value)
{
    const QByteArray unit("bytes=");
    const QList<QByteArray> ends = value.mid(unit.size()).split('-');
    if (ends.size() > 2)
        return;
    if (ends.size() == 2)
        request.rangeStart = ends.first().toLongLong();
    request.rangeEnd = ends.last().toLongLong();
}

void RequestParser::parseCredentials(const QByteArray &value)
{
    const QByteArray base64 = headerValue(value, "Basic ");
    const QByteArray decoded = QByteArray::fromBase64(base64);
    request.credentials = decoded.mid(0, int(decoded.indexOf('\0')));
}
