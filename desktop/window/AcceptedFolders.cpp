#include "desktop/window/AcceptedFolders.h"

#include <QFileInfo>
#include <QSettings>
#include <QStringList>

namespace {

const QLatin1String foldersKey("sharedAnyway");

QStringList accepted()
{
    return QSettings().value(foldersKey).toStringList();
}

} // namespace

bool isAcceptedFolder(const QString &path)
{
    return accepted().contains(QFileInfo(path).canonicalFilePath());
}

void acceptFolder(const QString &path)
{
    if (!isAcceptedFolder(path))
        QSettings().setValue(foldersKey, accepted() << QFileInfo(path).canonicalFilePath());
}
