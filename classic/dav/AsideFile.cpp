#include "classic/dav/AsideFile.h"

#include <QFileInfo>

#include <filesystem>

namespace fs = std::filesystem;

namespace {

fs::path nativePath(const QString &path)
{
    return QFile::encodeName(path).toStdString();
}

} // namespace

AsideFile::AsideFile(const QString &target)
    : finalPath(target)
{
    const QFileInfo info(target);
    if (info.isFile())
        finalPath = info.canonicalFilePath();
    setFileTemplate(QFileInfo(finalPath).absolutePath() + QLatin1String("/.receiving-XXXXXX"));
}

bool AsideFile::openAside()
{
    return open(ReadWrite | Unbuffered);
}

bool AsideFile::place()
{
    if (!rename(finalPath))
        return false;
    setAutoRemove(false);
    return true;
}

bool AsideFile::replace()
{
    setPermissions(QFileInfo(finalPath).permissions());
    const QString asideName = fileName(); // which gives it one
    close();
    std::error_code error;
    fs::rename(nativePath(asideName), nativePath(finalPath), error);
    if (error)
        return false;
    setAutoRemove(false);
    return true;
}
