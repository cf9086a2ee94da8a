#pragma once

#include "standard/dav/LockTable.h"

#include <QByteArray>

#include <map>

namespace standard {

/// The "activelock" element of a lock, with the time that is left to it. `prefix` is that of all
/// paths outside.
QByteArray activeLock(const Lock &lock, const QByteArray &prefix);

/// What is told of the locks in a tree. A copy, for any thread.
class LockDiscovery
{
public:
    LockDiscovery() = default;

    /// Of what stands at `path`, and below it if `withTree`; for `prefix` see `activeLock`.
    LockDiscovery(const LockTable &table, const QByteArray &path, bool withTree,
                  const QByteArray &prefix);

    /// The elements of all locks that cover `path`.
    QByteArray at(const QByteArray &path) const;

private:
    struct Told
    {
        bool deep;
        QByteArray element;
    };

    void add(const LockTable::Locks &locks, const QByteArray &prefix);

    std::multimap<QByteArray, Told> byRoot;
};

} // namespace standard
