#include "standard/web/UploadMetadata.h"

#include "standard/http/FileTaker.h"

#include <QList>
#include <QMap>

#include <algorithm>
#include <climits>

namespace standard {

namespace {

// Copies and removals keep a file open for each level, and each one may have its lock.
constexpr int maxSegments = 64;

using Pairs = QMap<QByteArray, QByteArray>;

std::optional<Pairs> decodedPairs(const QByteArray &field)
{
    Pairs pairs;
    const QList<QByteArray> items = field.split(',');
    for (const QByteArray &item : items) {
        const QList<QByteArray> words = item.trimmed().split(' ');
        const auto value = QByteArray::fromBase64Encoding(
            words.value(1), QByteArray::Base64Encoding | QByteArray::AbortOnBase64DecodingErrors);
        if (words.front().isEmpty() || words.size() > 2 || !value || pairs.contains(words.front()))
            return {};
        pairs.insert(words.front(), *value);
    }
    return pairs;
}

bool isSegment(const QByteArray &text)
{
    return !text.isEmpty() && text != "." && text != ".." && text.size() <= NAME_MAX;
}

/// Browsers call what was dropped by a path with a "/" in front.
QByteArray withoutSlash(const QByteArray &path)
{
    return path.startsWith('/') ? path.mid(1) : path;
}

} // namespace

bool isFilePath(const QByteArray &path)
{
    const QList<QByteArray> segments = path.split('/');
    return path.size() < PATH_MAX && segments.size() <= maxSegments && !path.contains('\0')
        && std::all_of(segments.begin(), segments.end(), isSegment);
}

std::optional<UploadMetadata> parseUploadMetadata(const QByteArray &field)
{
    const std::optional<Pairs> pairs = decodedPairs(field);
    if (!pairs)
        return {};
    const QByteArray relative = withoutSlash(pairs->value("relativePath"));
    const QByteArray name = pairs->value("filename");
    if (!isFilePath(relative.isEmpty() ? name : relative) || name.contains('/'))
        return {};
    return UploadMetadata{ relative.isEmpty() ? name : relative,
                           wantedTime(pairs->value("mtime")) };
}

} // namespace standard
