#include "config/Profile.h"
#include "desktop/window/SavedRows.h"

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

void readProfile(const QTemporaryDir &home)
{
    Directories directories;
    directories.profiles = home.path() + QLatin1Char('/');
    const Profile profile(directories, QStringLiteral("p.cnf"));
    if (profile.isUsable() && !isPort(profile.port))
        qFatal("a port that is none");
}

/// Another file each time, as the toolkit remembers what it read of one.
void readRows(const QTemporaryDir &home, const QByteArray &bytes)
{
    static int count = 0;
    const QString file = home.filePath(QStringLiteral("list%1.ini").arg(++count));
    write(file, bytes);
    {
        SavedRows rows(file);
        for (int nth = 0; nth < 3; ++nth)
            rows.takeAddedPorts(rows.takeNext().address);
    }
    QFile::remove(file);
    QFile::remove(file + QStringLiteral(".bad"));
}

enum class Stored { Record, Text, Rows };

/// A profile's files and the window's, of which others than we may have written any byte; the first
/// byte says which.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size)
{
    static const QTemporaryDir home(QStringLiteral("/dev/shm/quillon-fuzz-XXXXXX"));
    if (size == 0)
        return 0;
    const QByteArray bytes(reinterpret_cast<const char *>(data) + 1, int(size) - 1);
    const auto kind = Stored(data[0] % 3);
    if (kind == Stored::Rows) {
        readRows(home, bytes);
        return 0;
    }
    write(home.filePath(kind == Stored::Text ? QStringLiteral("p.ini") : QStringLiteral("p.cnf")),
          bytes);
    readProfile(home);
    return 0;
}
