#include "files/HiddenUploads.h"

#include "files/FolderReader.h"

#include <QRandomGenerator>

#include <algorithm>
#include <climits>
#include <cstring>
#include <ctime>

#include <fcntl.h>
#include <sys/file.h>
#include <unistd.h>

namespace {

constexpr auto hiddenPrefix = ".receiving-";
constexpr int randomDigits = 6;
constexpr qint64 staleSeconds = qint64(24) * 60 * 60;

bool isUnused(int folder, const char *name)
{
    const FileDescriptor file(
        ::openat(folder, name, O_RDONLY | O_NOFOLLOW | O_NONBLOCK | O_NOCTTY | O_CLOEXEC));
    return file.isOpen() && ::flock(file.get(), LOCK_EX | LOCK_NB) == 0;
}

QByteArray randomText()
{
    constexpr char digits[] = "0123456789abcdefghijklmnopqrstuvwxyz";
    QByteArray text;
    for (int i = 0; i < randomDigits; ++i)
        text += digits[QRandomGenerator::global()->bounded(int(sizeof digits) - 1)];
    return text;
}

/// Not within a character of UTF-8.
QByteArray shortened(QByteArray name, int most)
{
    const auto isContinued = [&name](int at) { return (name.at(at) & 0xc0) == 0x80; };
    int size = std::min(most, int(name.size()));
    while (size > 0 && size < name.size() && isContinued(size))
        --size;
    name.truncate(size);
    return name;
}

} // namespace

QByteArray hiddenUploadName()
{
    return hiddenPrefix + randomText();
}

bool isHiddenUpload(const char *name)
{
    return std::strncmp(name, hiddenPrefix, std::strlen(hiddenPrefix)) == 0;
}

bool namesHiddenUpload(const QByteArray &path)
{
    return isHiddenUpload(path.constData()) || path.contains(QByteArray("/") + hiddenPrefix);
}

QByteArray asideName(const QByteArray &name)
{
    const QByteArray end = ".replaced-" + randomText();
    return shortened(name, NAME_MAX - int(end.size())) + end;
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
