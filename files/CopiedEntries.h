#pragma once

#include <QByteArray>
#include <QtGlobal>

#include <optional>
#include <vector>

#include <sys/types.h>

/// What an entry was at one look, the entry itself and no link's target.
struct EntryStamp
{
    mode_t kind = 0; ///< an `S_IF` value
    qint64 size = 0; ///< bytes; like the next of no meaning for a folder
    qint64 modified = 0; ///< nanoseconds since 1970-01-01 UTC

    /// None when nothing stands there.
    static std::optional<EntryStamp> of(int folder, const char *name);
};

/// What was copied of a tree, so that nothing else is removed when it is moved by copying. Keeps
/// eight bytes an entry, and of some millions at most: what is beyond counts as not copied. Made by
/// one job and used by the next.
class CopiedEntries
{
public:
    /// `path` is that below the top; "" for the top itself. `before` was taken before the copy.
    void add(const QByteArray &path, const EntryStamp &before);

    /// After the last of them.
    void close();

    /// Whether what stands there now, by its name in an open folder, was copied and is unchanged.
    /// Once it is closed.
    bool holds(const QByteArray &path, int folder, const char *name) const;

private:
    std::vector<quint64> fingerprints; ///< sorted when closed
};
