#include "desktop/window/StartQuestions.h"

#include "desktop/widgets/Prompts.h"
#include "desktop/window/RowPanel.h"
#include "desktop/window/ServerRow.h"
#include "desktop/window/ServerRows.h"
#include "desktop/window/WindowText.h"

#include <QDir>
#include <QPointer>

StartQuestions::StartQuestions(ServerRows *rows, RowPanel *shares, QWidget *window)
    : panel(shares)
    , parent(window)
{
    rows->setQuestion([this](ServerRow *row, StartDoubt doubt) { return ask(row, doubt); });
}

StartAnswer StartQuestions::ask(ServerRow *row, StartDoubt doubt)
{
    switch (doubt) {
    case StartDoubt::HomeIsOpen:
        return askAboutHome(row);
    case StartDoubt::None:
        break;
    }
    return StartAnswer::Yes;
}

StartAnswer StartQuestions::askAboutHome(ServerRow *row)
{
    const QPointer<ServerRow> still(row);
    const QString shared = row->server()->shared().absoluteFilePath();
    const int chosen =
        askOneOf(parent,
                 WindowText::tr(
                     "Everyone who reaches this computer could read, change and delete all of %1.")
                     .arg(QDir::toNativeSeparators(shared)),
                 { WindowText::tr("Choose Folder..."), WindowText::tr("Share it anyway") });
    if (chosen == 1)
        return StartAnswer::Yes;
    const QString folder = chosen == 0
        ? choosePath(parent, PathKind::Folder, WindowText::tr("Choose Folder..."), shared)
        : QString();
    if (folder.isEmpty() || !still)
        return StartAnswer::No;
    panel->share(folder, row);
    return StartAnswer::LookAgain;
}
