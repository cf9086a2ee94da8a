#pragma once

#include "files/Entry.h"

#include <QByteArray>
#include <QtGlobal>

#include <cstddef>
#include <string>

/// A file or folder of an archive.
struct ZipEntry
{
    std::string name; ///< of a folder with a "/" behind
    EntryFacts facts;
    std::size_t folder = 0; ///< that it stands in: the n-th entry; 0 is the archive's top
    qint64 offset = 0; ///< of its local record

    qint64 size() const { return facts.folder ? 0 : facts.size; } ///< bytes of its content
};

// The records around the content of files that are stored as they are (APPNOTE 6.3.9 of PKWARE,
// section 4.3). How long they are is known before any content is read, which is what the length of
// an archive, and its ranges, are told by: a writer that makes them as it goes along, as libraries
// do, could not be asked for its middle. Sums of the content follow it, in a record of their own
// (bit 3). What needs ZIP64 gets it, and no other.

/// In front of the content. `path` is that of the entry, below the archive's top.
QByteArray zipLocalRecord(const ZipEntry &entry, const QByteArray &path);

/// Behind it; none when there is no content.
QByteArray zipDescriptor(const ZipEntry &entry, quint32 sum);

/// In the directory.
QByteArray zipCentralRecord(const ZipEntry &entry, const QByteArray &path, quint32 sum);

/// Behind the directory of `entries` records, that begins at `offset` and has `size` bytes.
QByteArray zipEnd(qint64 entries, qint64 offset, qint64 size);
