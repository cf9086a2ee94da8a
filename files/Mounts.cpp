#include "files/Mounts.h"

#include "files/Entry.h"
#include "files/Path.h"

#include <QFile>
#include <QList>

#include <fcntl.h>

namespace {

struct Mount
{
    QByteArray device;
    QByteArray top; ///< the folder within the file system that it shows
    QByteArray point; ///< where it shows it
};

/// The table of mounts writes what would end a field in three octal digits.
QByteArray unescaped(QByteArray field)
{
    if (!field.contains('\\'))
        return field;
    for (const char escaped : { ' ', '\t', '\n', '\\' })
        field.replace('\\' + QByteArray::number(escaped, 8).rightJustified(3, '0'),
                      QByteArray(1, escaped));
    return field;
}

std::vector<Mount> readMounts()
{
    QFile table(QStringLiteral("/proc/self/mountinfo"));
    if (!table.open(QIODevice::ReadOnly))
        return {};
    std::vector<Mount> mounts;
    const QList<QByteArray> lines = table.readAll().split('\n');
    for (const QByteArray &line : lines) {
        const QList<QByteArray> fields = line.split(' ');
        if (fields.size() > 4)
            mounts.push_back({ fields[2], unescaped(fields[3]), unescaped(fields[4]) });
    }
    return mounts;
}

/// The one that a path stands in: the deepest, and of those the one on top.
const Mount *mountOf(const QByteArray &path, const std::vector<Mount> &mounts)
{
    const Mount *found = nullptr;
    for (const Mount &mount : mounts) {
        if (isWithin(path, mount.point) && (!found || isWithin(mount.point, found->point)))
            found = &mount;
    }
    return found;
}

bool isSameAt(const QByteArray &a, const QByteArray &b)
{
    return isSameEntry(entryFacts(AT_FDCWD, a.constData()), entryFacts(AT_FDCWD, b.constData()));
}

} // namespace

std::vector<QByteArray> otherPaths(const QByteArray &path)
{
    const std::vector<Mount> mounts = readMounts();
    const Mount *own = mountOf(path, mounts);
    if (!own)
        return {};
    std::vector<QByteArray> others;
    const QByteArray inside = joinedPath(own->top, pathBelow(path, own->point));
    for (const Mount &mount : mounts) {
        const bool isPart = isWithin(mount.top, inside);
        if (mount.device != own->device || (!isPart && !isWithin(inside, mount.top)))
            continue;
        const QByteArray there =
            isPart ? mount.point : joinedPath(mount.point, pathBelow(inside, mount.top));
        const QByteArray here = isPart ? joinedPath(path, pathBelow(mount.top, inside)) : path;
        // Another mount may lie over it by now.
        if (there != here && isSameAt(there, here))
            others.push_back(there);
    }
    return others;
}
