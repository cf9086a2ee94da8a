#include "standard/http/Ranges.h"

#include "standard/http/Request.h"

#include <algorithm>
#include <limits>
#include <optional>

namespace standard {

namespace {

constexpr auto unit = "bytes";
constexpr std::size_t maxAsked = 128; ///< ranges; whoever asks for more means no good

/// One range of a list. None when it is none; empty when it lies past the end.
std::optional<ByteRange> rangeOf(const QByteArray &text, qint64 size)
{
    const int dash = int(text.indexOf('-'));
    if (dash < 0)
        return {};
    const QByteArray last = text.mid(dash + 1);
    if (dash == 0) {
        const std::optional<qint64> count = numberOf(last);
        if (!count)
            return {};
        const qint64 taken = std::min(*count, size);
        return ByteRange{ size - taken, taken };
    }
    const std::optional<qint64> first = numberOf(text.left(dash));
    const std::optional<qint64> until =
        last.isEmpty() ? std::numeric_limits<qint64>::max() : numberOf(last);
    if (!first || !until || *until < *first)
        return {};
    if (*first >= size)
        return ByteRange{};
    return ByteRange{ *first, std::min(*until, size - 1) - *first + 1 };
}

void merge(std::vector<ByteRange> &parts)
{
    std::vector<ByteRange> sorted = parts;
    std::sort(sorted.begin(), sorted.end(),
              [](const ByteRange &a, const ByteRange &b) { return a.first < b.first; });
    std::vector<ByteRange> merged;
    for (const ByteRange &part : sorted) {
        if (merged.empty() || merged.back().end() < part.first)
            merged.push_back(part);
        else
            merged.back().count = std::max(merged.back().end(), part.end()) - merged.back().first;
    }
    if (merged.size() < parts.size())
        parts = std::move(merged);
}

} // namespace

RangeAnswer rangesOf(const QByteArray &value, qint64 size)
{
    const int equals = int(value.indexOf('='));
    if (equals < 0 || qstricmp(value.left(equals).trimmed().constData(), unit) != 0)
        return {};
    const std::vector<QByteArray> asked = listItems(value.mid(equals + 1));
    if (asked.empty() || asked.size() > maxAsked)
        return {};
    RangeAnswer answer{ RangeAnswer::Kind::Parts };
    for (const QByteArray &text : asked) {
        const std::optional<ByteRange> range = rangeOf(text, size);
        if (!range)
            return {};
        if (range->count > 0)
            answer.parts.push_back(*range);
    }
    merge(answer.parts);
    if (answer.parts.size() > maxParts)
        return {};
    if (answer.parts.empty())
        answer.kind = RangeAnswer::Kind::Unsatisfiable;
    return answer;
}

QByteArray contentRange(const ByteRange &range, qint64 size)
{
    return QByteArray(unit) + ' ' + QByteArray::number(range.first) + '-'
        + QByteArray::number(range.end() - 1) + '/' + QByteArray::number(size);
}

} // namespace standard
