#include "standard/http/Reply.h"

#include "standard/http/HttpDate.h"

#include <algorithm>
#include <array>
#include <cstring>
#include <ctime>
#include <iterator>
#include <string>
#include <string_view>

namespace standard {

namespace {

constexpr int usualHead = 512; ///< bytes
constexpr auto product = "Server: Quillon/" QUILLON_VERSION "\r\n";

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

/// What some peer may take for the end of a line.
constexpr std::array breaks{ '\r', '\n', '\0' };

bool holdsBreak(const QByteArray &value)
{
    return std::any_of(breaks.begin(), breaks.end(), [&value](char c) {
        return std::memchr(value.constData(), c, std::size_t(value.size()));
    });
}

bool isBreak(char c)
{
    return std::find(breaks.begin(), breaks.end(), c) != breaks.end();
}

/// Collects the lines. Every reply passes here, so it is a string of chars, which grows faster.
class Block
{
public:
    explicit Block(const QByteArray &firstLine)
    {
        text.reserve(usualHead);
        append(firstLine);
        text += "\r\n";
    }

    /// Nothing in a value ends its line.
    void add(const QByteArray &name, const QByteArray &value)
    {
        append(name);
        text += ": ";
        if (holdsBreak(value))
            std::replace_copy_if(value.begin(), value.end(), std::back_inserter(text), isBreak,
                                 ' ');
        else
            append(value);
        text += "\r\n";
    }

    /// A line that is as it should be.
    void addLine(std::string_view line) { text += line; }

    QByteArray toByteArray() const { return { text.data(), int(text.size()) }; }

private:
    void append(const QByteArray &piece)
    {
        text.append(piece.constData(), std::size_t(piece.size()));
    }

    std::string text;
};

void addEnding(Block &block, const ReplyHead &head)
{
    static const QByteArray length = "Content-Length";
    if (head.ending == Ending::Length)
        block.add(length, QByteArray::number(head.length));
    else if (head.ending == Ending::Chunks)
        block.addLine("Transfer-Encoding: chunked\r\n");
}

} // namespace

QByteArray headBlock(const ReplyHead &head)
{
    static const QByteArray date = "Date";
    Block block("HTTP/1.1 " + statusText(head.status));
    block.add(date, currentDate());
    block.addLine(product);
    for (const Field &field : head.fields)
        block.add(field.name, field.value);
    addEnding(block, head);
    if (!head.keepAlive)
        block.addLine("Connection: close\r\n");
    else if (head.tellsKeepAlive)
        block.addLine("Connection: keep-alive\r\n");
    block.addLine("\r\n");
    return block.toByteArray();
}

QByteArray chunk(const QByteArray &bytes)
{
    return QByteArray::number(qlonglong(bytes.size()), 16) + "\r\n" + bytes + "\r\n";
}

} // namespace standard
