#pragma once

#include <QByteArray>

#include <vector>

class Share;

namespace standard {

/// The paths that one file or folder is known by, as links may lead to it: first the one that it
/// was asked for by. Other spellings, on a file system that doesn't tell them apart, and hard links
/// are taken for other files.
using Paths = std::vector<QByteArray>;

/// Of what stands at `path` of the share: what a link leads to has the paths of the link, too.
/// `share` is borrowed and may be null.
Paths pathsTo(const Share *share, const QByteArray &path);

/// Of the entry itself, which may be a link that is about to go, or something to be made.
Paths pathsToEntry(const Share *share, const QByteArray &path);

} // namespace standard
