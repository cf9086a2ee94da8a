#include "desktop/window/FileMenu.h"

#include "desktop/widgets/Prompts.h"
#include "desktop/widgets/Touch.h"

#include <QDir>

namespace {

constexpr int longestRecentPath = 17;

} // namespace

FileMenu::FileMenu(QWidget *parent)
    : QMenu(parent)
{
    sizeForFingers(this);
    addAction(tr("Select Folder"), this, &FileMenu::browseFolder);
    addAction(tr("Select File"), this, &FileMenu::browseFile);
    for (QAction *&action : recent) {
        action = addAction(QString());
        action->setVisible(false);
        connect(action, &QAction::triggered, this,
                [this, action] { choose(action->data().toString()); });
    }
}

void FileMenu::browseFolder()
{
    choose(choosePath(parentWidget(), PathKind::Folder, tr("Select Folder"), start));
}

void FileMenu::browseFile()
{
    choose(choosePath(parentWidget(), PathKind::File, tr("Select File"), start));
}

void FileMenu::choose(const QString &path)
{
    if (!path.isEmpty())
        Q_EMIT chosen(path);
}

void FileMenu::showRecent(const QStringList &paths)
{
    for (std::size_t i = 0; i < recent.size(); ++i) {
        const bool used = int(i) < paths.size();
        recent[i]->setVisible(used);
        if (!used)
            continue;
        recent[i]->setText(recentFileLabel(paths.at(int(i))));
        recent[i]->setData(paths.at(int(i)));
    }
}

QString recentFileLabel(const QString &path)
{
    const QString label = path.size() > longestRecentPath ? QDir(path).dirName() : path;
    return QString(label).replace(QLatin1Char('&'), QLatin1String("&&"));
}
