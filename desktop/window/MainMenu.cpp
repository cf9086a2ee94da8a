#include "desktop/window/MainMenu.h"

#include "desktop/look/LookDialog.h"
#include "desktop/widgets/MessageDialog.h"
#include "desktop/widgets/Prompts.h"
#include "desktop/widgets/Touch.h"
#include "desktop/window/WindowText.h"

namespace {

const QLatin1String contactAddress("https://quillon.example/");

} // namespace

MainMenu::MainMenu(Look *lookInUse, const QString &language, QWidget *parent)
    : QMenu(parent)
{
    sizeForFingers(this);
    const QAction *copy = addNamed("copyAddress", WindowText::tr("Copy address"), "Ctrl+C");
    const QAction *activity =
        addNamed("activity", WindowText::tr("Visitors and transfers"), "Ctrl+T");
    reloadPublic = addNamed("reloadPublic", WindowText::tr("Reload public addressess"));
    reloadLocal = addNamed("reloadLocal", WindowText::tr("Reload local addresses"), "F5");
    settings = addNamed("settings", WindowText::tr("Settings"));
    const QAction *look = addNamed("lookAndFeel", WindowText::tr("Look and Feel"));
    expertMode = addNamed("expertMode", WindowText::tr("Expert mode"));
    expertMode->setCheckable(true);
    const QAction *help = addNamed("help", WindowText::tr("Help"), "F1");
    const QAction *aboutProgram = addNamed("about", WindowText::tr("About Quillon"));
    const QAction *aboutQt = addNamed("aboutQt", WindowText::tr("About Qt"));
    const QAction *quit = addNamed("quit", WindowText::tr("Quit"), "Ctrl+Q");

    connect(copy, &QAction::triggered, this, &MainMenu::addressWanted);
    connect(activity, &QAction::triggered, this, &MainMenu::activityWanted);
    connect(reloadPublic, &QAction::triggered, this, &MainMenu::publicReloadWanted);
    // By the parent: a menu cuts what connects it to an entry that it loses.
    connect(reloadLocal, &QAction::triggered, parent, [this] { Q_EMIT localReloadWanted(); });
    connect(settings, &QAction::triggered, this, &MainMenu::settingsWanted);
    connect(look, &QAction::triggered, this,
            [lookInUse, parent] { LookDialog(lookInUse, parent).exec(); });
    connect(expertMode, &QAction::triggered, this, &MainMenu::expertModeWanted);
    connect(help, &QAction::triggered, this,
            [language, parent] { MessageDialog::help(language, QStringLiteral("index"), parent); });
    connect(aboutProgram, &QAction::triggered, this, &MainMenu::about);
    connect(aboutQt, &QAction::triggered, this, [parent] { QMessageBox::aboutQt(parent); });
    connect(quit, &QAction::triggered, this, &MainMenu::quitWanted);
}

QAction *MainMenu::addNamed(const char *name, const QString &text, const char *keys)
{
    QAction *action = addAction(text);
    action->setObjectName(QLatin1String(name));
    action->setShortcut(QKeySequence::fromString(QLatin1String(keys)));
    parentWidget()->addAction(action);
    return action;
}

void MainMenu::showMode(bool expert)
{
    expertMode->setChecked(expert);
    settings->setText(expert ? WindowText::tr("Global Default Settings")
                             : WindowText::tr("Settings"));
    reloadPublic->setVisible(expert);
    // Its key acts in both modes.
    removeAction(reloadLocal);
    if (expert)
        insertAction(settings, reloadLocal);
}

void MainMenu::about()
{
    const QString text = QLatin1String("Quillon\n") + WindowText::tr("Version")
        + QLatin1String(": ") + QLatin1String(QUILLON_VERSION) + QLatin1Char('\n') + contactAddress;
    QMessageBox *box = showBox(parentWidget(), QMessageBox::Information, text);
    box->setWindowTitle(WindowText::tr("About Quillon"));
}
