#include "classic/http/HeadScan.h"

#include <cstring>

namespace {

constexpr int windowLead = 40; ///< bytes that the window begins before a body's supposed start
constexpr qint64 longestBody = qint64(1) << 60; ///< so that sums with offsets can't overflow
constexpr auto blankLine = "\r\n\r\n";
constexpr int blankLineSize = 4;

/// A plain run of digits (RFC 9110, section 8.6) that any disk could hold; anything else counts as
/// 0 and is doubtful.
qint64 parseLength(const QByteArray &value, bool *plain)
{
    const qint64 length = value.toLongLong(plain);
    *plain = *plain && value.at(0) >= '0' && value.at(0) <= '9' && length <= longestBody;
    return *plain ? length : 0;
}

void takeLength(const QByteArray &value, HeadScan &scan)
{
    bool plain = false;
    const qint64 length = parseLength(value, &plain);
    const bool differs = scan.lengthDeclared && scan.contentLength != length;
    scan.lengthDoubtful = scan.lengthDoubtful || !plain || differs;
    scan.lengthDeclared = true;
    scan.contentLength = length;
}

bool isMisspelt(const QByteArray &line, const char *name)
{
    const auto size = int(qstrlen(name));
    if (line.size() <= size || (line.at(size) != ' ' && line.at(size) != '\t'))
        return false;
    return qstrnicmp(line.constData(), name, qstrlen(name)) == 0
        && line.mid(size).trimmed().startsWith(':');
}

/// Goes through the lines of a head, each ended by CR LF, and notes every CR or LF that is not.
class HeadLines
{
public:
    HeadLines(const QByteArray &bytes, HeadScan &result)
        : start(bytes.constData())
        , position(start)
        , end(start + bytes.size())
        , scan(result)
    {
    }

    /// Goes on to the next line; false when there is no whole one.
    bool next()
    {
        line = position;
        const char *feed = find(line, '\n');
        for (; feed && (feed == start || feed[-1] != '\r'); feed = find(feed + 1, '\n'))
            scan.strayBreak = true;
        // A CR at the very end may yet become a pair.
        size = (feed ? feed : end) - 1 - line;
        scan.strayBreak = scan.strayBreak || (size > 0 && std::memchr(line, '\r', size_t(size)));
        position = feed ? feed + 1 : end;
        return feed != nullptr;
    }

    QByteArray current() const { return QByteArray::fromRawData(line, int(size)); }
    bool isBlank() const { return size == 0; }
    int offset() const { return int(position - start); } ///< behind the line

private:
    const char *find(const char *from, char c) const
    {
        return static_cast<const char *>(std::memchr(from, c, size_t(end - from)));
    }

    const char *start;
    const char *position;
    const char *end;
    const char *line = nullptr;
    qint64 size = 0;
    HeadScan &scan;
};

/// The window of the later looks; false when the blank line is not in it.
bool windowIsContent(const QByteArray &bytes, qint64 contentLength)
{
    const qint64 fill = bytes.size();
    const qint64 first = fill - contentLength - windowLead;
    const qint64 last = qMin(fill, first + fill - contentLength);
    const qint64 start = qMax<qint64>(0, first);
    if (last <= start)
        return false;

    const auto window = QByteArray::fromRawData(bytes.constData() + start, int(last - start));
    const auto k = window.indexOf(blankLine);
    return k >= 0 && contentLength <= fill - blankLineSize - k;
}

} // namespace

QByteArray headerValue(const QByteArray &line, const char *name)
{
    const auto size = qstrlen(name);
    if (qstrnicmp(line.constData(), name, size) != 0)
        return {};
    const QByteArray value = line.mid(int(size)).trimmed();
    return value.isNull() ? QByteArray("") : value;
}

void scanHeaderLine(const QByteArray &line, HeadScan &scan)
{
    // "Content-Length :" is no header by RFC 9112, section 5.1, but some readers take it for one.
    const auto doubtIf = [&line, &scan](const char *name) {
        scan.lengthDoubtful = scan.lengthDoubtful || isMisspelt(line, name);
    };
    // Most lines are ruled out by their first letter.
    switch (line.isEmpty() ? '\0' : line.at(0)) {
    case 'C':
    case 'c':
        doubtIf("Content-Length");
        if (const QByteArray value = headerValue(line, "Content-Length:"); !value.isNull())
            takeLength(value, scan);
        break;
    case 'T':
    case 't':
        doubtIf("Transfer-Encoding");
        if (!headerValue(line, "Transfer-Encoding:").isNull())
            scan.transferEncoding = true;
        break;
    case 'E':
    case 'e':
        if (headerValue(line, "Expect:").toLower() == "100-continue")
            scan.expectsContinue = true;
        break;
    default:
        break;
    }
}

HeadScan scanHead(const QByteArray &bytes)
{
    HeadScan scan;
    HeadLines lines(bytes, scan);
    if (!lines.next()) // the request line
        return scan;
    while (lines.next()) {
        if (lines.isBlank()) {
            scan.end = lines.offset();
            break;
        }
        scanHeaderLine(lines.current(), scan);
    }
    return scan;
}

bool canHandle(const QByteArray &bytes, const HeadScan &scan, bool firstLook)
{
    if (scan.end < 0)
        return false;
    if (bytes.at(0) != 'P' || scan.contentLength < 1)
        return true;
    if (scan.expectsContinue && !bytes.startsWith("PROPFIND"))
        return true;
    if (scan.contentLength <= bytes.size() - scan.end)
        return true;
    return !firstLook && windowIsContent(bytes, scan.contentLength);
}
