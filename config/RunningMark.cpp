#include "config/RunningMark.h"

#include <QCoreApplication>
#include <QDir>

#include <algorithm>

#include <sys/file.h>

namespace {

bool lock(const QFile &file)
{
    return ::flock(file.handle(), LOCK_EX | LOCK_NB) == 0;
}

bool isHeld(const QString &path)
{
    QFile mark(path);
    if (!mark.open(QIODevice::ReadOnly))
        return false;
    if (!lock(mark))
        return true;
    mark.remove();
    return false;
}

} // namespace

RunningMark::RunningMark(const QString &marks)
    : folder(marks)
    , file(QStringLiteral("%1/%2-XXXXXX").arg(marks).arg(QCoreApplication::applicationPid()))
{
    // Where the system can, the file gets its name only with `fileName`: locked from the start.
    if (QDir().mkpath(folder) && file.open() && lock(file))
        static_cast<void>(file.fileName());
}

void RunningMark::release()
{
    file.remove();
}

bool RunningMark::hasNeighbours() const
{
    const QFileInfoList marks = QDir(folder).entryInfoList(QDir::Files);
    const QString own = file.fileName();
    return std::any_of(marks.begin(), marks.end(), [&own](const QFileInfo &mark) {
        return mark.filePath() != own && isHeld(mark.filePath());
    });
}
