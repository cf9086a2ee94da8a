#pragma once

#include <QByteArray>
#include <QtGlobal>

#include <vector>

namespace standard {

/// A part of a file that is not empty.
struct ByteRange
{
    qint64 first = 0; ///< offset
    qint64 count = 0; ///< bytes

    qint64 end() const { return first + count; }
    bool operator==(const ByteRange &other) const
    {
        return first == other.first && count == other.count;
    }
};

/// What a Range asks of a file (RFC 9110, section 14).
struct RangeAnswer
{
    enum class Kind {
        Whole, ///< it asks for nothing that is understood here, or for too much
        Parts,
        Unsatisfiable
    };

    Kind kind = Kind::Whole;
    std::vector<ByteRange> parts = {}; ///< as asked for; by offset once some were merged
};

constexpr std::size_t maxParts = 16; ///< of one reply

/// What `value`, the text of the field, means for a file of `size` bytes. Ranges that overlap or
/// touch are merged.
RangeAnswer rangesOf(const QByteArray &value, qint64 size);

/// "bytes 0-9/100"
QByteArray contentRange(const ByteRange &range, qint64 size);

} // namespace standard
