#pragma once

#include <QtGlobal>

#include <array>
#include <cstddef>
#include <map>
#include <mutex>

struct EntryFacts;

/// Of the first bytes of a file, or all of them.
struct FileSum
{
    quint32 sum = 0;
    qint64 bytes = 0; ///< how many they are
};

/// Remembers the sums (CRC-32) of files that were read, so that who goes on with an archive, or
/// looks at its end, doesn't have all of it read anew. A file that changes is another one. One
/// serves a whole program, on any thread.
class FileSums
{
public:
    FileSums() = default;

    /// Of no bytes when nothing is known.
    FileSum find(const EntryFacts &file) const;

    /// When there are too many, those that came first are forgotten.
    void keep(const EntryFacts &file, const FileSum &sum);

private:
    Q_DISABLE_COPY_MOVE(FileSums)

    static constexpr std::size_t mostOfAge = 50000;

    using Version = std::array<qint64, 7>;
    using Sums = std::map<Version, FileSum>;

    static Version versionOf(const EntryFacts &file);

    mutable std::mutex mutex; ///< guards what follows
    Sums young;
    Sums old; ///< go next
};

/// The sum of `size` bytes behind those that gave `sum`; that of none is 0.
quint32 summedUp(quint32 sum, const char *data, std::size_t size);
