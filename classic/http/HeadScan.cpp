#include "classic/http/HeadScan.h"

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

bool hasStrayBreak(const QByteArray &head)
{
    for (int i = 0; i < head.size(); ++i) {
        const bool afterCr = i > 0 && head.at(i - 1) == '\r';
        if (afterCr != (head.at(i) == '\n'))
            return true;
    }
    return false;
}

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
    if (isMisspelt(line, "Content-Length") || isMisspelt(line, "Transfer-Encoding"))
        scan.lengthDoubtful = true;
    // Most lines are ruled out by their first letter.
    switch (line.isEmpty() ? '\0' : line.at(0)) {
    case 'C':
    case 'c':
        if (const QByteArray value = headerValue(line, "Content-Length:"); !value.isNull())
            takeLength(value, scan);
        break;
    case 'T':
    case 't':
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
    const auto blank = bytes.indexOf(blankLine);
    if (blank >= 0)
        scan.end = int(blank) + blankLineSize;

    const auto headSize = blank >= 0 ? blank : bytes.size();
    scan.strayBreak = hasStrayBreak(QByteArray::fromRawData(bytes.constData(), int(headSize)));
    auto lineStart = bytes.indexOf("\r\n") + 2;
    while (lineStart >= 2 && lineStart < headSize) {
        const auto lineEnd = bytes.indexOf("\r\n", lineStart);
        if (lineEnd < 0)
            break;
        const auto size = int(lineEnd - lineStart);
        scanHeaderLine(QByteArray::fromRawData(bytes.constData() + lineStart, size), scan);
        lineStart = lineEnd + 2;
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
