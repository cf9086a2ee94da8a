#include "server/MultipartCutter.h"

MultipartCutter::MultipartCutter(const QByteArray &delimiter)
    : matcher(delimiter)
{
}

QByteArray MultipartCutter::feed(const QByteArray &piece)
{
    if (found)
        return {};

    QByteArray bytes = tail + piece;
    const auto delimiter = matcher.indexIn(bytes);
    if (delimiter >= 0) {
        found = true;
        tail.clear();
        bytes.truncate(delimiter);
        return bytes;
    }
    const auto held = qMin(bytes.size(), matcher.pattern().size() - 1);
    tail = bytes.right(held);
    bytes.chop(held);
    return bytes;
}
