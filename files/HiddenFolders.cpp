#include "files/HiddenFolders.h"

#include "files/Entry.h"
#include "files/Mounts.h"
#include "files/Path.h"

#include <QDir>

#include <algorithm>
#include <array>
#include <climits>
#include <cstdlib>
#include <utility>

#include <fcntl.h>

namespace {

/// `folder` without links, as far as it stands already.
QByteArray canonicalPath(const QString &folder)
{
    QByteArray standing = nativePath(QDir::cleanPath(folder));
    QByteArray missing;
    std::array<char, PATH_MAX> found;
    while (!::realpath(standing.constData(), found.data())) {
        const auto slash = standing.lastIndexOf('/');
        if (slash <= 0)
            return joinedPath(standing, missing);
        missing = joinedPath(standing.mid(slash + 1), missing);
        standing.truncate(slash);
    }
    return joinedPath(found.data(), missing);
}

} // namespace

HiddenFolders::HiddenFolders(const HiddenFolders &others, FileDescriptor shared)
    : hidden(others.hidden)
    , border(std::move(shared))
{
    const EntryFacts facts = openFacts(border.get());
    borderDevice = facts.device;
    borderInode = facts.inode;
}

HiddenFolders::HiddenFolders(const QStringList &folders, FileDescriptor shared)
    : HiddenFolders(HiddenFolders(), std::move(shared))
{
    for (const QString &folder : folders) {
        const QByteArray path = canonicalPath(folder);
        add(path);
        for (const QByteArray &other : otherPaths(path))
            add(other);
    }
}

void HiddenFolders::add(const QByteArray &path)
{
    const EntryFacts facts = entryFacts(AT_FDCWD, path.constData());
    hidden.push_back({ caselessPath(path), facts.device, facts.inode });
}

bool HiddenFolders::covers(const QByteArray &path) const
{
    if (isOutside(path))
        return true;
    const QByteArray name = caselessPath(path);
    const bool named = std::any_of(hidden.cbegin(), hidden.cend(), [&name](const Folder &folder) {
        return isWithin(name, folder.path);
    });
    return named || isReachedBy(path);
}

/// By where the share stands now: it may have been renamed.
bool HiddenFolders::isOutside(const QByteArray &path) const
{
    if (!border.isOpen())
        return false;
    const QByteArray top = pathOf(border.get());
    return top.isEmpty() || !isWithin(path, top);
}

/// Whether the way there leads through one of them, by a mount that was made since.
bool HiddenFolders::isReachedBy(const QByteArray &path) const
{
    const auto isHiddenAt = [this](const QByteArray &folder) {
        return has(entryFacts(AT_FDCWD, folder.constData()));
    };
    for (auto slash = path.indexOf('/', 1); slash >= 0; slash = path.indexOf('/', slash + 1)) {
        if (isHiddenAt(path.left(slash)))
            return true;
    }
    return isHiddenAt(path);
}

bool HiddenFolders::coversOpen(int descriptor) const
{
    if (isEmpty())
        return false;
    const QByteArray path = pathOf(descriptor);
    return path.isEmpty() || covers(path);
}

bool HiddenFolders::liesIn(const QByteArray &path) const
{
    const QByteArray name = caselessPath(path);
    return std::any_of(hidden.cbegin(), hidden.cend(),
                       [&name](const Folder &folder) { return isWithin(folder.path, name); });
}

bool HiddenFolders::has(const EntryFacts &facts) const
{
    return facts.folder
        && std::any_of(hidden.cbegin(), hidden.cend(), [&facts](const Folder &folder) {
               return folder.inode == facts.inode && folder.device == facts.device;
           });
}

std::vector<QByteArray> HiddenFolders::below(const QByteArray &top) const
{
    const QByteArray name = caselessPath(top);
    std::vector<QByteArray> paths;
    for (const Folder &folder : hidden) {
        if (folder.path != name && isWithin(folder.path, name))
            paths.push_back(pathBelow(folder.path, name));
    }
    return paths;
}
