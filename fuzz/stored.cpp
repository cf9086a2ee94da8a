#include "config/Profile.h"

#include <QFile>
#include <QTemporaryDir>

#include <cstdint>

namespace {

void write(const QString &path, const QByteArray &bytes)
{
    QFile file(path);
    if (!file.open(QIODevice::WriteOnly) || file.write(bytes) != bytes.size())
        qFatal("the profile can't be made");
}

} // namespace

/// A profile's files, of which others than we may have written any byte; the first byte says which.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size)
{
    static const QTemporaryDir home(QStringLiteral("/dev/shm/quillon-fuzz-XXXXXX"));
    Directories directories;
    directories.profiles = home.path() + QLatin1Char('/');
    if (size == 0)
        return 0;
    const bool isText = data[0] % 2 == 1;
    const QByteArray bytes(reinterpret_cast<const char *>(data) + 1, int(size) - 1);
    write(home.filePath(isText ? QStringLiteral("p.ini") : QStringLiteral("p.cnf")), bytes);
    const Profile profile(directories, QStringLiteral("p.cnf"));
    if (profile.isUsable() && !isPort(profile.port))
        qFatal("a port that is none");
    return 0;
}
