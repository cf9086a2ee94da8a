#include "files/HiddenFolders.h"

#include "files/Entry.h"
#include "files/Path.h"

#include <algorithm>
#include <filesystem>
#include <system_error>

#include <fcntl.h>

namespace fs = std::filesystem;

namespace {

QByteArray canonicalPath(const QString &folder)
{
    std::error_code error;
    const fs::path path = fs::weakly_canonical(nativePath(folder).toStdString(), error);
    QByteArray native = error ? nativePath(folder) : QByteArray::fromStdString(path.string());
    while (native.size() > 1 && native.endsWith('/'))
        native.chop(1);
    return native;
}

} // namespace

bool isWithin(const QByteArray &path, const QByteArray &folder)
{
    if (folder == "/")
        return path.startsWith('/');
    return path.startsWith(folder) && (path.size() == folder.size() || path[folder.size()] == '/');
}

HiddenFolders::HiddenFolders(const QStringList &folders)
{
    for (const QString &folder : folders) {
        const QByteArray path = canonicalPath(folder);
        const EntryFacts facts = entryFacts(AT_FDCWD, path.constData());
        hidden.push_back({ path, facts.device, facts.inode });
    }
}

bool HiddenFolders::covers(const QByteArray &path) const
{
    return std::any_of(hidden.cbegin(), hidden.cend(),
                       [&path](const Folder &folder) { return isWithin(path, folder.path); });
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
    return std::any_of(hidden.cbegin(), hidden.cend(),
                       [&path](const Folder &folder) { return isWithin(folder.path, path); });
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
    std::vector<QByteArray> paths;
    for (const Folder &folder : hidden) {
        if (folder.path != top && isWithin(folder.path, top))
            paths.push_back(folder.path.mid(top == "/" ? 1 : top.size() + 1));
    }
    return paths;
}
