#include "standard/http/HeadCollector.h"

#include "standard/http/Input.h"
#include "standard/http/Request.h"

#include <utility>

namespace standard {

HeadCollector::Look HeadCollector::collect(Input &input)
{
    const qint64 size = input.fill(maxHead);
    if (seen == 0)
        skipBlankLines(input);
    const QByteArray &bytes = input.buffered();
    if (findEnd(bytes))
        return Look::Ready;
    seen = int(bytes.size());
    if (seen >= maxHead)
        return Look::TooLong;
    return size < 0 ? Look::Ended : Look::Incomplete;
}

/// Some peers end a body with a line too many (RFC 9112, section 2.2).
void HeadCollector::skipBlankLines(Input &input)
{
    while (input.buffered().startsWith("\r\n"))
        input.take(2);
}

/// A blank line ends the head, also one of a bare line feed: so that such a head is refused, not
/// waited for.
bool HeadCollector::findEnd(const QByteArray &bytes)
{
    for (int feed = int(bytes.indexOf('\n', qMax(0, seen - 2))); feed >= 0;
         feed = int(bytes.indexOf('\n', feed + 1))) {
        const int next = bytes.mid(feed + 1, 1) == "\r" ? feed + 2 : feed + 1;
        if (next < bytes.size() && bytes[next] == '\n') {
            end = next + 1;
            return true;
        }
    }
    return false;
}

QByteArray HeadCollector::take(Input &input)
{
    const QByteArray head = input.buffered().left(std::exchange(end, 0));
    input.take(head.size());
    seen = 0;
    return head;
}

} // namespace standard
