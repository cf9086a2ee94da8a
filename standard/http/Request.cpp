#include "standard/http/Request.h"

#include <QList>

#include <algorithm>
#include <cctype>
#include <cstring>
#include <limits>
#include <string_view>

namespace standard {

namespace {

constexpr int longestLength = 18; ///< digits of a body's size: sums of such fit a qint64
constexpr std::size_t usualFields = 16;
constexpr auto anyTarget = "*";
constexpr auto versionPrefix = "HTTP/";

using Result = std::optional<Status>; ///< why it is refused

/// RFC 9110, section 5.6.2.
bool isTokenChar(char c)
{
    return std::isalnum(static_cast<unsigned char>(c)) != 0
        || (c != '\0' && std::strchr("!#$%&'*+-.^_`|~", c) != nullptr);
}

bool isToken(std::string_view text)
{
    return !text.empty() && std::all_of(text.begin(), text.end(), isTokenChar);
}

/// What no value of a field may hold.
bool isControl(char c)
{
    return (static_cast<unsigned char>(c) < ' ' && c != '\t') || c == '\x7f';
}

bool isBlank(char c)
{
    return c == ' ' || c == '\t';
}

QByteArray bytesOf(std::string_view text)
{
    return { text.data(), int(text.size()) };
}

std::string_view viewOf(const QByteArray &bytes)
{
    return { bytes.constData(), std::size_t(bytes.size()) };
}

std::string_view withoutBlanks(std::string_view text)
{
    while (!text.empty() && isBlank(text.front()))
        text.remove_prefix(1);
    while (!text.empty() && isBlank(text.back()))
        text.remove_suffix(1);
    return text;
}

QByteArray withoutBlanks(const QByteArray &text)
{
    return bytesOf(withoutBlanks(viewOf(text)));
}

Result readVersion(std::string_view text, Request &request)
{
    const auto isDigit = [](char c) { return c >= '0' && c <= '9'; };
    if (text.size() != 8 || text.substr(0, 5) != versionPrefix || !isDigit(text[5])
        || text[6] != '.' || !isDigit(text[7]))
        return Status::BadRequest;
    if (text[5] != '1')
        return Status::VersionNotSupported;
    request.minorVersion = text[7] - '0';
    return {};
}

Result readTarget(const QByteArray &text, Request &request)
{
    if (text == anyTarget && request.method == Method::Options) {
        request.isForServer = true;
        return {};
    }
    std::optional<Target> target = parseTarget(text);
    if (!target)
        return Status::BadRequest;
    request.target = std::move(*target);
    return {};
}

/// Three words with one blank between each.
Result readRequestLine(std::string_view line, Request &request)
{
    const std::size_t first = line.find(' ');
    const std::size_t last = line.rfind(' ');
    const std::string_view method = line.substr(0, first);
    if (first == last || line.find(' ', first + 1) != last || !isToken(method))
        return Status::BadRequest;
    if (const Result problem = readVersion(line.substr(last + 1), request))
        return problem;
    request.methodName = bytesOf(method);
    request.method = methodNamed(request.methodName);
    if (request.method == Method::Unknown)
        return Status::NotImplemented;
    return readTarget(bytesOf(line.substr(first + 1, last - first - 1)), request);
}

/// A name with a blank behind it, and a line that goes on with the one before, are faults.
Result readField(std::string_view line, Request &request)
{
    const std::size_t colon = std::min(line.find(':'), line.size());
    const std::string_view name = line.substr(0, colon);
    if (!isToken(name) || colon == line.size())
        return Status::BadRequest;
    const std::string_view value = withoutBlanks(line.substr(colon + 1));
    if (std::any_of(value.begin(), value.end(), isControl))
        return Status::BadRequest;
    if (request.fields.size() == maxFields)
        return Status::HeadTooLarge;
    request.fields.push_back({ bytesOf(name), bytesOf(value) });
    return {};
}

int countOf(const Request &request, const char *name)
{
    return int(std::count_if(request.fields.begin(), request.fields.end(), [name](const Field &f) {
        return qstricmp(f.name.constData(), name) == 0;
    }));
}

/// RFC 9112, section 3.2.
Result checkHost(const Request &request)
{
    const int count = countOf(request, "Host");
    if (count > 1 || (count == 0 && request.minorVersion > 0))
        return Status::BadRequest;
    const QByteArray host = request.value("Host");
    const bool strange = viewOf(host).find_first_of(" \t,/?#@\\") != std::string_view::npos;
    return strange ? Result(Status::BadRequest) : Result();
}

/// One length, which several lines may repeat (RFC 9112, section 6.3).
Result readLength(const QByteArray &value, Framing &framing)
{
    const QList<QByteArray> lengths = value.split(',');
    const QByteArray first = withoutBlanks(lengths.front());
    const auto isGood = [&first](const QByteArray &text) { return withoutBlanks(text) == first; };
    const std::optional<qint64> length = numberOf(first);
    if (!length || first.size() > longestLength
        || !std::all_of(lengths.begin(), lengths.end(), isGood))
        return Status::BadRequest;
    framing.contentLength = *length;
    return {};
}

Result readCoding(const Request &request, const QByteArray &value, Framing &framing)
{
    const std::vector<QByteArray> codings = listItems(value);
    const auto isChunked = [](const QByteArray &coding) {
        return qstricmp(coding.constData(), "chunked") == 0;
    };
    const auto chunked = std::count_if(codings.begin(), codings.end(), isChunked);
    if (request.minorVersion == 0 || chunked != 1 || !isChunked(codings.back()))
        return Status::BadRequest;
    if (codings.size() > 1)
        return Status::NotImplemented;
    framing.chunked = true;
    return {};
}

Result readFraming(Request &request)
{
    const std::optional<QByteArray> length = request.field("Content-Length");
    const std::optional<QByteArray> coding = request.field("Transfer-Encoding");
    if (length && coding)
        return Status::BadRequest;
    if (length)
        return readLength(*length, request.framing);
    if (coding)
        return readCoding(request, *coding, request.framing);
    return {};
}

/// RFC 9110, section 10.1.1.
Result readExpectation(Request &request)
{
    const std::optional<QByteArray> expected = request.field("Expect");
    if (!expected || request.minorVersion == 0)
        return {};
    if (qstricmp(expected->constData(), "100-continue") != 0)
        return Status::ExpectationFailed;
    request.framing.expectsContinue = request.framing.hasBody();
    return {};
}

void readPersistence(Request &request)
{
    const QByteArray options = request.value("Connection");
    const bool asked = request.minorVersion > 0 || listHolds(options, "keep-alive");
    request.keepAlive = asked && !listHolds(options, "close");
}

Result readLines(std::string_view head, Request &request)
{
    bool first = true;
    request.fields.reserve(usualFields);
    while (!head.empty()) {
        const std::size_t end = head.find('\n');
        if (end == std::string_view::npos || end == 0 || head[end - 1] != '\r')
            return Status::BadRequest;
        const std::string_view line = head.substr(0, end - 1);
        head.remove_prefix(end + 1);
        if (line.empty() && !first)
            break;
        const Result problem = first ? readRequestLine(line, request) : readField(line, request);
        if (problem)
            return problem;
        first = false;
    }
    return first ? Result(Status::BadRequest) : Result();
}

} // namespace

std::optional<QByteArray> Request::field(const char *name) const
{
    std::optional<QByteArray> joined;
    for (const Field &field : fields) {
        if (qstricmp(field.name.constData(), name) != 0)
            continue;
        joined = joined ? *joined + ", " + field.value : field.value;
    }
    return joined;
}

std::variant<Request, Status> parseHead(const QByteArray &head)
{
    Request request;
    Result problem = readLines(viewOf(head), request);
    if (!problem)
        problem = checkHost(request);
    if (!problem)
        problem = readFraming(request);
    if (!problem)
        problem = readExpectation(request);
    if (problem)
        return *problem;
    readPersistence(request);
    return request;
}

std::optional<qint64> numberOf(const QByteArray &digits)
{
    const bool good = !digits.isEmpty()
        && std::all_of(digits.begin(), digits.end(), [](char c) { return c >= '0' && c <= '9'; });
    if (!good)
        return {};
    bool fits = false;
    const qint64 number = digits.toLongLong(&fits);
    return fits ? number : std::numeric_limits<qint64>::max();
}

std::vector<QByteArray> listItems(const QByteArray &value)
{
    std::vector<QByteArray> items;
    if (value.isEmpty())
        return items;
    for (const QByteArray &part : value.split(',')) {
        if (QByteArray item = withoutBlanks(part); !item.isEmpty())
            items.push_back(std::move(item));
    }
    return items;
}

bool listHolds(const QByteArray &value, const char *item)
{
    const std::vector<QByteArray> items = listItems(value);
    return std::any_of(items.begin(), items.end(), [item](const QByteArray &held) {
        return qstricmp(held.constData(), item) == 0;
    });
}

} // namespace standard
