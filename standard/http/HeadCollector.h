#pragma once

#include <QByteArray>

namespace standard {

class Input;

/// Collects the head of a request, line by line as it arrives, in the buffer of the input.
class HeadCollector
{
public:
    enum class Look {
        Incomplete, ///< more has to arrive
        Ready,
        TooLong,
        Bad, ///< nothing but blank lines
        Ended ///< the peer stopped sending before the head was whole
    };

    /// Looks at what has arrived.
    Look collect(Input &input);

    /// Takes the collected head, with its blank line, out of the input and gets ready for the next.
    QByteArray take(Input &input);

private:
    qint64 fill(Input &input);
    bool skipBlankLines(Input &input);
    bool findEnd(const QByteArray &bytes);

    int blankLines = 0; ///< in front of the head
    int seen = 0; ///< bytes that were looked at
    int end = 0; ///< of the head, once it was found
};

} // namespace standard
