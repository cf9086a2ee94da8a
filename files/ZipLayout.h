#pragma once

#include "files/MemoryBudget.h"
#include "files/ZipRecords.h"

#include <QByteArray>
#include <QCryptographicHash>
#include <QtGlobal>

#include <cstddef>
#include <deque>
#include <memory>
#include <utility>
#include <vector>

/// What an archive holds. Never copied to grow, as a vector would be.
using ZipEntries = std::deque<ZipEntry>;

/// Of one of `all`, below the archive's top.
QByteArray zipPath(const ZipEntries &all, const ZipEntry &entry);

/// Where each byte of an archive lies: the entries one after another, by their paths, then their
/// directory. Made by a `ZipLayoutMaker`; constant from then on, for any thread.
class ZipLayout
{
public:
    /// Bytes that an entry takes here, and with who reads it, about.
    static qint64 memoryOf(const ZipEntry &entry);

    std::size_t count() const { return order.size(); }
    const ZipEntry &entry(std::size_t number) const { return all[order[number]]; }
    QByteArray path(std::size_t number) const { return zipPath(all, entry(number)); }

    QByteArray localRecord(std::size_t number) const;
    QByteArray descriptor(std::size_t number, quint32 sum) const;
    QByteArray centralRecord(std::size_t number, quint32 sum) const;

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
    friend class ZipLayoutMaker;

    ZipLayout(ZipEntries found, qint64 since, std::unique_ptr<MemoryBudget::Part> memory);
    void place(std::size_t number, QCryptographicHash &hash);

    ZipEntries all;
    std::vector<quint32> order; ///< of them, by path
    const std::unique_ptr<MemoryBudget::Part> part;
    qint64 m_directory = 0;
    qint64 directoryBytes = 0;
    qint64 m_newest;
    qint64 m_memory = 0;
    QByteArray m_tag;
};

/// Makes a layout in many steps: with the path of each entry, all of them take long.
class ZipLayoutMaker
{
public:
    /// Of `found`, in any order; offsets are given here. `since` is when the top was last changed,
    /// in seconds since 1970-01-01 UTC. `memory` is the place of the entries in a budget, if any.
    ZipLayoutMaker(ZipEntries found, qint64 since, std::unique_ptr<MemoryBudget::Part> memory = {});

    /// Gives the next entry its place. True once all have theirs.
    bool placeNext();

    /// What was made, once, when all have.
    std::shared_ptr<const ZipLayout> take() { return std::move(layout); }

private:
    std::shared_ptr<ZipLayout> layout;
    std::size_t placed = 0; ///< how many entries are
    QCryptographicHash hash{ QCryptographicHash::Sha256 };
};
