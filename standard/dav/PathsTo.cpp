#include "standard/dav/PathsTo.h"

#include "files/Path.h"
#include "files/Share.h"

#include <algorithm>

#include <fcntl.h>

namespace standard {

namespace {

QByteArray absolutePath(const Share &share, const QByteArray &path)
{
    return pathOf(share.open(path, O_PATH | O_CLOEXEC).get());
}

/// What lies elsewhere has no other name in the share.
void add(Paths &paths, const Share &share, const QByteArray &absolute)
{
    const QByteArray root = absolutePath(share.whole() ? *share.whole() : share, {});
    if (root.isEmpty() || !isWithin(absolute, root))
        return;
    const QByteArray name = absolute == root ? QByteArray("") : pathBelow(absolute, root);
    if (std::find(paths.begin(), paths.end(), name) == paths.end())
        paths.push_back(name);
}

} // namespace

Paths pathsToEntry(const Share *share, const QByteArray &path)
{
    Paths paths{ path };
    if (!share || path.isEmpty())
        return paths;
    const QByteArray folder = absolutePath(*share, parentPath(path));
    if (!folder.isEmpty())
        add(paths, *share, joinedPath(folder, path.mid(path.lastIndexOf('/') + 1)));
    return paths;
}

Paths pathsTo(const Share *share, const QByteArray &path)
{
    Paths paths = pathsToEntry(share, path);
    if (share && !path.isEmpty())
        add(paths, *share, absolutePath(*share, path));
    return paths;
}

} // namespace standard
