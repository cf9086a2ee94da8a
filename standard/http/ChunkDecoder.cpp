#include "standard/http/ChunkDecoder.h"

#include <algorithm>
#include <cstring>

namespace standard {

namespace {

constexpr int maxDigits = 15; ///< of hexadecimal ones; a qint64 surely holds as many
constexpr auto hexDigits = "0123456789abcdef";

/// The value of a hexadecimal digit; -1 when it is none.
int hexValue(char c)
{
    const char lower = c >= 'A' && c <= 'F' ? char(c - 'A' + 'a') : c;
    const char *found = lower != '\0' ? std::strchr(hexDigits, lower) : nullptr;
    return found ? int(found - hexDigits) : -1;
}

} // namespace

ChunkDecoder::Step ChunkDecoder::decode(const char *in, qint64 size, char *out, qint64 room)
{
    Step step;
    while (step.used < size && !isAtEnd() && !isBad()) {
        if (state != State::Content) {
            takeChar(in[step.used++]);
            continue;
        }
        const qint64 count = std::min({ left, size - step.used, room - step.content });
        if (count == 0)
            break;
        std::memcpy(out + step.content, in + step.used, std::size_t(count));
        step.used += count;
        step.content += count;
        passContent(count);
    }
    return step;
}

void ChunkDecoder::passContent(qint64 size)
{
    left -= size;
    if (left == 0)
        state = State::ContentEnd;
}

void ChunkDecoder::takeChar(char c)
{
    switch (state) {
    case State::Size:
    case State::Extension:
        return takeSize(c);
    case State::SizeEnd:
        return c == '\n' ? endSizeLine() : expect(c, '\n', State::Bad);
    case State::ContentEnd:
        return expect(c, '\r', State::ContentEndFeed);
    case State::ContentEndFeed:
        return expect(c, '\n', State::Size);
    case State::TrailerStart:
    case State::Trailer:
        return takeTrailer(c);
    case State::TrailerEnd:
        return expect(c, '\n', State::TrailerStart);
    case State::LastFeed:
        return expect(c, '\n', State::End);
    case State::Content:
    case State::End:
    case State::Bad:
        return;
    }
}

void ChunkDecoder::expect(char c, char wanted, State next)
{
    state = c == wanted ? next : State::Bad;
}

void ChunkDecoder::takeSize(char c)
{
    const int value = state == State::Size ? hexValue(c) : -1;
    const bool isTooLong = ++lineSize > maxSizeLine || (value >= 0 && digits == maxDigits);
    if (isTooLong || (value < 0 && digits == 0)) {
        state = State::Bad;
    } else if (value >= 0) {
        left = left * 16 + value;
        ++digits;
    } else {
        state = afterSize(c);
    }
}

ChunkDecoder::State ChunkDecoder::afterSize(char c) const
{
    if (c == '\r')
        return State::SizeEnd;
    const bool extends = state == State::Extension || c == ';' || c == ' ' || c == '\t';
    return extends && c != '\n' ? State::Extension : State::Bad;
}

void ChunkDecoder::endSizeLine()
{
    state = left > 0 ? State::Content : State::TrailerStart;
    digits = 0;
    lineSize = 0;
}

void ChunkDecoder::takeTrailer(char c)
{
    const bool starts = state == State::TrailerStart;
    if (++trailers > maxTrailers || c == '\n')
        state = State::Bad;
    else if (c == '\r')
        state = starts ? State::LastFeed : State::TrailerEnd;
    else
        state = State::Trailer;
}

} // namespace standard
