#pragma once

#include "files/ZipRecords.h"

#include <QByteArray>
#include <QtGlobal>

#include <cstddef>
#include <vector>

/// Where each byte of an archive lies: the entries one after another, then their directory.
/// Constant after it was made, for any thread.
class ZipLayout
{
public:
    /// Of `found`, in any order; offsets are given here. `since` is when the top was last changed,
    /// in seconds since 1970-01-01 UTC.
    ZipLayout(std::vector<ZipEntry> found, qint64 since);

    const std::vector<ZipEntry> &entries() const { return all; }

    /// The entry in which a byte before the directory lies.
    std::size_t entryAt(qint64 offset) const;

    qint64 directory() const { return m_directory; } ///< its offset
    QByteArray end() const; ///< the last record
    qint64 size() const; ///< bytes of the archive

    /// Letters and digits that are others as soon as a byte of the archive would be.
    const QByteArray &tag() const { return m_tag; }

    /// Of what changed last, seconds since 1970-01-01 UTC.
    qint64 newest() const { return m_newest; }

    qint64 memory() const { return m_memory; } ///< bytes that it takes, about

private:
    std::vector<ZipEntry> all; ///< by path
    qint64 m_directory = 0;
    qint64 directoryBytes = 0;
    qint64 m_newest;
    qint64 m_memory = 0;
    QByteArray m_tag;
};
