#pragma once

#include <QByteArray>
#include <QHash>
#include <QtGlobal>

#include <optional>

#include <sys/types.h>

/// What an entry was at one look, the entry itself and no link's target.
struct EntryStamp
{
    mode_t kind = 0; ///< an `S_IF` value
    qint64 size = 0; ///< bytes; like the next of no meaning for a folder
    qint64 modified = 0; ///< nanoseconds since 1970-01-01 UTC

    /// None when nothing stands there.
    static std::optional<EntryStamp> of(int folder, const char *name);

    bool operator==(const EntryStamp &other) const
    {
        return kind == other.kind && size == other.size && modified == other.modified;
    }
};

/// What was copied of a tree, so that nothing else is removed when it is moved by copying. Made by
/// one job and used by the next.
class CopiedEntries
{
public:
    /// `path` is that below the top; "" for the top itself. `before` was taken before the copy.
    void add(const QByteArray &path, const EntryStamp &before) { stamps.insert(path, before); }

    /// Whether what stands there now, by its name in an open folder, was copied and is unchanged.
    bool holds(const QByteArray &path, int folder, const char *name) const;

private:
    QHash<QByteArray, EntryStamp> stamps;
};
