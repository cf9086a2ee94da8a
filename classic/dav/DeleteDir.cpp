#include "classic/dav/DeleteDir.h"

#include <QDir>
#include <QFile>

#include <filesystem>
#include <utility>
#include <vector>

namespace fs = std::filesystem;

namespace {

/// The name as the file system has it; an empty path for one that no entry can have.
/// Without its last "/", or a link would be looked through.
fs::path nativePath(const QString &folder)
{
    if (folder.contains(QChar::Null))
        return {};
    return QFile::encodeName(QDir::cleanPath(folder)).toStdString();
}

bool removeEntry(const fs::path &entry)
{
    std::error_code error;
    return fs::remove(entry, error);
}

struct Content
{
    std::vector<fs::path> folders;
    std::vector<fs::path> others; ///< files, links, pipes, sockets
};

/// What can't be listed counts as empty; removing the folder fails then.
Content listFolder(const fs::path &folder)
{
    Content content;
    std::error_code error;
    fs::directory_iterator entry(folder, error);
    for (; !error && entry != fs::directory_iterator(); entry.increment(error)) {
        // Both are known from the listing; looking at each entry would cost as much again.
        std::error_code unknown;
        const bool isFolder = !entry->is_symlink(unknown) && entry->is_directory(unknown);
        (isFolder ? content.folders : content.others).push_back(entry->path());
    }
    return content;
}

} // namespace

DeleteDir::DeleteDir(QString folder)
    : path(std::move(folder))
{
}

bool DeleteDir::deleteDir()
{
    return deleteDir(path);
}

bool DeleteDir::deleteDir(const QString &folder)
{
    const fs::path top = nativePath(folder);
    std::error_code error;
    if (!fs::is_directory(top, error))
        return success;
    if (fs::is_symlink(top, error))
        return success = removeEntry(top);

    // Parents stand before their children, so going backwards every folder is empty in time.
    // No recursion: the depth of a tree is the client's choice.
    std::vector<fs::path> folders{ top };
    for (std::size_t i = 0; i < folders.size(); ++i) {
        const Content content = listFolder(folders[i]);
        for (const fs::path &entry : content.others)
            count(removeEntry(entry));
        folders.insert(folders.end(), content.folders.begin(), content.folders.end());
    }
    for (std::size_t i = folders.size() - 1; i > 0; --i)
        count(removeEntry(folders[i]));
    return success = removeEntry(top);
}

void DeleteDir::count(bool removed)
{
    if (removed)
        ++deleted;
    else
        success = false;
}
