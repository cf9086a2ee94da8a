#pragma once

#include "files/ReceivedFile.h"

#include <QByteArray>
#include <QDataStream>
#include <QFile>
#include <QtGlobal>

#include <optional>

/// What an entry was at one look, the entry itself and no link's target.
struct EntryStamp
{
    quint32 kind = 0; ///< an `S_IF` value
    qint64 size = 0; ///< bytes
    qint64 modified = 0; ///< nanoseconds since 1970-01-01 UTC
    qint64 changed = 0; ///< the same, of rights and name too: nobody can set it back

    /// None when nothing stands there.
    static std::optional<EntryStamp> of(int folder, const char *name);

    bool operator==(const EntryStamp &other) const
    {
        return kind == other.kind && size == other.size && modified == other.modified
            && changed == other.changed;
    }
};

/// What was copied of a tree and in which order, so that nothing else is removed when it is moved
/// by copying. Stands in a file without a name, so that a tree of any size takes no memory. Written
/// by one job, then read by the next.
class CopiedEntries
{
public:
    enum class Kind : quint8 {
        Entry, ///< a file or a link
        Folder, ///< holds what follows up to its end
        End
    };

    struct Record
    {
        Kind kind = Kind::End;
        QByteArray name = {}; ///< in the folder; of no meaning for its end, like the next
        EntryStamp stamp = {}; ///< of an entry, from before it was copied
    };

    /// Makes the file, in the folder of `beside`. First of all.
    bool open(Place beside);

    void add(const Record &record);

    /// Goes back to the first record, once all are added. False when the disk has not taken them.
    bool rewind();

    /// The next one; false after the last.
    bool next(Record &record);

private:
    ReceivedFile file;
    QFile buffered;
    QDataStream stream;
};
