#include "standard/http/Reply.h"

#include <array>
#include <ctime>

namespace standard {

namespace {

constexpr auto product = "Quillon/" QUILLON_VERSION;
constexpr std::array<const char *, 7> days{ "Sun", "Mon", "Tue", "Wed", "Thu", "Fri", "Sat" };
constexpr std::array<const char *, 12> months{ "Jan", "Feb", "Mar", "Apr", "May", "Jun",
                                               "Jul", "Aug", "Sep", "Oct", "Nov", "Dec" };

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

/// Two digits.
QByteArray padded(int number)
{
    return QByteArray::number(number).rightJustified(2, '0');
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

QByteArray httpDate(qint64 secondsSinceEpoch)
{
    const auto seconds = std::time_t(secondsSinceEpoch);
    std::tm time = {};
    if (!::gmtime_r(&seconds, &time))
        return httpDate(0);
    const QByteArray year = QByteArray::number(time.tm_year + 1900).rightJustified(4, '0');
    return QByteArray(days[std::size_t(time.tm_wday)]) + ", " + padded(time.tm_mday) + ' '
        + months[std::size_t(time.tm_mon)] + ' ' + year + ' ' + padded(time.tm_hour) + ':'
        + padded(time.tm_min) + ':' + padded(time.tm_sec) + " GMT";
}

QByteArray headBlock(const ReplyHead &head)
{
    QByteArray block;
    block.reserve(512);
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
