#include "files/HiddenUploads.h"

#include "files/FolderReader.h"

#include <QRandomGenerator>

#include <cstring>
#include <ctime>

#include <fcntl.h>
#include <sys/file.h>
#include <unistd.h>

namespace {

constexpr auto prefix = ".receiving-";
constexpr int randomDigits = 6;
constexpr qint64 staleSeconds = qint64(24) * 60 * 60;

bool isUnused(int folder, const char *name)
{
    const FileDescriptor file(
        ::openat(folder, name, O_RDONLY | O_NOFOLLOW | O_NONBLOCK | O_NOCTTY | O_CLOEXEC));
    return file.isOpen() && ::flock(file.get(), LOCK_EX | LOCK_NB) == 0;
}

} // namespace

QByteArray hiddenUploadName()
{
    constexpr char digits[] = "0123456789abcdefghijklmnopqrstuvwxyz";
    QByteArray name(prefix);
    for (int i = 0; i < randomDigits; ++i)
        name += digits[QRandomGenerator::global()->bounded(int(sizeof digits) - 1)];
    return name;
}

bool isHiddenUpload(const char *name)
{
    return std::strncmp(name, prefix, std::strlen(prefix)) == 0;
}

void sweepHiddenUploads(int folder)
{
    FileDescriptor open(::openat(folder, ".", O_RDONLY | O_DIRECTORY | O_CLOEXEC));
    if (!open.isOpen())
        return;
    FolderReader reader(std::move(open));
    FolderReader::Item item;
    while (reader.next(item)) {
        if (!isHiddenUpload(item.name))
            continue;
        const EntryFacts facts = reader.facts(item);
        const bool stale =
            facts.file && !facts.link && facts.seconds < ::time(nullptr) - staleSeconds;
        if (stale && isUnused(reader.descriptor(), item.name))
            ::unlinkat(reader.descriptor(), item.name, 0);
    }
}
