#pragma once

#include <QtGlobal>

namespace standard {

/// Takes a chunked body apart (RFC 9112, section 7.1). Extensions and trailers are skipped, within
/// bounds. Feed it any pieces.
class ChunkDecoder
{
public:
    static constexpr int maxSizeLine = 4 * 1024; ///< bytes, extensions included
    static constexpr int maxTrailers = 8 * 1024; ///< bytes

    struct Step
    {
        qint64 used = 0; ///< bytes of the input
        qint64 content = 0; ///< bytes put out
    };

    /// Decodes from `in` to `out`, until one of them is used up, or the body is at its end or bad.
    Step decode(const char *in, qint64 size, char *out, qint64 room);

    bool isAtEnd() const { return state == State::End; }

    /// Nobody can say where the body ends.
    bool isBad() const { return state == State::Bad; }

    /// Bytes of content that follow for sure, and may be taken past the decoder.
    qint64 contentLeft() const { return state == State::Content ? left : 0; }
    void passContent(qint64 size);

private:
    enum class State {
        Size, ///< the digits of a chunk's size
        Extension,
        SizeEnd, ///< the LF behind it
        Content,
        ContentEnd, ///< the CR behind it
        ContentEndFeed,
        TrailerStart,
        Trailer,
        TrailerEnd, ///< its LF
        LastFeed, ///< of the blank line
        End,
        Bad
    };

    void takeChar(char c);
    void takeSize(char c);
    State afterSize(char c) const;
    void takeTrailer(char c);
    void expect(char c, char wanted, State next);
    void endSizeLine();

    State state = State::Size;
    qint64 left = 0; ///< of the chunk
    int digits = 0;
    int lineSize = 0;
    int trailers = 0; ///< bytes
};

} // namespace standard
