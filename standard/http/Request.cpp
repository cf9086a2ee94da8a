#include "standard/http/Request.h"

#include <QList>

#include <algorithm>
#include <cctype>
#include <cstring>
#include <limits>

namespace standard {

namespace {

constexpr int longestLength = 18; ///< digits of a body's size: sums of such fit a qint64
constexpr auto anyTarget = "*";
constexpr auto versionPrefix = "HTTP/";

using Result = std::optional<Status>; ///< why it is refused

/// RFC 9110, section 5.6.2.
bool isTokenChar(char c)
{
    return std::isalnum(static_cast<unsigned char>(c)) != 0
        || (c != '\0' && std::strchr("!#$%&'*+-.^_`|~", c) != nullptr);
}

bool isToken(const QByteArray &text)
{
    return !text.isEmpty() && std::all_of(text.begin(), text.end(), isTokenChar);
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

QByteArray withoutBlanks(const QByteArray &text)
{
    int begin = 0;
    int end = int(text.size());
    while (begin < end && isBlank(text[begin]))
        ++begin;
    while (end > begin && isBlank(text[end - 1]))
        --end;
    return text.mid(begin, end - begin);
}

Result readVersion(const QByteArray &text, Request &request)
{
    const auto isDigit = [](char c) { return c >= '0' && c <= '9'; };
    if (text.size() != 8 || !text.startsWith(versionPrefix) || !isDigit(text[5]) || text[6] != '.'
        || !isDigit(text[7]))
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

Result readRequestLine(const QByteArray &line, Request &request)
{
    const QList<QByteArray> words = line.split(' ');
    if (words.size() != 3 || !isToken(words[0]))
        return Status::BadRequest;
    if (const Result problem = readVersion(words[2], request))
        return problem;
    request.methodName = words[0];
    request.method = methodNamed(words[0]);
    if (request.method == Method::Unknown)
        return Status::NotImplemented;
    return readTarget(words[1], request);
}

/// A name with a blank behind it, and a line that goes on with the one before, are faults.
Result readField(const QByteArray &line, Request &request)
{
    const int colon = int(line.indexOf(':'));
    Field field{ line.left(colon < 0 ? 0 : colon), withoutBlanks(line.mid(colon + 1)) };
    if (!isToken(field.name) || std::any_of(field.value.begin(), field.value.end(), isControl))
        return Status::BadRequest;
    if (request.fields.size() == maxFields)
        return Status::HeadTooLarge;
    request.fields.push_back(std::move(field));
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
    const bool strange = std::any_of(host.begin(), host.end(), [](char c) {
        return isBlank(c) || std::strchr(",/?#@\\", c) != nullptr;
    });
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

Result readLines(const QByteArray &head, Request &request)
{
    bool first = true;
    for (int begin = 0; begin < head.size();) {
        const int end = int(head.indexOf('\n', begin));
        if (end <= begin || head[end - 1] != '\r')
            return Status::BadRequest;
        const QByteArray line = head.mid(begin, end - 1 - begin);
        begin = end + 1;
        if (line.isEmpty() && !first)
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
    Result problem = readLines(head, request);
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
