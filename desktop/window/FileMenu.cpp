#include "desktop/window/FileMenu.h"

#include "desktop/widgets/Prompts.h"
#include "desktop/widgets/Touch.h"

FileMenu::FileMenu(QWidget *parent)
    : QMenu(parent)
{
    sizeForFingers(this);
    setToolTipsVisible(true);
    addSearch(tr("Select Folder"), "Ctrl+O", &FileMenu::browseFolder);
    addSearch(tr("Select File"), "Ctrl+Shift+O", &FileMenu::browseFile);
    for (QAction *&action : recent) {
        action = addAction(QString());
        action->setVisible(false);
        connect(action, &QAction::triggered, this,
                [this, action] { choose(action->data().toString()); });
    }
    // The window may be held the other way by then.
    connect(this, &QMenu::aboutToShow, this, &FileMenu::fitRecent);
}

void FileMenu::addSearch(const QString &text, const char *keys, void (FileMenu::*search)())
{
    QAction *action = addAction(text, this, search);
    action->setShortcut(QKeySequence::fromString(QLatin1String(keys)));
    parentWidget()->addAction(action);
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
        const QString &path = paths.at(int(i));
        recent[i]->setData(path);
        // The tag says that it is escaped.
        recent[i]->setToolTip(QLatin1String("<p>") + path.toHtmlEscaped());
    }
    fitRecent();
}

void FileMenu::fitRecent()
{
    const int width = parentWidget()->width();
    const QList<QAction *> all = actions();
    int keys = 0;
    for (const QAction *action : all) {
        const QString text = action->shortcut().toString(QKeySequence::NativeText);
        keys = qMax(keys, fontMetrics().horizontalAdvance(text));
    }
    int longest = 0;
    for (const QAction *action : recent)
        longest = qMax(longest, fontMetrics().horizontalAdvance(action->data().toString()));
    // Whole paths go before the keys, which other places tell, and phones don't have.
    const int room = width - 2 * fingerSize;
    if (longest + keys > room) {
        for (QAction *action : all)
            action->setShortcutVisibleInContextMenu(false);
    }
    for (QAction *action : recent)
        action->setText(recentFileLabel(action->data().toString(), fontMetrics(), room));
}

QString recentFileLabel(const QString &path, const QFontMetrics &metrics, int room)
{
    return metrics.elidedText(path, Qt::ElideMiddle, room)
        .replace(QLatin1Char('&'), QLatin1String("&&"));
}
