#include "config/ProfileFile.h"

#include <QCryptographicHash>
#include <QFile>
#include <QFileInfo>
#include <QList>
#include <QSaveFile>

#include <cerrno>

#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

namespace {

constexpr int tailBytes = 5; ///< the clean exit and the format's mark, which is looked at anyway
constexpr qint64 maxSumBytes = 1024;

QString sumFile(const QString &profileFile)
{
    return profileFile + QLatin1String(".sum");
}

/// A line of the sum file, without its end.
/// Of everything but the mark of a clean exit, the last byte before the format's own mark: programs
/// of before this sum write that at each start and end.
QByteArray sumOf(const QByteArray &content)
{
    QCryptographicHash hash(QCryptographicHash::Sha256);
    hash.addData(content.left(content.size() - tailBytes));
    return hash.result().toHex();
}

QByteArray presentSum(const QString &profileFile)
{
    QFile file(profileFile);
    if (!file.open(QIODevice::ReadOnly))
        return {};
    const QByteArray content = file.readAll();
    return fitsItsSum(profileFile, content) ? sumOf(content) + '\n' : QByteArray();
}

bool removeSum(const QString &profileFile)
{
    const QString sum = sumFile(profileFile);
    return isMissing(sum) || QFile::remove(sum);
}

} // namespace

ProfileLock::ProfileLock(const QString &profileFile)
    : folder(::open(QFile::encodeName(QFileInfo(profileFile).path()).constData(),
                    O_RDONLY | O_DIRECTORY | O_CLOEXEC))
{
    while (folder >= 0 && ::flock(folder, LOCK_EX) != 0 && errno == EINTR) { }
}

ProfileLock::~ProfileLock()
{
    if (folder >= 0)
        ::close(folder);
}

bool isMissing(const QString &path)
{
    struct stat status = {};
    return ::lstat(QFile::encodeName(path).constData(), &status) != 0 && errno == ENOENT;
}

bool writePrivate(const QString &path, const QByteArray &content)
{
    QSaveFile file(path);
    if (!file.open(QIODevice::WriteOnly))
        return false;
    // Passwords stand in the file as they are.
    file.setPermissions(QFileDevice::ReadOwner | QFileDevice::WriteOwner);
    // Committing alone doesn't tell what the buffer couldn't write.
    return file.write(content) == content.size() && file.flush() && file.commit();
}

bool fitsItsSum(const QString &profileFile, const QByteArray &content)
{
    QFile sums(sumFile(profileFile));
    if (!sums.open(QIODevice::ReadOnly))
        return isMissing(sums.fileName());
    return sums.read(maxSumBytes).split('\n').contains(sumOf(content));
}

bool writeWithSum(const QString &profileFile, const QByteArray &content)
{
    const QString sums = sumFile(profileFile);
    const QByteArray sum = sumOf(content) + '\n';
    // Either content is right until the new one is there: a crash in between locks nobody out.
    if (!writePrivate(sums, presentSum(profileFile) + sum) || !writePrivate(profileFile, content))
        return false;
    // The old sum does no harm when it has to stay.
    static_cast<void>(writePrivate(sums, sum));
    return true;
}

bool removeWithSum(const QString &profileFile)
{
    return QFile::remove(profileFile) && removeSum(profileFile);
}

bool setAside(const QString &profileFile)
{
    const QString kept = profileFile + QLatin1String(".bad");
    if (QFile::exists(kept) && !QFile::remove(kept))
        return false;
    return QFile::rename(profileFile, kept) && removeSum(profileFile);
}
