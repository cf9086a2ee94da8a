#include "config/Directories.h"

#include <QDir>
#include <QLocale>
#include <QStandardPaths>
#include <QStringList>

#include <algorithm>

namespace {

QString withSlash(const QString &folder)
{
    return folder.endsWith(QLatin1Char('/')) ? folder : folder + QLatin1Char('/');
}

/// Relative ones are to be ignored.
QString stateFolder()
{
    const QString given = qEnvironmentVariable("XDG_STATE_HOME");
    return QDir::isAbsolutePath(given) ? given : QDir::homePath() + QLatin1String("/.local/state");
}

} // namespace

QString languageFolder(const QString &languages, const QString &locale)
{
    const QStringList all = QDir(languages).entryList(QDir::Dirs | QDir::NoDotAndDotDot);
    if (all.contains(locale))
        return languages + locale + QLatin1Char('/');
    const QString language = locale.section(QLatin1Char('_'), 0, 0);
    const auto sameLanguage = std::find_if(all.begin(), all.end(), [&language](const auto &each) {
        return each.section(QLatin1Char('_'), 0, 0) == language;
    });
    const QString found = sameLanguage == all.end() ? QStringLiteral("C") : *sameLanguage;
    return languages + found + QLatin1Char('/');
}

Directories Directories::ofProcess()
{
    const QString given = qEnvironmentVariable("QUILLON_RESDIR");
    Directories found;
    found.profiles = QDir::homePath() + QLatin1String("/.quillon/");
    found.state = stateFolder() + QLatin1String("/quillon/");
    found.cache = QStandardPaths::writableLocation(QStandardPaths::GenericCacheLocation)
        + QLatin1String("/quillon/");
    found.resources =
        withSlash(QDir(given.isEmpty() ? QStringLiteral("/opt/quillon") : given).absolutePath());
    found.icons = found.resources + QLatin1String("img/");
    found.language =
        languageFolder(found.resources + QLatin1String("lang/"), QLocale::system().name());
    return found;
}

bool Directories::makeProfileFolder() const
{
    return QDir().mkpath(profiles);
}
