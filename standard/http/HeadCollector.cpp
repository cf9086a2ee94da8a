#include "standard/http/HeadCollector.h"

#include "server/Face.h"
#include "standard/http/Input.h"
#include "standard/http/Request.h"

#include <utility>

namespace standard {

namespace {

constexpr int maxBlankLines = 4; ///< in front of a head

bool holdsAt(const QByteArray &bytes, int at, char c)
{
    return at < bytes.size() && bytes[at] == c;
}

} // namespace

HeadCollector::Look HeadCollector::collect(Input &input)
{
    const qint64 size = fill(input);
    if (blankLines > maxBlankLines)
        return Look::Bad;
    const QByteArray &bytes = input.buffered();
    if (findEnd(bytes))
        return Look::Ready;
    // Half a line break may yet be a blank line.
    seen = bytes == "\r" ? 0 : int(bytes.size());
    if (seen >= maxHead)
        return Look::TooLong;
    return size < 0 ? Look::Ended : Look::Incomplete;
}

/// Takes what has arrived, but the blank lines in front of it. There may be more once those are
/// gone, and nobody would tell.
qint64 HeadCollector::fill(Input &input)
{
    qint64 size = input.fill(maxHead);
    while (skipBlankLines(input))
        size = input.fill(maxHead);
    return size;
}

/// Some peers end a body with a line too many (RFC 9112, section 2.2).
bool HeadCollector::skipBlankLines(Input &input)
{
    if (seen > 0)
        return false;
    const QByteArray &bytes = input.buffered();
    int size = 0;
    while (blankLines <= maxBlankLines && holdsAt(bytes, size, '\r')
           && holdsAt(bytes, size + 1, '\n')) {
        size += 2;
        ++blankLines;
    }
    input.take(size);
    return size > 0;
}

/// A blank line ends the head, also one of a bare line feed: so that such a head is refused, not
/// waited for.
bool HeadCollector::findEnd(const QByteArray &bytes)
{
    for (int feed = int(bytes.indexOf('\n', qMax(0, seen - 2))); feed >= 0;
         feed = int(bytes.indexOf('\n', feed + 1))) {
        const int next = holdsAt(bytes, feed + 1, '\r') ? feed + 2 : feed + 1;
        if (holdsAt(bytes, next, '\n')) {
            end = next + 1;
            return true;
        }
    }
    return false;
}

QByteArray HeadCollector::take(Input &input)
{
    QByteArray head = input.buffered().left(std::exchange(end, 0));
    input.take(head.size());
    seen = 0;
    blankLines = 0;
    return head;
}

} // namespace standard
