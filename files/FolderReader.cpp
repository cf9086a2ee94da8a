#include "files/FolderReader.h"

#include "files/Path.h"

#include <cerrno>
#include <cstring>
#include <utility>

#include <dirent.h>
#include <fcntl.h>
#include <unistd.h>

namespace {

constexpr std::size_t bufferBytes = 1 << 15;

bool isDots(const char *name)
{
    return std::strcmp(name, ".") == 0 || std::strcmp(name, "..") == 0;
}

} // namespace

FolderReader::FolderReader(FileDescriptor openFolder,
                           std::shared_ptr<const HiddenFolders> hiddenFolders)
    : folder(std::move(openFolder))
    , hidden(std::move(hiddenFolders))
{
}

bool FolderReader::next(Item &item)
{
    while (offset < end || (!ended && fill())) {
        const void *record = buffer.data() + offset;
        const auto *entry = static_cast<const dirent64 *>(record);
        offset += entry->d_reclen;
        if (isDots(entry->d_name))
            continue;
        item = { entry->d_name, entry->d_type, entry->d_off };
        return true;
    }
    return false;
}

bool FolderReader::fill()
{
    buffer.resize(bufferBytes);
    const ssize_t size = ::getdents64(folder.get(), buffer.data(), buffer.size());
    errorNumber = size < 0 ? errno : 0;
    offset = 0;
    end = size > 0 ? std::size_t(size) : 0;
    ended = end == 0;
    return !ended;
}

void FolderReader::seek(qint64 position)
{
    offset = end = 0;
    ended = false;
    if (::lseek(folder.get(), position, SEEK_SET) < 0)
        errorNumber = errno;
}

std::pair<dev_t, ino_t> FolderReader::borderId() const
{
    return hidden ? hidden->borderId() : std::pair<dev_t, ino_t>();
}

EntryFacts FolderReader::facts(const Item &item) const
{
    const bool link = item.type == DT_LNK;
    const EntryFacts found =
        link ? linkFacts(folder.get(), item.name) : entryFacts(folder.get(), item.name);
    if (!hidden || hidden->isEmpty() || !found.exists)
        return found;
    if (hidden->has(found))
        return {};
    if (found.link) {
        const FileDescriptor target(::openat(folder.get(), item.name, O_PATH | O_CLOEXEC));
        if (hidden->coversOpen(target.get()))
            return {};
    }
    return found;
}

FileDescriptor FolderReader::openFolder(const char *name) const
{
    constexpr int flags = O_RDONLY | O_DIRECTORY | O_CLOEXEC;
    FileDescriptor found(::openat(folder.get(), name, flags | O_NOFOLLOW));
    const bool throughLink = !found.isOpen();
    if (throughLink)
        found.reset(::openat(folder.get(), name, flags));
    if (!found.isOpen() || !hidden)
        return found;
    // Where no path can say it, a folder below one that shows is hidden only if it is such itself.
    const bool unspeakable = !throughLink && pathOf(found.get()).isEmpty();
    if (!(unspeakable ? hidden->has(openFacts(found.get())) : hidden->coversOpen(found.get())))
        return found;
    found.reset();
    errno = ENOENT;
    return found;
}

FileDescriptor FolderReader::openFile(const char *name) const
{
    constexpr int flags = O_RDONLY | O_NONBLOCK | O_NOCTTY | O_CLOEXEC;
    FileDescriptor found(::openat(folder.get(), name, flags | O_NOFOLLOW));
    if (found.isOpen() || errno != ELOOP)
        return found;
    found.reset(::openat(folder.get(), name, flags));
    if (!found.isOpen() || !hidden || !hidden->coversOpen(found.get()))
        return found;
    found.reset();
    errno = ENOENT;
    return found;
}
