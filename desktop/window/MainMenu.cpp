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
    reloadPublic = addNamed("reloadPublic", WindowText::tr("Reload public addressess"));
    reloadLocal = addNamed("reloadLocal", WindowText::tr("Reload local addresses"));
    settings = addNamed("settings", WindowText::tr("Settings"));
    const QAction *look = addNamed("lookAndFeel", WindowText::tr("Look and Feel"));
    expertMode = addNamed("expertMode", WindowText::tr("Expert mode"));
    expertMode->setCheckable(true);
    QAction *help = addNamed("help", WindowText::tr("Help"));
    const QAction *aboutProgram = addNamed("about", WindowText::tr("About Quillon"));
    const QAction *aboutQt = addNamed("aboutQt", WindowText::tr("About Qt"));

    connect(reloadPublic, &QAction::triggered, this, &MainMenu::publicReloadWanted);
    connect(reloadLocal, &QAction::triggered, this, &MainMenu::localReloadWanted);
    connect(settings, &QAction::triggered, this, &MainMenu::settingsWanted);
    connect(look, &QAction::triggered, this,
            [lookInUse, parent] { LookDialog(lookInUse, parent).exec(); });
    connect(expertMode, &QAction::triggered, this, &MainMenu::expertModeWanted);
    connect(help, &QAction::triggered, this,
            [language, parent] { MessageDialog::help(language, QStringLiteral("index"), parent); });
    connect(aboutProgram, &QAction::triggered, this, &MainMenu::about);
    connect(aboutQt, &QAction::triggered, this, [parent] { QMessageBox::aboutQt(parent); });

    help->setShortcut(QKeySequence::HelpContents);
    parent->addAction(help);
}

QAction *MainMenu::addNamed(const char *name, const QString &text)
{
    QAction *action = addAction(text);
    action->setObjectName(QLatin1String(name));
    return action;
}

void MainMenu::showMode(bool expert)
{
    expertMode->setChecked(expert);
    settings->setText(expert ? WindowText::tr("Global Default Settings")
                             : WindowText::tr("Settings"));
    reloadPublic->setVisible(expert);
    reloadLocal->setVisible(expert);
}

void MainMenu::about()
{
    const QString text = QLatin1String("Quillon\n") + WindowText::tr("Version")
        + QLatin1String(": ") + QLatin1String(QUILLON_VERSION) + QLatin1Char('\n') + contactAddress;
    QMessageBox *box = showBox(parentWidget(), QMessageBox::Information, text);
    box->setWindowTitle(WindowText::tr("About Quillon"));
}
