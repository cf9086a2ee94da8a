#include "standard/http/Reply.h"

#include "standard/http/HttpDate.h"

#include <ctime>

namespace standard {

namespace {

constexpr int usualHead = 512; ///< bytes
constexpr auto product = "Quillon/" QUILLON_VERSION;

/// The time now; made once a second.
const QByteArray &currentDate()
{
    thread_local std::time_t made = 0;
    thread_local QByteArray date;
    const std::time_t now = std::time(nullptr);
    if (now != made) {
        made = now;
        date = httpDate(now);
    }
    return date;
}

/// Nothing in a value ends its line.
QByteArray lineSafe(QByteArray value)
{
    for (char &c : value) {
        if ((static_cast<unsigned char>(c) < ' ' && c != '\t') || c == '\x7f')
            c = ' ';
    }
    return value;
}

void append(QByteArray &block, const char *name, const QByteArray &value)
{
    block += name;
    block += ": ";
    block += value;
    block += "\r\n";
}

void appendEnding(QByteArray &block, const ReplyHead &head)
{
    if (head.ending == Ending::Length)
        append(block, "Content-Length", QByteArray::number(head.length));
    else if (head.ending == Ending::Chunks)
        append(block, "Transfer-Encoding", "chunked");
}

} // namespace

QByteArray headBlock(const ReplyHead &head)
{
    QByteArray block;
    block.reserve(usualHead);
    block += "HTTP/1.1 ";
    block += statusText(head.status);
    block += "\r\n";
    append(block, "Date", currentDate());
    append(block, "Server", product);
    for (const Field &field : head.fields)
        append(block, field.name.constData(), lineSafe(field.value));
    appendEnding(block, head);
    if (!head.keepAlive)
        append(block, "Connection", "close");
    else if (head.tellsKeepAlive)
        append(block, "Connection", "keep-alive");
    block += "\r\n";
    return block;
}

QByteArray chunk(const QByteArray &bytes)
{
    return QByteArray::number(qlonglong(bytes.size()), 16) + "\r\n" + bytes + "\r\n";
}

} // namespace standard
