#pragma once

#include "files/DiskError.h"
#include "standard/dav/XmlName.h"

#include <QByteArray>

#include <map>
#include <mutex>
#include <optional>
#include <vector>

namespace standard {

/// A property that only its clients understand: it is kept as it was given.
struct DeadProperty
{
    XmlName name;
    QByteArray xml; ///< its whole element, see `XmlElement`
};

using DeadProperties = std::vector<DeadProperty>;

/// As they are kept, and back. None for what is damaged, or kept in a way that is not known here.
QByteArray packed(const DeadProperties &properties);
std::optional<DeadProperties> unpacked(const QByteArray &bytes);

/// A path for the system by which it finds what is open at `descriptor`; the names of a folder's
/// entries may follow it.
QByteArray systemPathOf(int descriptor);

/// The file or folder whose properties are meant.
struct PropertySubject
{
    QByteArray systemPath; ///< see `systemPathOf`
    QByteArray path; ///< relative to the share's root
    bool isLinkFree = false; ///< it was no link: what has become one since is not followed
};

/// Keeps dead properties in an extended attribute of their file, which they follow wherever it
/// goes. Where the file system has no such thing they are kept in memory until the server ends;
/// what comes there from another one comes without those that it had. One serves a server; for any
/// thread.
class PropertyStore
{
public:
    static constexpr int maxBytes = 64 * 1024; ///< for all of a file, before they are packed
    static constexpr qint64 maxMemory = qint64(16) << 20; ///< bytes for all that have no attribute

    /// None when there are some that can't be understood.
    std::optional<DeadProperties> read(const PropertySubject &subject) const;

    /// Keeps these instead of those before. `NoSpace` when they are too many for us or the disk;
    /// after any error those before stand.
    DiskError write(const PropertySubject &subject, const DeadProperties &properties);

    /// True once, when the first ones are kept in memory: time to warn the user.
    bool takeWarning();

    /// The paths at and below `path` whose properties are kept in memory.
    std::vector<QByteArray> pathsIn(const QByteArray &path) const;

    /// To be held by who reads, and writes what comes of it.
    std::mutex &writers() { return writing; }

    /// What stood at `path`, with all below it, is gone.
    void removed(const QByteArray &path);

    /// It stands at `to` now, or there as well, where nothing had properties.
    void moved(const QByteArray &from, const QByteArray &to);
    void copied(const QByteArray &from, const QByteArray &to);

private:
    using Memory = std::map<QByteArray, QByteArray>;

    Memory tree(const QByteArray &path) const;
    DiskError remember(const QByteArray &path, const QByteArray &bytes);
    void forget(const QByteArray &path);
    Memory::iterator forget(Memory::iterator at);

    std::mutex writing; ///< see `writers`; taken before the next
    mutable std::mutex mutex; ///< guards what follows
    Memory memory; ///< packed, by path
    qint64 memoryUsed = 0; ///< bytes
    enum class Warning { NotNeeded, Due, Taken } warning = Warning::NotNeeded;
};

} // namespace standard
