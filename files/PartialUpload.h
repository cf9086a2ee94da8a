#pragma once

#include "files/DiskError.h"
#include "files/FileDescriptor.h"
#include "files/Place.h"

#include <QByteArray>
#include <QtGlobal>

#include <memory>
#include <optional>

class DiskJob;

/// What a file that arrives in several requests is to become.
struct PartialRecord
{
    QByteArray name; ///< in the folder where it stands
    qint64 length = 0; ///< bytes of the whole
    QByteArray owner; ///< who alone may go on with it; empty: whoever knows its id
    bool replaces = false; ///< a file that has the name gives way
    QByteArray notes; ///< of the sender; one line
};

/// A file of which a part is here, known by an id. It stands hidden in the folder that it is for,
/// beside a record of what it is to become, so that it outlives the program; any file system can
/// hold both. Given up when nobody goes on with it for a day. Movable; removes nothing by itself.
class PartialUpload
{
public:
    /// One more id: 128 random bits.
    static QByteArray newId();

    static bool isId(const QByteArray &text);

    /// Begins an empty one in a folder, claimed. None, with `errno`, when the folder can't take it.
    static std::optional<PartialUpload> begin(const Place &anyBeside, const QByteArray &id,
                                              PartialRecord record);

    /// The one that was begun beside `anyBeside`. None when there is none.
    static std::optional<PartialUpload> find(const Place &anyBeside, const QByteArray &id);

    const QByteArray &id() const { return m_id; }
    const PartialRecord &record() const { return m_record; }

    /// Where it stands.
    const Place &place() const { return hidden; }

    /// How many bytes need not be sent again. Never all of them: the last one is waited for until
    /// the file has its name, since who has sent all takes it for done.
    qint64 offset() const;

    /// When it is given up unless a byte comes, in seconds since 1970-01-01 UTC.
    qint64 expires() const;

    /// Whether nobody went on with it for too long; it is claimed then.
    bool isGivenUp() const;

    /// Keeps others from going on with it, until this object ends. False when somebody else does.
    bool claim() const;

    /// Opens it to write from an offset on. Not open, with `errno`, when it can't be.
    FileDescriptor open(qint64 from) const;

    /// It counts as gone on with just now.
    void touch() const;

    /// Removes what is left of it.
    void remove() const;

    // Freeing a large file takes the disk a while: these are jobs for a `DiskWorker`, for one that
    // is claimed until they are done.

    static std::shared_ptr<DiskJob> removal(std::shared_ptr<const PartialUpload> claimed);

    /// Takes back what came after the first `size` bytes, or all of it when that can't be done.
    static std::shared_ptr<DiskJob> cut(std::shared_ptr<const PartialUpload> claimed, qint64 size);

private:
    PartialUpload() = default;

    QByteArray m_id;
    Place hidden;
    FileDescriptor about; ///< the record, locked by who goes on with it
    PartialRecord m_record;
};
