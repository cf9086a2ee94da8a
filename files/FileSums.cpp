#include "files/FileSums.h"

#include "files/Entry.h"

#include <utility>

#include <libdeflate.h>

FileSums::Version FileSums::versionOf(const EntryFacts &file)
{
    return { qint64(file.device), qint64(file.inode),    file.size, file.seconds, file.nanoseconds,
             file.changeSeconds,  file.changeNanoseconds };
}

FileSum FileSums::find(const EntryFacts &file) const
{
    const Version version = versionOf(file);
    const std::lock_guard<std::mutex> lock(mutex);
    for (const Sums *sums : { &young, &old }) {
        const auto found = sums->find(version);
        if (found != sums->end())
            return found->second;
    }
    return {};
}

void FileSums::keep(const EntryFacts &file, const FileSum &sum)
{
    Sums forgotten; // goes outside of the lock
    const std::lock_guard<std::mutex> lock(mutex);
    if (young.size() >= mostOfAge)
        forgotten = std::exchange(old, std::exchange(young, {}));
    young[versionOf(file)] = sum;
}

quint32 summedUp(quint32 sum, const char *data, std::size_t size)
{
    return libdeflate_crc32(sum, data, size);
}
