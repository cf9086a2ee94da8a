#include "config/Directories.h"

#include <QDir>
#include <QFileInfo>
#include <QLocale>

namespace {

QString withSlash(const QString &folder)
{
    return folder.endsWith(QLatin1Char('/')) ? folder : folder + QLatin1Char('/');
}

QString languageFolder(const QString &languages)
{
    const QString own = languages + QLocale::system().name();
    return QFileInfo::exists(own) ? own + QLatin1Char('/') : languages + QLatin1String("C/");
}

} // namespace

Directories Directories::ofProcess()
{
    const QString given = qEnvironmentVariable("QUILLON_RESDIR");
    Directories found;
    found.profiles = QDir::homePath() + QLatin1String("/.quillon/");
    found.resources =
        withSlash(QDir(given.isEmpty() ? QStringLiteral("/opt/quillon") : given).absolutePath());
    found.icons = found.resources + QLatin1String("img/");
    found.language = languageFolder(found.resources + QLatin1String("lang/"));
    return found;
}

bool Directories::makeProfileFolder() const
{
    return QDir().mkpath(profiles);
}
