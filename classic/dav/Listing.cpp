#include "classic/dav/Listing.h"

#include <QFile>

#include <algorithm>
#include <memory>

#include <dirent.h>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

// One look at each entry, relative to the open folder: QFileInfo takes three of them, by full path,
// and that is most of the time that a large folder costs.

namespace {

struct CloseFolder
{
    void operator()(DIR *folder) const { ::closedir(folder); }
};

std::optional<Resource> toResource(const struct stat &status)
{
    const bool isFolder = S_ISDIR(status.st_mode);
    if (!isFolder && !S_ISREG(status.st_mode))
        return {};
    return Resource{ {}, status.st_size, status.st_mtime, isFolder };
}

/// What the owner may do stands in the mode; only for others the system has to be asked.
bool isReadable(int folder, const char *name, const struct stat &status, uid_t user)
{
    if (status.st_uid == user && (status.st_mode & S_IRUSR) != 0)
        return true;
    return ::faccessat(folder, name, R_OK, 0) == 0;
}

/// Names of other encodings come out with a replacement character and don't lead back.
bool canBeSpelled(const QString &name, const char *native)
{
    return !name.contains(QChar::ReplacementCharacter) || QFile::encodeName(name) == native;
}

std::optional<Resource> readableEntry(int folder, const char *name, uid_t user)
{
    struct stat status = {};
    if (name[0] == '.' || ::fstatat(folder, name, &status, 0) != 0)
        return {};
    std::optional<Resource> entry = toResource(status);
    if (!entry || !isReadable(folder, name, status, user))
        return {};
    entry->name = QFile::decodeName(name);
    return canBeSpelled(entry->name, name) ? entry : std::nullopt;
}

} // namespace

std::optional<Resource> resourceAt(const QString &path)
{
    struct stat status = {};
    if (::stat(QFile::encodeName(path).constData(), &status) != 0)
        return {};
    return toResource(status);
}

std::vector<Resource> listFolder(const QString &folder, bool withFolders)
{
    std::vector<Resource> entries;
    const std::unique_ptr<DIR, CloseFolder> open(::opendir(QFile::encodeName(folder).constData()));
    if (!open)
        return entries;

    const uid_t user = ::geteuid();
    while (const dirent *next = ::readdir(open.get())) {
        std::optional<Resource> entry = readableEntry(::dirfd(open.get()), next->d_name, user);
        if (entry && (withFolders || !entry->isFolder))
            entries.push_back(std::move(*entry));
    }
    std::sort(entries.begin(), entries.end(),
              [](const Resource &a, const Resource &b) { return a.name < b.name; });
    return entries;
}
