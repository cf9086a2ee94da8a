#include "desktop/look/DesktopChoices.h"

#include <QCoreApplication>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QSaveFile>
#include <QSettings>
#include <QStandardPaths>

namespace {

const QLatin1String trayKey("desktop/staysInTray");
const QLatin1String noticesKey("desktop/notifies");

/// What it holds, the desktop starts after the login (XDG autostart).
QString startEntry()
{
    return QStandardPaths::writableLocation(QStandardPaths::GenericConfigLocation)
        + QLatin1String("/autostart/example.quillon.Quillon.desktop");
}

/// As an argument of an "Exec" line, where some characters stand for something else.
QByteArray quoted(const QString &path)
{
    QByteArray text = path.toUtf8();
    for (const char *special : { "\\", "\"", "`", "$" })
        text.replace(special, QByteArray("\\\\") + special);
    return '"' + text.replace('%', "%%") + '"';
}

bool writeStartEntry()
{
    QDir().mkpath(QFileInfo(startEntry()).path());
    QSaveFile file(startEntry());
    if (!file.open(QSaveFile::WriteOnly))
        return false;
    file.write("[Desktop Entry]\nType=Application\nName=Quillon\nIcon=quillon\nExec="
               + quoted(QCoreApplication::applicationFilePath()) + " --start\n");
    return file.commit();
}

} // namespace

DesktopChoices DesktopChoices::stored()
{
    const QSettings settings;
    return { settings.value(trayKey, false).toBool(), QFile::exists(startEntry()),
             settings.value(noticesKey, true).toBool() };
}

bool DesktopChoices::store() const
{
    QSettings settings;
    settings.setValue(trayKey, staysInTray);
    settings.setValue(noticesKey, notifies);
    if (startsAtLogin == QFile::exists(startEntry()))
        return true;
    return startsAtLogin ? writeStartEntry() : QFile::remove(startEntry());
}
