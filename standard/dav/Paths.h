#pragma once

#include <QByteArray>

#include <vector>

namespace standard {

// Paths relative to the share's root, "" that itself, with single "/" between their segments.

/// Whether `entry` stands below `path`, at any depth.
inline bool isBelow(const QByteArray &entry, const QByteArray &path)
{
    if (path.isEmpty())
        return !entry.isEmpty();
    return entry.size() > path.size() && entry.startsWith(path) && entry.at(path.size()) == '/';
}

/// The share's root, the folders on the way, and `path` itself: views of its bytes, as copies of
/// all would be megabytes of a long one. To be used while it lives.
std::vector<QByteArray> withAncestors(const QByteArray &path);

/// The first entry of an ordered container by path that may stand below `path`; as long as they do
/// the next ones follow.
template <typename Container> auto firstBelow(Container &byPath, const QByteArray &path)
{
    return path.isEmpty() ? byPath.upper_bound(path) : byPath.lower_bound(path + '/');
}

} // namespace standard
