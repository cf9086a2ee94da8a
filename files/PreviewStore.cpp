#include "files/PreviewStore.h"

#include "files/Entry.h"
#include "files/FolderReader.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>

#include <algorithm>
#include <cstdlib>
#include <ctime>
#include <utility>
#include <vector>

#include <fcntl.h>
#include <sys/sendfile.h>
#include <sys/stat.h>
#include <unistd.h>

namespace {

constexpr auto unfinishedPrefix = "new-";
constexpr auto unfinishedEnd = "XXXXXX"; ///< what mkostemp replaces
constexpr qint64 blockSize = 4096; ///< bytes, of most file systems
constexpr qint64 timeToFinish = 60; ///< seconds, for another program

struct StoredPreview
{
    QByteArray name;
    EntryFacts facts;
};

bool wasUsedBefore(const StoredPreview &one, const StoredPreview &other)
{
    return std::pair(one.facts.seconds, one.facts.nanoseconds)
        < std::pair(other.facts.seconds, other.facts.nanoseconds);
}

bool isWorthless(const StoredPreview &file)
{
    if (file.name.startsWith(unfinishedPrefix))
        return file.facts.seconds < std::time(nullptr) - timeToFinish;
    return file.facts.size == 0;
}

/// The files in `reader`, without those that are removed at once.
std::vector<StoredPreview> worthKeeping(FolderReader &reader)
{
    std::vector<StoredPreview> files;
    FolderReader::Item item;
    while (reader.next(item)) {
        StoredPreview file{ item.name, reader.facts(item) };
        if (!file.facts.file)
            continue;
        if (isWorthless(file))
            ::unlinkat(reader.descriptor(), item.name, 0);
        else
            files.push_back(std::move(file));
    }
    return files;
}

bool copyAll(int from, int to)
{
    off_t offset = 0;
    const qint64 size = openFacts(from).size;
    while (offset < size) {
        if (::sendfile(to, from, &offset, std::size_t(size - offset)) <= 0)
            return false;
    }
    return true;
}

} // namespace

PreviewStore::PreviewStore(const QString &folderPath, qint64 maxBytes)
    : folder(QFile::encodeName(QDir::cleanPath(folderPath)))
    , most(maxBytes)
{
}

FileDescriptor PreviewStore::find(const QByteArray &name) const
{
    FileDescriptor found(
        ::open((folder + '/' + name).constData(), O_RDONLY | O_NOFOLLOW | O_NONBLOCK | O_CLOEXEC));
    if (found.isOpen() && openFacts(found.get()).file)
        ::futimens(found.get(), nullptr);
    else
        found.reset();
    return found;
}

void PreviewStore::add(const QByteArray &name, int preview) const
{
    if (!makeFolder())
        return;
    QByteArray unfinished = folder + '/' + unfinishedPrefix + unfinishedEnd;
    const FileDescriptor file(::mkostemp(unfinished.data(), O_CLOEXEC));
    if (!file.isOpen())
        return;
    if (!copyAll(preview, file.get())
        || ::rename(unfinished.constData(), (folder + '/' + name).constData()) != 0)
        ::unlink(unfinished.constData());
}

/// For its user alone, whoever made it.
bool PreviewStore::makeFolder() const
{
    QDir().mkpath(QFileInfo(QFile::decodeName(folder)).path());
    ::mkdir(folder.constData(), S_IRWXU);
    return ::chmod(folder.constData(), S_IRWXU) == 0;
}

qint64 PreviewStore::sizeOnDisk(qint64 bytes)
{
    return std::max<qint64>(1, (bytes + blockSize - 1) / blockSize) * blockSize;
}

void PreviewStore::sweep() const
{
    FileDescriptor opened(::open(folder.constData(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
    if (!opened.isOpen())
        return;
    FolderReader reader(std::move(opened));
    std::vector<StoredPreview> files = worthKeeping(reader);
    std::sort(files.begin(), files.end(), wasUsedBefore);
    qint64 left = most - 2 * sweepAfter();
    for (auto file = files.crbegin(); file != files.crend(); ++file) {
        left -= sizeOnDisk(file->facts.size);
        if (left < 0)
            ::unlinkat(reader.descriptor(), file->name.constData(), 0);
    }
}
