#include "standard/http/Reply.h"

#include "server/UsualLines.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cstring>
#include <ctime>
#include <iterator>
#include <limits>
#include <string>
#include <string_view>

namespace standard {

namespace {

constexpr int usualHead = 512; ///< bytes

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
    Block() { text.reserve(usualHead); }

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

    void add(const Fields &fields)
    {
        for (const Field &field : fields)
            add(field.name, field.value);
    }

    void addLength(qint64 bytes)
    {
        std::array<char, std::numeric_limits<qint64>::digits10 + 2> digits;
        const char *end = std::to_chars(digits.begin(), digits.end(), bytes).ptr;
        text += "Content-Length: ";
        text.append(digits.data(), std::size_t(end - digits.data()));
        text += "\r\n";
    }

    /// Lines that are as they should be.
    void addLine(std::string_view line) { text += line; }
    void addLines(const QByteArray &lines) { append(lines); }

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
    if (head.ending == Ending::Length)
        block.addLength(head.length);
    else if (head.ending == Ending::Chunks)
        block.addLine("Transfer-Encoding: chunked\r\n");
}

} // namespace

QByteArray fieldLines(const Fields &fields)
{
    Block block;
    block.add(fields);
    return block.toByteArray();
}

QByteArray headBlock(const ReplyHead &head)
{
    Block block;
    block.addLine("HTTP/1.1 ");
    block.addLines(statusText(head.status));
    block.addLine("\r\n");
    block.addLines(usualLines());
    block.addLines(head.lines);
    block.add(head.fields);
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
    constexpr int mostAround = 32; ///< bytes: the size and two ends of lines
    QByteArray framed;
    framed.reserve(bytes.size() + mostAround);
    framed += QByteArray::number(qlonglong(bytes.size()), 16);
    framed += "\r\n";
    framed += bytes;
    framed += "\r\n";
    return framed;
}

} // namespace standard
